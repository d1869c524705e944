#include "FixtureTree.h"
#include "LaunchOptions.h"

#include <QProcessEnvironment>
#include <QtTest>

namespace {

LaunchOptions::Idiom idiom(const QString &name)
{
    return LaunchOptions::Idiom(QStringList{"Automatic", "Phone", "Tablet"}.indexOf(name));
}

} // namespace

class TestLaunchOptions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void commandLine_data()
    {
        FixtureTree::addRows("app-command-line.tsv",
                             {"arguments", "variable", "idiom", "adServer", "verdict", "metrics"});
    }
    void commandLine()
    {
        QFETCH(QString, arguments);
        QFETCH(QString, variable);
        QFETCH(QString, idiom);
        QFETCH(QString, adServer);
        QFETCH(QString, verdict);
        QFETCH(QString, metrics);
        QProcessEnvironment environment;
        environment.insert(QStringLiteral("KOVAR_AD_SERVER"), variable);
        const LaunchOptions options = LaunchOptions::parse(
            QStringList{"kovar"} + arguments.split(u' ', Qt::SkipEmptyParts), environment);
        QCOMPARE(options.idiom, ::idiom(idiom));
        QCOMPARE(options.adServer.toString(), adServer);
        QCOMPARE(QString::fromLatin1(options.error.isEmpty() ? "accepted" : "refused"), verdict);
        QCOMPARE(options.serveMetrics ? options.metricsAddress + u' ' + QString::number(options.metricsPort)
                                      : QString(),
                 metrics);
    }
};

QTEST_APPLESS_MAIN(TestLaunchOptions)
#include "tst_launchoptions.moc"
