#include "DotPageControl.h"
#include "FixtureTree.h"
#include "FocusRing.h"
#include "HistogramItem.h"
#include "InfoTableModel.h"
#include "LabelView.h"
#include "OOHistogramView.h"
#include "OOPageControl.h"
#include "OOPieChartView.h"
#include "OOStateBarView.h"
#include "PageProbe.h"
#include "PagingScrollView.h"
#include "ProcessTableModel.h"
#include "ScreensAccessibility.h"
#include "WidgetRenderer.h"

#include <QAccessible>
#include <QtTest>

#include <memory>

// The painted widgets as a screen reader gets them, through Qt's accessibility interfaces.
class TestAccessibility : public QObject {
    Q_OBJECT

    // The widget a table row describes.
    static std::unique_ptr<QWidget> build(const QString &described)
    {
        const QString kind = described.section(u' ', 0, 0);
        const QStringList args = described.section(u' ', 1).split(u' ', Qt::SkipEmptyParts);
        if (kind == u"label" || kind == u"heading") {
            auto label = std::make_unique<LabelView>();
            label->setReadAs(kind == u"heading" ? QAccessible::Heading : QAccessible::StaticText);
            label->setCaption(described.section(u' ', 1).section(u'|', 0, 0));
            label->setText(described.section(u'|', 1));
            return label;
        }
        if (kind == u"histogram") {
            auto view = std::make_unique<OOHistogramView>(QRect(0, 0, args[0].toInt(), 60));
            view->setAccessibleName(QStringLiteral("CPU history"));
            view->setItemRectWidth(2);
            view->setItemRectHeight(2);
            view->setSampleInterval(args[1].toInt());
            int repeat = 1;
            for (const QString &sample : args.mid(2)) {
                if (sample.startsWith(u'*')) {
                    repeat = sample.mid(1).toInt();
                    continue;
                }
                const QStringList s = sample.split(u',');
                for (; repeat > 0; --repeat)
                    view->addItemData(HistogramItem(s[0].toInt(), s[1].toInt(), s[2].toInt()));
                repeat = 1;
            }
            return view;
        }
        if (kind == u"pie" || kind == u"bar") {
            const QStringList parts = described.section(u' ', 1).split(u'|');
            const QStringList values = parts.value(2).split(u' ', Qt::SkipEmptyParts);
            std::unique_ptr<QWidget> widget;
            if (kind == u"pie") {
                auto pie = std::make_unique<OOPieChartView>(QRect(0, 0, 100, 100));
                pie->setItemNames(parts[1].split(u',', Qt::SkipEmptyParts));
                QList<PieChartItem> items;
                for (const QString &value : values)
                    items.append(PieChartItem(value.toULongLong(), 1, 1, 1, 1));
                pie->setItemData(items);
                widget = std::move(pie);
            } else {
                auto bar = std::make_unique<OOStateBarView>(QRect(0, 0, 100, 20));
                QList<StateBarItem> items;
                for (const QString &value : values)
                    items.append(StateBarItem(value.toDouble(), 1, 1, 1, 1));
                bar->setItemData(items);
                bar->setAccessibleDescription(parts[1]);
                widget = std::move(bar);
            }
            widget->setAccessibleName(parts[0]);
            return widget;
        }
        const QStringList titles = described.section(u' ', 3).split(u',', Qt::SkipEmptyParts);
        if (args[0] == u"titled") {
            auto control = std::make_unique<OOPageControl>(QRect(0, 0, 270, 20), int(titles.size()));
            control->setTitles(QVariantList(titles.begin(), titles.end()));
            control->setCurrentPage(args[1].toInt());
            return control;
        }
        auto dots = std::make_unique<DotPageControl>(QRect(0, 0, 30, 10), 2);
        dots->setTitles(titles);
        dots->setCurrentPage(args[1].toInt());
        return dots;
    }

    static QString role(QAccessibleInterface *iface)
    {
        return QString::fromLatin1(QMetaEnum::fromType<QAccessible::Role>().valueToKey(iface->role()));
    }

private Q_SLOTS:
    void initTestCase() { ScreensAccessibility::install(); }

    void interfaces_data() { FixtureTree::addRows("accessibility.tsv", {"widget", "role", "name", "value"}); }
    void interfaces()
    {
        QFETCH(QString, widget);
        const std::unique_ptr<QWidget> shown = build(widget);
        QAccessibleInterface *iface = QAccessible::queryAccessibleInterface(shown.get());
        QVERIFY(iface);
        QTEST(role(iface), "role");
        QTEST(iface->text(QAccessible::Name), "name");
        QString value = iface->text(QAccessible::Value);
        if (iface->role() == QAccessible::PageTabList) {
            QStringList tabs;
            for (int i = 0; i < iface->childCount(); ++i) {
                QAccessibleInterface *tab = iface->child(i);
                QCOMPARE(role(tab), QStringLiteral("PageTab"));
                QCOMPARE(iface->indexOfChild(tab), i);
                tabs << tab->text(QAccessible::Name) + (tab->state().selected ? QStringLiteral("*") : QString());
            }
            value = tabs.join(u'|');
        }
        QTEST(value, "value");
        if (QAccessibleValueInterface *bar = iface->valueInterface()) {
            QCOMPARE(bar->minimumValue().toDouble(), 0.0);
            QCOMPARE(bar->maximumValue().toDouble(), 100.0);
            QCOMPARE(QString::number(qRound(bar->currentValue().toDouble())) + u'%', value);
            QCOMPARE(iface->text(QAccessible::Description), shown->accessibleDescription());
        }
    }

