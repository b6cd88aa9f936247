#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveConversion.h"

#include "tests/support/CapturedStream.h"
#include "tests/support/TestFolder.h"

#include <QtTest>

#include <iostream>

// A program of the test's own stands in for the worker; GNU Parallel is the system's.
class ArchiveConversionTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void whatWorkersTellIsTaken();
    void nothingToConvertStartsNothing();
    void whatBreaksOffIsTriedAgainAlone();
    void whatStandsUntoldIsTakenAsPending();
    void aProblemEndsTheRun();
    void anotherParallelIsToldApart_data();
    void anotherParallelIsToldApart();
    void aParallelThatCannotBeStartedIsToldAsSuch_data();
    void aParallelThatCannotBeStartedIsToldAsSuch();
    void jobsAreAsManyAsAskedFor_data();
    void jobsAreAsManyAsAskedFor();
    void whatRunsLeaveIsRemoved();

private:
    QString path(const QString& name) const { return m_folder->path(name); }
    static QByteArray convertedLine(const QString& path);
    ArchiveStatus convert(RunRecords& records) const;

    std::unique_ptr<TestFolder> m_folder;
    ArchiveCommandLine m_line;
    std::vector<PlannedDocument> m_documents;
    QByteArray m_path;
};

void ArchiveConversionTest::init()
{
    m_folder = std::make_unique<TestFolder>();
    m_line = ArchiveCommandLine();
    m_line.jobs = 1;
    m_line.settings.source = path("source");
    m_line.settings.target = path("target");
    m_line.settings.report = m_line.settings.usualReport();
    QVERIFY(QDir().mkpath(m_line.settings.folder()));
    m_documents = {{"a.xml", 7, false, false, {}}, {"b.xml", 7, false, false, {}}};
    m_folder->write("calls", "");
    m_folder->write("lines", convertedLine("a.xml") + convertedLine("b.xml"));
    m_path = qgetenv("PATH");
    qputenv("CONVERSION", QFile::encodeName(m_folder->path()));
}

void ArchiveConversionTest::cleanup()
{
    qputenv("PATH", m_path);
    qunsetenv("CONVERSION");
}

QByteArray ArchiveConversionTest::convertedLine(const QString& path)
{
    DocumentRecord record;
    record.path = path;
    record.outcome = DocumentRecord::CONVERTED;
    return record.toLine();
}

ArchiveStatus ArchiveConversionTest::convert(RunRecords& records) const
{
    return ArchiveConversion(m_line, m_documents, records, path("worker"), m_line.settings.folder())
        .run();
}

void ArchiveConversionTest::whatWorkersTellIsTaken()
{
    m_folder->writeProgram("worker", R"(echo "$3" >>"$CONVERSION/calls"; cat "$CONVERSION/lines")");
    const ArchiveHistory before(m_line.settings);
    RunRecords records(before, false);
    QCOMPARE(convert(records), ARCHIVE_DONE);
    QCOMPARE(records.all().keys(), QStringList({"a.xml", "b.xml"}));
    QVERIFY(records.untoldAmong(m_documents).empty());
    QVERIFY(QDir(m_line.settings.folder())
                .entryList(QDir::AllEntries | QDir::NoDotAndDotDot)
                .isEmpty()); // what was needed meanwhile
}

void ArchiveConversionTest::nothingToConvertStartsNothing()
{
    m_documents.clear();
    qputenv("PATH", QFile::encodeName(m_folder->path())); // there is no Parallel
    const ArchiveHistory before(m_line.settings);
    RunRecords records(before, false);
    QCOMPARE(convert(records), ARCHIVE_DONE);
}

void ArchiveConversionTest::whatBreaksOffIsTriedAgainAlone()
{
    for (int i = 0; i < 200; ++i) {
        m_documents.push_back({QString("c%1.xml").arg(i), 7, false, false, {}});
    }
    m_folder->writeProgram("worker", R"(echo "$3" >>"$CONVERSION/calls"; exit 1)");
    const ArchiveHistory before(m_line.settings);
    RunRecords records(before, false);
    QCOMPARE(convert(records), ARCHIVE_DONE);
    QVERIFY(records.all().isEmpty());
    QList<QByteArray> calls = m_folder->read("calls").trimmed().split('\n');
    const int inJobs = calls.size() - static_cast<int>(m_documents.size());
    QVERIFY2(inJobs > 0 && inJobs < 200, calls.join(' ').constData());
    QCOMPARE(calls.mid(inJobs).count("1"), static_cast<int>(m_documents.size()));
}

void ArchiveConversionTest::whatStandsUntoldIsTakenAsPending()
{
    // The worker dies after its document stands, and before it has reported it.
    DocumentRecord standing;
    standing.path = "a.xml";
    standing.outcome = DocumentRecord::CONVERTED;
    m_folder->write("target/a.xml", "<after/>");
    standing.target = FileIdentity::of(path("target/a.xml"));
    QVERIFY(ArchiveReport::append(m_line.settings.pendingReport(), {standing}));
    m_folder->writeProgram("worker", R"(echo "$3" >>"$CONVERSION/calls"; exit 1)");
    const ArchiveHistory before(m_line.settings);
    RunRecords records(before, false);
    QCOMPARE(convert(records), ARCHIVE_DONE);
    QCOMPARE(records.all().keys(), QStringList({"a.xml"}));
    QVERIFY(ArchiveReport::read(m_line.settings.report)->contains("a.xml"));
}

