#include "Device.h"
#include "FixtureTree.h"
#include "StatCore.h"
#include "StatSnapshot.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QLoggingCategory>
#include <QtTest>

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
    void snapshotGathersEveryFigure_data()
    {
        QTest::addColumn<QString>("battery");
        QTest::addColumn<QByteArray>("json");
        QTest::newRow("a laptop on battery")
            << "power_supply/laptop-discharging" << QByteArray(R"({"level":0.57,"state":"unplugged"})");
        QTest::newRow("no battery at all") << "-" << QByteArray(R"({"level":null,"state":"unknown"})");
    }
    void snapshotGathersEveryFigure()
    {
        QFETCH(QString, battery);
        QFETCH(QByteArray, json);
        const QString tree = path(QStringLiteral("proc-x86-laptop"));
        SystemInfoReader::SystemCalls calls;
        calls.uname = [] { return SystemInfoReader::UnameValues{"Linux", "6.1.0", "x86_64"}; };
        StatCore core(tree, tree, 4096, calls, NetworkInfoReader::Seams{}); // every network query fails, quietly
        QLoggingCategory::setFilterRules(QStringLiteral("kovar.stats*.warning=false"));
        std::optional<Device> device;
        if (battery != u"-")
            device.emplace(path(battery));
        const QDateTime before = QDateTime::currentDateTimeUtc().addMSecs(-1);
        const QJsonObject snapshot = QJsonDocument::fromJson(
                                         StatSnapshot::toJson(StatSnapshot::capture(core, device ? &*device : nullptr,
                                                                                    std::chrono::milliseconds(20))))
                                         .object();
        QCOMPARE(snapshot.keys(),
                 (QStringList{"battery", "cpuInterval", "cpuUsage", "diskUsage", "memoryUsage", "networkInfo",
                              "runningProcesses", "systemInfo", "timestamp"}));
        // RFC 3339 in UTC, taken now.
        const QString timestamp = snapshot["timestamp"].toString();
        QVERIFY2(timestamp.endsWith(u'Z'), qPrintable(timestamp));
        const QDateTime taken = QDateTime::fromString(timestamp, Qt::ISODateWithMs);
        QVERIFY(taken >= before && taken <= QDateTime::currentDateTimeUtc());
        QCOMPARE(snapshot["cpuInterval"].toDouble(), 0.02);
        QCOMPARE(compact(snapshot["battery"]), json);
        // The fixture's ticks do not move: no tick elapsed, so no usage can be known.
        QCOMPARE(compact(snapshot["cpuUsage"]), QByteArray(R"({"idle":0,"system":0,"usage":null,"user":0})"));
        QCOMPARE(snapshot["diskUsage"]["totalSize"].toDouble(), core.diskUsage().totalSize);
        QVERIFY(snapshot["memoryUsage"] == StatSnapshot::memoryUsageJson(core.memoryUsage()));
        // Beside the texts, the figures as numbers: systemd started 1,200 ticks after the boot.
        const QJsonObject first = snapshot["runningProcesses"][0].toObject();
        QCOMPARE(compact(QJsonObject{{"pid", first["pid"]},
                                     {"priority", first["priority"]},
                                     {"startedAt", first["startedAt"]},
                                     {"PID", first["PID"]}}),
                 QByteArray(R"({"PID":"1","pid":1,"priority":20,"startedAt":1700000012})"));
        QCOMPARE(snapshot["runningProcesses"].toArray().size(), 8);
        // What cannot be known is null, not an empty text: this machine has no network at all.
        const QJsonArray common = snapshot["networkInfo"]["CommonInfo"].toArray();
        QVERIFY(std::any_of(common.begin(), common.end(), [](const QJsonValue &row) { return row["Value"].isNull(); }));
        for (const QJsonValue &section : snapshot["networkInfo"].toObject())
            for (const QJsonValue &row : section.toArray())
                QVERIFY2(row["Value"].isNull() || !row["Value"].toString().isEmpty(),
                         qPrintable(row["Key"].toString()));
        QVERIFY(snapshot["systemInfo"] == core.systemInfo().toJson());
    }
};

QTEST_GUILESS_MAIN(TestStatSnapshot)
#include "tst_statsnapshot.moc"
