#include "FileConverters/CoordinationWorkspaceSection/archive/report/ArchiveReport.h"
#include "tests/support/Sanitizer.h"

#include <QtTest>

#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr int MEGABYTE = 1000000;
constexpr int LARGE_RECORDS = 50;
constexpr rlim_t TOO_LITTLE = 40000000; // bytes for all of them

rlim_t addressSpace()
{
    QFile file(QStringLiteral("/proc/self/statm"));
    const bool isOpen = file.open(QIODevice::ReadOnly);
    return isOpen ? file.readAll().split(' ')[0].toULongLong() *
                        static_cast<rlim_t>(sysconf(_SC_PAGESIZE))
                  : 0;
}

} // namespace

class ArchiveReportTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void aReportIsReplacedByOneLineADocument();
    void aReportThatIsRightStaysAsItIs_data();
    void aReportThatIsRightStaysAsItIs();
    void aReportMayBeLargerThanMemory();
    void linesAreAddedBehindOneThatWasCutOff_data();
    void linesAreAddedBehindOneThatWasCutOff();
    void aReportStandsInNothingElsesPlace_data();
    void aReportStandsInNothingElsesPlace();
    void aReportThatIsNotThereHasNoRecords();
    void aReportThatCannotBeReadIsNoEmptyOne();

private:
    QString file() const { return m_folder->filePath(QStringLiteral("report.jsonl")); }
    QByteArray bytes() const;
    static DocumentRecord record(const QString& path);

    std::unique_ptr<QTemporaryDir> m_folder;
};

QByteArray ArchiveReportTest::bytes() const
{
    QFile report(file());
    return report.open(QIODevice::ReadOnly) ? report.readAll() : QByteArray();
}

DocumentRecord ArchiveReportTest::record(const QString& path)
{
    DocumentRecord made;
    made.path = path;
    return made;
}

void ArchiveReportTest::aReportIsReplacedByOneLineADocument()
{
    QVERIFY(ArchiveReport::append(file(), {record("b"), record("a"), record("b")}));
    const ArchiveReport::Records records = ArchiveReport::read(file()).value();
    QCOMPARE(records.keys(), QStringList({"a", "b"}));
    QVERIFY(ArchiveReport::replace(file(), records));
    QCOMPARE(bytes(), record("a").toLine() + record("b").toLine());
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden),
             QStringList("report.jsonl"));
}

void ArchiveReportTest::aReportThatIsRightStaysAsItIs_data()
{
    const QByteArray right = record("a").toLine() + record("b").toLine();
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<bool>("stays");
    QTest::newRow("right") << right << true;
    QTest::newRow("one line short") << record("a").toLine() << false;
    QTest::newRow("one line more") << right + record("c").toLine() << false;
    QTest::newRow("another order") << record("b").toLine() + record("a").toLine() << false;
    QTest::newRow("one byte short") << right.chopped(1) << false;
    QTest::newRow("nothing") << QByteArray() << false;
}

void ArchiveReportTest::aReportThatIsRightStaysAsItIs()
{
    QFETCH(QByteArray, before);
    QFile report(file());
    QVERIFY(report.open(QIODevice::WriteOnly));
    report.write(before);
    report.close();
    QVERIFY(report.open(QIODevice::ReadOnly)); // its own file, whatever has its name then
    QVERIFY(ArchiveReport::replace(file(), {{"a", record("a")}, {"b", record("b")}}));
    QCOMPARE(bytes(), record("a").toLine() + record("b").toLine());
    QFile link(QStringLiteral("/proc/self/fd/%1").arg(report.handle()));
    QTEST(link.symLinkTarget() == file(), "stays");
}

void ArchiveReportTest::aReportMayBeLargerThanMemory()
{
    if (IS_SANITIZED) {
        QSKIP("a sanitizer runs within no limit on memory");
    }
    ArchiveReport::Records records;
    DocumentRecord large = record("a");
    large.reason = QStringLiteral("not-read");
    large.text = QString(MEGABYTE, 'x'); // which all of them share
    for (int number = 0; number < LARGE_RECORDS; ++number) {
        large.path = QString::number(number);
        records.insert(large.path, large);
    }
    rlimit before{};
    getrlimit(RLIMIT_AS, &before);
    const rlimit little{addressSpace() + TOO_LITTLE, before.rlim_max};

    setrlimit(RLIMIT_AS, &little);
    const bool isWritten = ArchiveReport::replace(file(), records);
    const bool isKept = ArchiveReport::replace(file(), records);
    setrlimit(RLIMIT_AS, &before);

    QVERIFY(isWritten && isKept);
    QVERIFY(QFileInfo(file()).size() / MEGABYTE >= LARGE_RECORDS);
}

void ArchiveReportTest::linesAreAddedBehindOneThatWasCutOff_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("between");
    QTest::addColumn<QStringList>("paths");
    const QByteArray whole = record("a").toLine();
    QTest::newRow("nothing") << QByteArray() << QByteArray() << QStringList{"b"};
    QTest::newRow("a whole line") << whole << QByteArray() << QStringList{"a", "b"};
    QTest::newRow("half a line") << whole.left(20) << QByteArray("\n") << QStringList{"b"};
    QTest::newRow("a line without its end")
        << whole.chopped(1) << QByteArray("\n") << QStringList{"a", "b"};
    QTest::newRow("one byte") << QByteArray("{") << QByteArray("\n") << QStringList{"b"};
}

void ArchiveReportTest::linesAreAddedBehindOneThatWasCutOff()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, between);
    QFile report(file());
    QVERIFY(report.open(QIODevice::WriteOnly) && report.write(before) == before.size());
    report.close();
    QVERIFY(ArchiveReport::append(file(), {record("b")}));
    QCOMPARE(bytes(), before + between + record("b").toLine());
    QTEST(QStringList(ArchiveReport::read(file()).value().keys()), "paths");
}

void ArchiveReportTest::aReportStandsInNothingElsesPlace_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("may");
    QTest::newRow("empty") << QByteArray() << true;
    QTest::newRow("a report") << record("a").toLine() << true;
    DocumentRecord again = record("a");
    again.earlier = FileIdentity{1, QStringLiteral("0f")};
    QTest::newRow("a report of a document that stands") << again.toLine() << true;
    QTest::newRow("a piece of a line") << QByteArray("{\"for") << true;
    QTest::newRow("other JSON") << QByteArray("{\"name\":1}\n") << false;
    QTest::newRow("a text") << QByteArray("Friday's show\n") << false;
}

void ArchiveReportTest::aReportStandsInNothingElsesPlace()
{
    QFETCH(QByteArray, content);
    QVERIFY(ArchiveReport::mayStandIn(file()));
    QVERIFY(!ArchiveReport::mayStandIn(m_folder->path()));
    QFile report(file());
    QVERIFY(report.open(QIODevice::WriteOnly) && report.write(content) == content.size());
    report.close();
    QTEST(ArchiveReport::mayStandIn(file()), "may");
}

void ArchiveReportTest::aReportThatIsNotThereHasNoRecords()
{
    QVERIFY(ArchiveReport::read(file()).value().isEmpty());
    QVERIFY(ArchiveReport::read(m_folder->filePath("none/report.jsonl")).value().isEmpty());
}

// As on a broken disk: it opens, has a size or none, and each read fails.
void ArchiveReportTest::aReportThatCannotBeReadIsNoEmptyOne()
{
    QVERIFY(!ArchiveReport::read("/proc/self/mem"));
    QCOMPARE(errno, EIO);
}

QTEST_GUILESS_MAIN(ArchiveReportTest)

#include "ArchiveReportTest.moc"
