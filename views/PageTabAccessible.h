#pragma once

#include <QAccessibleInterface>

class QWidget;

// One page of a page indicator, as a screen reader sees it: a tab named by the page's
// title, selected while its page is shown, whose press (or switch) action turns to it.
// It has no widget of its own; its list, the indicator's interface, owns it.
class PageTabAccessible : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    // control: an OOPageControl or a DotPageControl.
    PageTabAccessible(QAccessibleInterface *list, QWidget *control, int page);

    bool isValid() const override;
    QObject *object() const override { return nullptr; }
    QWindow *window() const override;
    QAccessibleInterface *parent() const override;
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    QString text(QAccessible::Text t) const override;
    void setText(QAccessible::Text, const QString &) override {}
    QRect rect() const override;
    QAccessible::Role role() const override { return QAccessible::PageTab; }
    QAccessible::State state() const override;
    void *interface_cast(QAccessible::InterfaceType type) override;

    QStringList actionNames() const override;
    void doAction(const QString &actionName) override;
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    bool isCurrent() const;

    QAccessibleInterface *_list;
    QWidget *_control;
    int _page;
};
