#include "FixtureTree.h"
#include "StatCore.h"
#include "StatSnapshot.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

class TestStatSnapshot : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void capture_data();
    void capture();
    void nanIsWrittenAsNull();
    void bytesBeyond32BitsStayExact();
};

void TestStatSnapshot::capture_data()
{
    QTest::addColumn<QString>("tree");
    QTest::addColumn<int>("processCount"); // -1: the table is nil
    QTest::addColumn<qint64>("physical");
    QTest::addColumn<int>("memoryWarnings");

    QTest::newRow("laptop") << FixtureTree::path("proc-x86-laptop") << 7 << qint64(24683620) * 1024 << 0;
    QTest::newRow("phone") << FixtureTree::path("proc-arm64-phone") << 5 << qint64(3809856) * 1024 << 0;
    QTest::newRow("empty container: null table, zero memory") << FixtureTree::path("proc-container-empty") << -1 << qint64(0) << 3;
}

void TestStatSnapshot::capture()
{
    QFETCH(QString, tree);
    QFETCH(int, processCount);
    QFETCH(qint64, physical);
    QFETCH(int, memoryWarnings);

    StatCore core(tree, tree, 4096);
    for (int i = 0; i < memoryWarnings; ++i)
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^#### ")));
    const QByteArray json = StatSnapshot::toJson(StatSnapshot::capture(core, std::chrono::milliseconds(0)));
    QJsonParseError error;
    const QJsonObject snapshot = QJsonDocument::fromJson(json, &error).object();
    QCOMPARE(error.error, QJsonParseError::NoError);

    QCOMPARE(snapshot.keys(), (QStringList{"cpuUsage", "diskUsage", "memoryUsage", "runningProcesses"}));
    QCOMPARE(snapshot.value("cpuUsage").toObject().keys(), (QStringList{"idle", "system", "usage", "user"}));
    QCOMPARE(snapshot.value("diskUsage").toObject().keys(), (QStringList{"freeSize", "totalSize"}));
    const QJsonObject memory = snapshot.value("memoryUsage").toObject();
    QCOMPARE(memory.keys(),
             (QStringList{"active", "activePercent", "free", "freePercent", "inactive", "inactivePercent", "pageSize",
                          "physical", "total", "totalPages", "user", "wired", "wiredPercent"}));
    QCOMPARE(memory.value("physical").toInteger(), physical);

    const QJsonValue processes = snapshot.value("runningProcesses");
    if (processCount < 0) {
        QVERIFY(processes.isNull());
        return;
    }
    const QJsonArray array = processes.toArray();
    QCOMPARE(array.size(), processCount);
    for (const QJsonValue &process : array) {
        const QJsonObject object = process.toObject();
        QCOMPARE(object.keys(), (QStringList{"PID", "Priority", "ProcessName", "StartTime"}));
        for (const QJsonValue &value : object)
            QVERIFY(value.isString());
    }
}

void TestStatSnapshot::nanIsWrittenAsNull()
{
    CpuUsageData cpu;
    cpu.usage = qQNaN();
    const QJsonObject object = StatSnapshot::cpuUsageJson(cpu);
    QVERIFY(object.value("usage").isNull());
    QVERIFY(StatSnapshot::toJson({{"cpuUsage", object}}).contains("\"usage\": null"));

    MemoryUsageData memory; // no pages at all: every share is 0/0
    memory.freePercent = qQNaN();
    memory.wiredPercent = 12.5;
    const QJsonObject memoryObject = StatSnapshot::memoryUsageJson(memory);
    QVERIFY(memoryObject.value("freePercent").isNull());
    QCOMPARE(memoryObject.value("wiredPercent").toDouble(), 12.5);
}

void TestStatSnapshot::bytesBeyond32BitsStayExact()
{
    MemoryUsageData memory;
    memory.total = 68719476737ULL; // 64 GiB + 1: would wrap in 32 bits, and 1 byte must survive
    DiskUsageData disk;
    disk.totalSize = 270553174016.0;
    const QByteArray json = StatSnapshot::toJson(
        {{"memoryUsage", StatSnapshot::memoryUsageJson(memory)}, {"diskUsage", StatSnapshot::diskUsageJson(disk)}});
    QVERIFY2(json.contains("\"total\": 68719476737"), json.constData());
    QVERIFY2(json.contains("\"totalSize\": 270553174016"), json.constData());
}

QTEST_APPLESS_MAIN(TestStatSnapshot)
#include "tst_statsnapshot.moc"
