#include "Device.h"
#include "FixtureTree.h"
#include "IdiomDelegate.h"
#include "LaunchOptions.h"
#include "MonitorAppDelegate.h"
#include "ScreenshotRunner.h"

#include <QtTest>
#include <QtWidgets>

// --screenshot: the pictures each idiom writes, each the size of what it shows.
class TestScreenshotRunner : public QObject {
    Q_OBJECT

    Device device{FixtureTree::path(QStringLiteral("power_supply/laptop-discharging"))};

private Q_SLOTS:
    void pictures_data()
    {
        QTest::addColumn<bool>("tablet");
        QTest::addColumn<QString>("pictures"); // name WxH, in the order written
        QTest::newRow("phone: the window on each page")
            << false << "01-summary.png 320x480|02-processes.png 320x480|03-system.png 320x480|04-network.png 320x480";
        QTest::newRow("tablet: the window, then the pager on each page")
            << true << "01-tablet.png 768x1024|02-system.png 384x630|03-network.png 384x630";
    }
    void pictures()
    {
        QFETCH(bool, tablet);
        QFETCH(QString, pictures);
        QTemporaryDir directory;
        const QSize window = tablet ? QSize(768, 1024) : QSize(320, 480);
        const auto delegate = IdiomDelegate::create(tablet ? LaunchIdiom::Kind::Tablet : LaunchIdiom::Kind::Phone,
                                                    window, &device);
        delegate->application(qApp, LaunchOptions());
        QCOMPARE(ScreenshotRunner::run(delegate.get(), directory.path()), 0);
        QStringList written;
        const QDir dir(directory.path());
        for (const QString &name : dir.entryList(QDir::Files, QDir::Name)) {
            const QImage image(dir.filePath(name));
            written << QStringLiteral("%1 %2x%3").arg(name).arg(image.width()).arg(image.height());
        }
        QCOMPARE(written.join(u'|'), pictures);
    }

    void unwritableDirectory()
    {
        const auto delegate = IdiomDelegate::create(LaunchIdiom::Kind::Phone, QSize(320, 480), &device);
        delegate->application(qApp, LaunchOptions());
        QTemporaryFile file; // a directory cannot be made under a file
        QVERIFY(file.open());
        QCOMPARE(ScreenshotRunner::run(delegate.get(), file.fileName() + QStringLiteral("/shots")), 1);
    }
};

QTEST_MAIN(TestScreenshotRunner)
#include "tst_screenshotrunner.moc"
