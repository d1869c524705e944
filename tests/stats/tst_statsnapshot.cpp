#include "FixtureTree.h"
#include "StatCore.h"
#include "StatSnapshot.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLoggingCategory>

using namespace FixtureTree;

namespace {

QByteArray compact(const QJsonValue &value)
{
    return QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact).chopped(1).mid(1);
}

} // namespace

class TestStatSnapshot : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void snapshotGathersEveryFigure()
    {
        const QString tree = path(QStringLiteral("proc-x86-laptop"));
        SystemInfoReader::SystemCalls calls;
        calls.uname = [] { return SystemInfoReader::UnameValues{"Linux", "6.1.0", "x86_64"}; };
        StatCore core(tree, tree, 4096, calls, NetworkInfoReader::Seams{}); // every network query fails, quietly
        QLoggingCategory::setFilterRules(QStringLiteral("kovar.stats.network.warning=false"));
        const QJsonObject snapshot = QJsonDocument::fromJson(StatSnapshot::toJson(StatSnapshot::capture(core, {}))).object();
        QCOMPARE(snapshot.keys(), (QStringList{"cpuUsage", "diskUsage", "memoryUsage", "networkInfo",
                                               "runningProcesses", "systemInfo"}));
        QCOMPARE(compact(snapshot["cpuUsage"]), QByteArray(R"({"idle":0,"system":0,"usage":null,"user":0})"));
        QCOMPARE(snapshot["diskUsage"]["totalSize"].toDouble(), core.diskUsage().totalSize);
        QVERIFY(snapshot["memoryUsage"] == StatSnapshot::memoryUsageJson(core.memoryUsage()));
        QVERIFY(snapshot["runningProcesses"] == StatSnapshot::runningProcessesJson(core.runningProcesses()));
        QVERIFY(snapshot["networkInfo"] == core.networkInfo().toJson());
        QVERIFY(snapshot["systemInfo"] == core.systemInfo().toJson());
    }
};

QTEST_APPLESS_MAIN(TestStatSnapshot)
#include "tst_statsnapshot.moc"