void ArchiveConversionTest::aProblemEndsTheRun()
{
    m_folder->writeProgram("worker", "echo 'problem: the report cannot be written: gone'; exit 1");
    const ArchiveHistory before(m_line.settings);
    RunRecords records(before, false);
    const CapturedStream errors(std::cerr);
    QCOMPARE(convert(records), ARCHIVE_NOT_WRITTEN);
    QCOMPARE(errors.bytes(), QByteArray("coordworkspace-convert-archive: the report cannot be"
                                        " written: gone\n"));
}

void ArchiveConversionTest::anotherParallelIsToldApart_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<int>("status");
    QTest::newRow("another program") << QByteArray("exit 2") << int(ARCHIVE_UNAVAILABLE);
    QTest::newRow("GNU's, whose jobs failed")
        << QByteArray("[ \"$1\" = --version ] && echo GNU parallel && exit; exit 2")
        << int(ARCHIVE_DONE);
    QTest::newRow("one that broke off")
        << QByteArray("[ \"$1\" = --version ] && echo GNU parallel && exit; exit 255")
        << int(ARCHIVE_UNAVAILABLE);
    QTest::newRow("one that is killed")
        << QByteArray("[ \"$1\" = --version ] && echo GNU parallel && exit; kill -KILL $$")
        << int(ARCHIVE_UNAVAILABLE);
    QTest::newRow("one that does all the same, whoever it is")
        << QByteArray("cat \"$CONVERSION/lines\"") << int(ARCHIVE_DONE);
}

void ArchiveConversionTest::anotherParallelIsToldApart()
{
    QFETCH(QByteArray, script);
    QFETCH(int, status);
    m_folder->writeProgram("parallel", script);
    qputenv("PATH", QFile::encodeName(m_folder->path()) + ':' + m_path);
    const ArchiveHistory before(m_line.settings);
    RunRecords records(before, false);
    const CapturedStream errors(std::cerr);
    QCOMPARE(int(convert(records)), status);
    QCOMPARE(errors.bytes().isEmpty(), status == ARCHIVE_DONE);
}

void ArchiveConversionTest::aParallelThatCannotBeStartedIsToldAsSuch_data()
{
    QTest::addColumn<QByteArray>("machines");
    QTest::newRow("here") << QByteArray();
    QTest::newRow("for other machines") << QByteArray("one\n");
}

void ArchiveConversionTest::aParallelThatCannotBeStartedIsToldAsSuch()
{
    QFETCH(QByteArray, machines);
    if (!machines.isEmpty()) {
        m_folder->write("machines", machines);
        m_line.machines = path("machines");
    }
    m_folder->write("source/a.xml", "<before/>");
    m_folder->write("source/b.xml", "<before/>");
    qputenv("PATH", QFile::encodeName(m_folder->path())); // there is none
    const ArchiveHistory before(m_line.settings);
    RunRecords records(before, false);
    const CapturedStream errors(std::cerr);
    QCOMPARE(convert(records), ARCHIVE_UNAVAILABLE);
    QCOMPARE(errors.bytes(),
             QByteArray("coordworkspace-convert-archive: GNU Parallel cannot be started\n"));
}

void ArchiveConversionTest::jobsAreAsManyAsAskedFor_data()
{
    QTest::addColumn<int>("asked");
    QTest::addColumn<int>("jobs");
    QTest::newRow("one") << 1 << 1;
    QTest::newRow("seven") << 7 << 7;
    // A job that waits for its output to be synced leaves its core to another.
    QTest::newRow("not told") << 0 << QThread::idealThreadCount() + 1;
}

void ArchiveConversionTest::jobsAreAsManyAsAskedFor()
{
    QFETCH(int, asked);
    QFETCH(int, jobs);
    m_line.jobs = asked;
    m_folder->writeProgram("parallel", "printf '%s\\n' \"$@\" >\"$CONVERSION/arguments\"\n"
                                       "cat \"$CONVERSION/lines\"");
    qputenv("PATH", QFile::encodeName(m_folder->path()) + ':' + m_path);
    const ArchiveHistory before(m_line.settings);
    RunRecords records(before, false);
    QCOMPARE(convert(records), ARCHIVE_DONE);
    const QList<QByteArray> arguments = m_folder->read("arguments").split('\n');
    QCOMPARE(arguments.value(arguments.indexOf("--jobs") + 1), QByteArray::number(jobs));
}

void ArchiveConversionTest::whatRunsLeaveIsRemoved()
{
    const QString folder = m_line.settings.folder();
    m_folder->write("target/.coordworkspace/plan-1", "a plan");
    m_folder->write("target/.coordworkspace/parcels-1/1/plan", "a plan");
    m_folder->write("target/.coordworkspace/parallel/tmp/a", "of Parallel's");
    m_folder->write("target/.coordworkspace/report.jsonl", convertedLine("a.xml"));
    ArchiveConversion::removeRemains(folder);
    QCOMPARE(QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList({"report.jsonl"}));
    ArchiveConversion::removeRemains(path("none"));
}

QTEST_GUILESS_MAIN(ArchiveConversionTest)

#include "ArchiveConversionTest.moc"
