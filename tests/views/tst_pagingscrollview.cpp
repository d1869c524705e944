#include "FixtureTree.h"
#include "PagingScrollView.h"

#include <QtTest>

// Where the pager settles after a drag: never more than one page from where it started.
class TestPagingScrollView : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // Drags of several lengths and speeds (5 moves, then held still before release) on
    // the phone's four pages of 320 and the tablet's two of 384: the page the pager settles on.
    void dragTarget_data() { FixtureTree::addRows("pager-drags.tsv", {"pages", "start", "drag", "target"}); }
    void dragTarget()
    {
        QFETCH(QString, pages);
        QFETCH(QString, start);
        QFETCH(QString, drag); // "pixels/ms" or "pixels/ms+held ms"
        QFETCH(QString, target);
        const qreal width = pages == u"2" ? 384 : 320, from = start.toInt() * width,
                    pixels = drag.section(u'/', 0, 0).toDouble();
        const qint64 ms = drag.section(u'/', 1).section(u'+', 0, 0).toLongLong(),
                     held = drag.section(u'+', 1).toLongLong();
        QList<PagingScrollView::DragSample> trail;
        for (int move = 0; move <= 5; ++move)
            trail.append({ms * move / 5, from + pixels * move / 5});
        trail.append({ms + held, from + pixels});
        QCOMPARE(PagingScrollView::targetPageAfterDrag(start.toInt(), trail, width, pages.toInt()), target.toInt());
    }
};

QTEST_MAIN(TestPagingScrollView)
#include "tst_pagingscrollview.moc"