    // A tab's press asks for its page; the page shown then follows from outside.
    void tabsAskForTheirPage()
    {
        OOPageControl titled(QRect(0, 0, 270, 20), 4);
        DotPageControl dots(QRect(0, 0, 30, 10), 2);
        QSignalSpy titledAsks(&titled, &OOPageControl::pageRequested);
        QSignalSpy dotsAsk(&dots, &DotPageControl::pageRequested);
        for (QWidget *control : std::initializer_list<QWidget *>{&titled, &dots}) {
            QAccessibleInterface *tab = QAccessible::queryAccessibleInterface(control)->child(1);
            QVERIFY(tab->actionInterface()->actionNames().contains(QAccessibleActionInterface::pressAction()));
            tab->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
            QCOMPARE(QAccessible::queryAccessibleInterface(control)->child(7), nullptr);
        }
        QCOMPARE(titledAsks.size(), 1);
        QCOMPARE(titledAsks.first().first().toInt(), 1);
        QCOMPARE(dotsAsk.size(), 1);
        QCOMPARE(dotsAsk.first().first().toInt(), 1);
        // From the keyboard the titled indicator steps from the page shown, and stops at the ends.
        titled.setCurrentPage(3);
        QTest::keyClick(&titled, Qt::Key_Right);
        QTest::keyClick(&titled, Qt::Key_Left);
        QTest::keyClick(&titled, Qt::Key_Home);
        QCOMPARE(titledAsks.size(), 4);
        QCOMPARE(titledAsks.at(1).first().toInt(), 3);
        QCOMPARE(titledAsks.at(2).first().toInt(), 2);
        QCOMPARE(titledAsks.at(3).first().toInt(), 0);
    }

    // The focus ring shows only where the focus came by keyboard, and stays when the window
    // merely comes back.
    void focusRing_data()
    {
        QTest::addColumn<QList<int>>("reasons"); // Qt::FocusReason, in order
        QTest::addColumn<bool>("ringed");
        QTest::newRow("Tab") << QList<int>{Qt::TabFocusReason} << true;
        QTest::newRow("Shift+Tab") << QList<int>{Qt::BacktabFocusReason} << true;
        QTest::newRow("a click") << QList<int>{Qt::MouseFocusReason} << false;
        QTest::newRow("a click after Tab") << QList<int>{Qt::TabFocusReason, Qt::MouseFocusReason} << false;
        QTest::newRow("window back after Tab") << QList<int>{Qt::TabFocusReason, Qt::ActiveWindowFocusReason} << true;
        QTest::newRow("window back after a click")
            << QList<int>{Qt::MouseFocusReason, Qt::ActiveWindowFocusReason} << false;
    }
    void focusRing()
    {
        QFETCH(QList<int>, reasons);
        QFETCH(bool, ringed);
        QWidget window;
        window.resize(320, 200);
        auto *control = new OOPageControl(QRect(0, 0, 270, 20), 4, &window);
        control->setCurrentPage(0);
        auto *pager = new PagingScrollView(&window);
        pager->setGeometry(0, 20, 320, 180);
        window.show();
        window.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        for (QWidget *target : std::initializer_list<QWidget *>{control, pager}) {
            for (int reason : reasons) {
                window.setFocus(Qt::OtherFocusReason);
                target->setFocus(Qt::FocusReason(reason));
            }
            QVERIFY(target->hasFocus());
        }
        QCOMPARE(pager->findChild<FocusRing *>()->isVisible(), ringed);
        pager->clearFocus();
        QCOMPARE(pager->findChild<FocusRing *>()->isVisible(), false);
        control->setFocus(Qt::FocusReason(reasons.last()));
        QCOMPARE(control->showsFocusRing(), ringed);
        // Orange just outside the marked cell's white border.
        const QImage image = WidgetRenderer::render(control);
        QCOMPARE(RenderProbe::near(RenderProbe::at(image, 0, 10), FocusRing::OuterColor, 40), ringed);
    }

    // List rows read whole: a process with its pid, name, start time and priority under the
    // columns' names; an information row as key and value; a section by its title.
    void rows()
    {
        ProcessTableModel processes;
        processes.setRecords(PageProbe::records(2));
        QCOMPARE(processes.index(1).data(Qt::AccessibleTextRole).toString(),
                 QStringLiteral("PID 1001, Process Name proc1, Started 7:01, Priority 19"));
        InfoTableModel info({{QStringLiteral("A"), QStringLiteral("Network")}, {QStringLiteral("B"), QString()}});
        InfoDictionary record;
        record.addSection(QStringLiteral("A"), {{QStringLiteral("Active WLAN"), QStringLiteral("NO")}});
        record.addSection(QStringLiteral("B"), {{QStringLiteral("Model"), QString()}});
        info.setTableData(record);
        QStringList read;
        for (int row = 0; row < info.rowCount(); ++row)
            read << info.index(row).data(Qt::AccessibleTextRole).toString() + u'/'
                    + info.index(row).data(Qt::AccessibleDescriptionRole).toString();
        QCOMPARE(read.join(u'|'), QStringLiteral("Network/section heading|Active WLAN NO/|/|/|Model/|/"));
    }
};

QTEST_MAIN(TestAccessibility)
#include "tst_accessibility.moc"
