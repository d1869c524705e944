#pragma once

#include <QWidget>

// Root screen of the phone layout. For now only its dark background: the pager and
// its pages take this class's place when they land.
class iPhoneRootViewController : public QWidget
{
    Q_OBJECT

public:
    explicit iPhoneRootViewController(QWidget *parent = nullptr);
};
