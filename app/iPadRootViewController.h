#pragma once

#include <QWidget>

// Root screen of the tablet layout. For now only its dark background: the real root
// screen, with the summary panel and its lists, takes this class's place when it lands.
class iPadRootViewController : public QWidget
{
    Q_OBJECT

public:
    explicit iPadRootViewController(QWidget *parent = nullptr);
};
