#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchiveSchedule.h"

#include <QtTest>

#include <algorithm>

class ArchiveScheduleTest : public QObject
{
    Q_OBJECT

private slots:
    void howDocumentsAreSpread_data();
    void howDocumentsAreSpread();
    void documentsThatFillTheMemoryComeLater();
    void everyDocumentIsInOneJob();
    void oneByOneIsAJobADocument();
    void howDocumentsAreSpreadOverMachines_data();
    void howDocumentsAreSpreadOverMachines();
    void largeDocumentsStayHere();
    void memoryIsReadFromTheKernelsAccount_data();
    void memoryIsReadFromTheKernelsAccount();
    void theMachineTellsItsMemory();

private:
    static std::vector<PlannedDocument> documents(int count, qint64 size);
};

namespace {

constexpr qint64 PLENTY = 1000000000000;
using Sizes = QVector<int>;

Sizes sizesOf(const ArchiveSchedule::Round& round)
{
    Sizes sizes;
    for (const ArchiveSchedule::Job& job : round.jobs) {
        sizes.append(static_cast<int>(job.size()));
    }
    return sizes;
}

} // namespace

std::vector<PlannedDocument> ArchiveScheduleTest::documents(int count, qint64 size)
{
    std::vector<PlannedDocument> documents;
    documents.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        documents.push_back({QString::number(i) + ".xml", size, false, false, {}});
    }
    return documents;
}

void ArchiveScheduleTest::howDocumentsAreSpread_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<qint64>("size");
    QTest::addColumn<Sizes>("sizes");
    QTest::newRow("a few are one each") << 3 << qint64(10000) << Sizes{1, 1, 1};
    QTest::newRow("as many jobs as four times those beside each other")
        << 16 << qint64(10000) << Sizes(8, 2);
    QTest::newRow("at most 256 in a job") << 4096 << qint64(10000) << Sizes(16, 256);
    QTest::newRow("at most four megabytes in a job") << 640 << qint64(100000) << Sizes(16, 40);
    QTest::newRow("large ones alone") << 16 << qint64(10000000) << Sizes(16, 1);
}

void ArchiveScheduleTest::howDocumentsAreSpread()
{
    QFETCH(int, count);
    QFETCH(qint64, size);
    const auto rounds = ArchiveSchedule::roundsOf(documents(count, size), 2, PLENTY);
    QCOMPARE(rounds.size(), std::size_t(1));
    QCOMPARE(rounds[0].jobsAtATime, 2);
    QTEST(sizesOf(rounds[0]), "sizes");
}

void ArchiveScheduleTest::documentsThatFillTheMemoryComeLater()
{
    // 256 MB and 64 times its size is what a document may take: 896 MB, 3.456 GB, 6.656 GB.
    std::vector<PlannedDocument> all = documents(2, 100000000);
    for (const qint64 size : {qint64(50000000), qint64(10000000), qint64(10000000)}) {
        all.push_back(documents(1, size).front());
    }
    const auto rounds = ArchiveSchedule::roundsOf(all, 4, 7000000000);
    QCOMPARE(rounds.size(), std::size_t(3));
    QCOMPARE(rounds[0].jobsAtATime, 4);
    QCOMPARE(sizesOf(rounds[0]), Sizes({1, 1}));
    QCOMPARE(rounds[1].jobsAtATime, 2);
    QCOMPARE(sizesOf(rounds[1]), Sizes({1}));
    QCOMPARE(rounds[2].jobsAtATime, 1);
    QCOMPARE(sizesOf(rounds[2]), Sizes({1, 1}));
    // Even where nothing is known of the memory, one at a time is tried.
    QCOMPARE(ArchiveSchedule::roundsOf(all, 4, 0)[0].jobsAtATime, 1);
}

void ArchiveScheduleTest::everyDocumentIsInOneJob()
{
    QStringList paths;
    for (const auto& round : ArchiveSchedule::roundsOf(documents(1000, 30000), 3, PLENTY)) {
        for (const ArchiveSchedule::Job& job : round.jobs) {
            for (const PlannedDocument& document : job) {
                paths.append(document.path);
            }
        }
    }
    QCOMPARE(paths.size(), 1000);
    QCOMPARE(paths.removeDuplicates(), 0);
    QVERIFY(ArchiveSchedule::roundsOf({}, 3, PLENTY).empty());
}

void ArchiveScheduleTest::oneByOneIsAJobADocument()
{
    const ArchiveSchedule::Round round = ArchiveSchedule::oneByOne(documents(3, 1));
    QCOMPARE(round.jobsAtATime, 1);
    QCOMPARE(sizesOf(round), Sizes({1, 1, 1}));
    QVERIFY(ArchiveSchedule::oneByOne({}).jobs.empty());
}

void ArchiveScheduleTest::howDocumentsAreSpreadOverMachines_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<qint64>("size");
    QTest::addColumn<int>("machines");
    QTest::addColumn<Sizes>("sizes");
    QTest::newRow("a few are worth one parcel") << 16 << qint64(10000) << 50 << Sizes{16};
    // Of eight cores each, and four turns.
    QTest::newRow("a share for each core and turn") << 6400 << qint64(1000) << 2 << Sizes(64, 100);
    QTest::newRow("at most 1024 in a parcel") << 65536 << qint64(1000) << 1 << Sizes(64, 1024);
    QTest::newRow("at most eight megabytes") << 320 << qint64(1000000) << 1 << Sizes(40, 8);
}

void ArchiveScheduleTest::howDocumentsAreSpreadOverMachines()
{
    QFETCH(int, count);
    QFETCH(qint64, size);
    QFETCH(int, machines);
    QTEST(sizesOf({1, ArchiveSchedule::parcelsOf(documents(count, size), machines)}), "sizes");
}

void ArchiveScheduleTest::largeDocumentsStayHere()
{
    QVERIFY(!ArchiveSchedule::isForHere(documents(1, 8000000).front()));
    QVERIFY(ArchiveSchedule::isForHere(documents(1, 8000001).front()));
}

void ArchiveScheduleTest::memoryIsReadFromTheKernelsAccount_data()
{
    QTest::addColumn<QByteArray>("account");
    QTest::addColumn<qint64>("bytes");
    QTest::newRow("usual") << QByteArray("MemTotal:       24 kB\nMemFree:        1 kB\n"
                                         "MemAvailable:   22 kB\nBuffers:        3 kB\n")
                           << qint64(22 * 1024);
    QTest::newRow("more than an int holds")
        << QByteArray("MemAvailable: 8589934592 kB\n") << qint64(8796093022208);
    QTest::newRow("not told") << QByteArray("MemTotal: 24 kB\nMemFree: 1 kB\n") << qint64(0);
    QTest::newRow("no number") << QByteArray("MemAvailable:\n") << qint64(0);
    QTest::newRow("nothing") << QByteArray() << qint64(0);
}

void ArchiveScheduleTest::memoryIsReadFromTheKernelsAccount()
{
    QFETCH(QByteArray, account);
    QTEST(ArchiveSchedule::availableMemoryIn(account), "bytes");
}

void ArchiveScheduleTest::theMachineTellsItsMemory()
{
    QVERIFY(ArchiveSchedule::availableMemory() > 0);
}

QTEST_GUILESS_MAIN(ArchiveScheduleTest)

#include "ArchiveScheduleTest.moc"
