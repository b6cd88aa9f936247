#include "FileConverters/CoordinationWorkspaceSection/archive/machines/MachinesRound.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/report/ArchiveReport.h"
#include "tests/support/TestFolder.h"

#include <QtTest>

#include <cerrno>

Q_DECLARE_METATYPE(std::optional<qint64>)

namespace {

constexpr int LONG_MS = 60000;
const QByteArray AFTER = "after";

} // namespace

// A program of the test's own stands where Parallel is looked for, and plays the machines: it runs
// in the folder of the parcels, where outputs come back to, and prints what machines tell.
class MachinesRoundTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void whatComesBackIsTakenIn();
    void whatCannotBeTrustedStaysToBeDone_data();
    void whatCannotBeTrustedStaysToBeDone();
    void whatAMachineCannotDoIsForHere();
    void whatIsToldAgainCountsOnce();
    void whatTheMachinesComplainOfIsToldOnce();
    void complaintsEnd();
    void aReportThatCannotBeWrittenEndsTheRound();
    void aJobHasTimeForItsDocuments_data();
    void aJobHasTimeForItsDocuments();
    void whatCannotBePackedIsNotStarted();
    void jobsAtWorkEndWithTheRound();

private:
    QString path(const QString& name) const { return m_folder->path(name); }
    /** What a machine tells of a document that it has converted to AFTER. */
    DocumentRecord converted(const QString& document) const;
    /** Lets the machines do what the script says, and print the lines. */
    void machinesDo(const QByteArray& script, const QByteArray& lines = {}) const;
    static QByteArray tagged(const DocumentRecord& record, int parcel = 1);
    /** The script by which a machine's output comes back. */
    static QByteArray outputOf(const char* document);
    bool begin(MachinesRound& round) const;
    /** All that a whole round takes in. */
    static std::vector<DocumentRecord> takenIn(MachinesRound& round);

    std::unique_ptr<TestFolder> m_folder;
    ArchiveSettings m_settings;
    std::vector<PlannedDocument> m_documents;
    QByteArray m_path;
};

void MachinesRoundTest::init()
{
    m_folder = std::make_unique<TestFolder>();
    m_settings = {};
    m_settings.source = path("source");
    m_settings.target = path("target");
    m_settings.report = m_settings.usualReport();
    QVERIFY(QDir().mkpath(m_settings.folder()));
    m_documents = {{"a.xml", 7, false, false, {}}, {"sub/b c.xml", 7, false, false, {}}};
    for (const PlannedDocument& document : m_documents) {
        m_folder->write("source/" + document.path, "before\n");
    }
    m_folder->write("machines", "stage\n");
    m_folder->writeProgram("bin/parallel", R"(cat >"$ROUND/input"
printf '%s\n' "$@" >"$ROUND/arguments"
. "$ROUND/script"
cat "$ROUND/lines")");
    m_path = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(path("bin")) + ':' + m_path);
    qputenv("ROUND", QFile::encodeName(m_folder->path()));
}

void MachinesRoundTest::cleanup()
{
    qputenv("PATH", m_path);
    qunsetenv("ROUND");
}

DocumentRecord MachinesRoundTest::converted(const QString& document) const
{
    m_folder->write("after", AFTER);
    DocumentRecord record;
    record.path = document;
    record.outcome = DocumentRecord::CONVERTED;
    record.source = FileIdentity::of(path("source/" + document));
    record.target = FileIdentity::of(path("after"));
    return record;
}

void MachinesRoundTest::machinesDo(const QByteArray& script, const QByteArray& lines) const
{
    m_folder->write("script", script + '\n');
    m_folder->write("lines", lines);
}

QByteArray MachinesRoundTest::tagged(const DocumentRecord& record, int parcel)
{
    return QByteArray::number(parcel) + '\t' + record.toLine();
}

QByteArray MachinesRoundTest::outputOf(const char* document)
{
    return QByteArray("mkdir -p 1/out/sub; printf ") + AFTER + " >'1/out/" + document + "'\n";
}

bool MachinesRoundTest::begin(MachinesRound& round) const
{
    return round.pack(m_documents, path("machines")) && round.start(path("machines"), 0);
}

std::vector<DocumentRecord> MachinesRoundTest::takenIn(MachinesRound& round)
{
    std::vector<DocumentRecord> records;
    while (!round.isOver()) {
        const auto taken = round.next(LONG_MS);
        if (!taken) {
            qFatal("nothing could be reported: %s", strerror(errno));
        }
        records.insert(records.end(), taken->begin(), taken->end());
    }
    return records;
}

void MachinesRoundTest::whatComesBackIsTakenIn()
{
    machinesDo(outputOf("a.xml") + outputOf("sub/b c.xml"),
               tagged(converted("a.xml")) + tagged(converted("sub/b c.xml")));
    MachinesRound round(m_settings, "/the worker", path("round"));
    QVERIFY(begin(round));
    const std::vector<DocumentRecord> records = takenIn(round);
    QCOMPARE(records.size(), std::size_t(2));
    QCOMPARE(m_folder->read("target/a.xml"), AFTER);
    QCOMPARE(m_folder->read("target/sub/b c.xml"), AFTER);
    const ArchiveReport::Records reported = ArchiveReport::read(m_settings.report).value();
    for (const DocumentRecord& record : records) {
        QVERIFY(record.tellsTheSameAs(converted(record.path)));
        QVERIFY(reported.value(record.path).tellsTheSameAs(record));
    }
    QVERIFY(round.forHere().isEmpty());
    QVERIFY(round.takeComplaints().isEmpty());
    QVERIFY(!QFile::exists(path("round/1"))); // all its documents are done with
}

void MachinesRoundTest::whatCannotBeTrustedStaysToBeDone_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QByteArray>("lines"); // RECORD stands for what is told of a.xml
    const QByteArray output = outputOf("a.xml");
    const auto row = [](const char* name, const QByteArray& script, const char* lines) {
        QTest::newRow(name) << script << QByteArray(lines);
    };
    row("nothing is told", output, "");
    row("no output came back", ":", "1\tRECORD");
    row("another output came back", "mkdir -p 1/out; echo other >1/out/a.xml", "1\tRECORD");
    row("a link came back", "mkdir 1/out; echo after >1/b; ln -s ../b 1/out/a.xml", "1\tRECORD");
    row("told of another parcel", output, "2\tRECORD");
    row("told of no parcel", output, "RECORD");
    row("told of parcel 0", output, "0\tRECORD");
    row("not told in a line", output, "1\tand now: RECORD");
    row("a line without an end", output, "1\tCUT");
    row("a word of the login shell's", output, "Welcome!\n\n\t\n1\t\n1\t{}\n1\t[]\n");
}

void MachinesRoundTest::whatCannotBeTrustedStaysToBeDone()
{
    QFETCH(QByteArray, script);
    QFETCH(QByteArray, lines);
    const QByteArray record = converted("a.xml").toLine();
    machinesDo(script, lines.replace("RECORD", record).replace("CUT", record.chopped(1)));
    MachinesRound round(m_settings, "/the worker", path("round"));
    QVERIFY(begin(round));
    QVERIFY(takenIn(round).empty());
    QVERIFY(!QFile::exists(path("target/a.xml")));
    QVERIFY(!QFile::exists(m_settings.report));
    QVERIFY(round.forHere().isEmpty());
}

void MachinesRoundTest::whatAMachineCannotDoIsForHere()
{
    DocumentRecord tooLarge = converted("a.xml");
    tooLarge.outcome = DocumentRecord::LIMIT;
    tooLarge.reason = "memory";
    tooLarge.target.reset();
    machinesDo(outputOf("sub/b c.xml"), tagged(tooLarge) + tagged(converted("sub/b c.xml")));
    MachinesRound round(m_settings, "/the worker", path("round"));
    QVERIFY(begin(round));
    QCOMPARE(takenIn(round).size(), std::size_t(1));
    QCOMPARE(round.forHere(), QSet<QString>({"a.xml"}));
}

void MachinesRoundTest::whatIsToldAgainCountsOnce()
{
    DocumentRecord again = converted("a.xml");
    again.seconds = 9;
    const QByteArray line = tagged(converted("a.xml"));
    machinesDo(outputOf("a.xml") + "cat \"$ROUND/lines\"; sleep 0.2", tagged(again) + line + line);
    MachinesRound round(m_settings, "/the worker", path("round"));
    QVERIFY(begin(round));
    const std::vector<DocumentRecord> records = takenIn(round);
    QCOMPARE(records.size(), std::size_t(1));
    QCOMPARE(m_folder->read("target/.coordworkspace/report.jsonl").count('\n'), 1);
}

void MachinesRoundTest::whatTheMachinesComplainOfIsToldOnce()
{
    machinesDo(
        "echo '1\tno room' >&2; echo 'no room' >&2; echo >&2; printf 'ssh: gone\\n' >ssh-log;"
        " printf 'ssh: gone\\ncut o' >>ssh-log",
        "1\tproblem: not the same version\n1\tproblem: \n");
    MachinesRound round(m_settings, "/the worker", path("round"));
    QVERIFY(begin(round));
    QVERIFY(takenIn(round).empty());
    QStringList complaints = round.takeComplaints();
    complaints.sort();
    QCOMPARE(complaints, QStringList({"no room", "not the same version", "ssh: gone"}));
    QVERIFY(round.takeComplaints().isEmpty());
}

void MachinesRoundTest::complaintsEnd()
{
    machinesDo("i=0; while [ $i -lt 150 ]; do echo \"complaint $i\" >&2; i=$((i + 1)); done");
    MachinesRound round(m_settings, "/the worker", path("round"));
    QVERIFY(begin(round));
    QVERIFY(takenIn(round).empty());
    const QStringList complaints = round.takeComplaints();
    QCOMPARE(complaints.size(), 100);
    QCOMPARE(complaints.last(), QString("complaint 99"));
}

void MachinesRoundTest::aReportThatCannotBeWrittenEndsTheRound()
{
    QVERIFY(QDir().mkpath(m_settings.pendingReport())); // a folder, which takes no lines
    machinesDo(outputOf("a.xml"), tagged(converted("a.xml")));
    MachinesRound round(m_settings, "/the worker", path("round"));
    QVERIFY(begin(round));
    std::optional<std::vector<DocumentRecord>> taken;
    do {
        taken = round.next(LONG_MS);
    } while (taken && !round.isOver());
    QVERIFY(!taken);
    QCOMPARE(errno, EISDIR);
    QVERIFY(!QFile::exists(path("target/a.xml")));
}

void MachinesRoundTest::aJobHasTimeForItsDocuments_data()
{
    QTest::addColumn<qint64>("size"); // of the second document; the first has 7 bytes
    QTest::addColumn<std::optional<qint64>>("milliseconds");
    QTest::addColumn<QByteArray>("seconds");
    using Limit = std::optional<qint64>;
    // A minute for logging in, the limit of the slowest, and 100 kB a second.
    QTest::newRow("small ones") << qint64(7) << Limit(5999) << QByteArray("65");
    QTest::newRow("one of 1 MB") << qint64(1000000) << Limit(6000) << QByteArray("76");
    QTest::newRow("limits by size") << qint64(3000000) << Limit() << QByteArray("103");
    QTest::newRow("no limit") << qint64(7) << Limit(0) << QByteArray("60");
}

void MachinesRoundTest::aJobHasTimeForItsDocuments()
{
    QFETCH(qint64, size);
    QFETCH(std::optional<qint64>, milliseconds);
    m_documents[1].size = size;
    m_settings.milliseconds = milliseconds;
    machinesDo(":");
    MachinesRound round(m_settings, "/the worker", path("round"));
    QVERIFY(begin(round));
    takenIn(round);
    const QList<QByteArray> arguments = m_folder->read("arguments").split('\n');
    QTEST(arguments.value(arguments.indexOf("--timeout") + 1), "seconds");
}

void MachinesRoundTest::whatCannotBePackedIsNotStarted()
{
    machinesDo(":");
    m_folder->write("round", "a file in the folder's place");
    MachinesRound round(m_settings, "/the worker", path("round"));
    errno = 0;
    QVERIFY(!begin(round));
    QVERIFY(errno != 0);
    QVERIFY(round.isOver());
    QVERIFY(!QFile::exists(path("arguments")));
}

void MachinesRoundTest::jobsAtWorkEndWithTheRound()
{
    machinesDo("echo $$ >\"$ROUND/process\"; echo begun >&2; exec sleep 600");
    {
        MachinesRound round(m_settings, "/the worker", path("round"));
        QVERIFY(begin(round));
        while (round.takeComplaints().isEmpty()) {
            QVERIFY(round.next(10)); // nothing is printed: the wait ends on its own
        }
        QVERIFY(!round.isOver());
    }
    QVERIFY(!QFile::exists("/proc/" + m_folder->read("process").trimmed()));
    QVERIFY(!QFile::exists(path("round")));
}

QTEST_GUILESS_MAIN(MachinesRoundTest)

#include "MachinesRoundTest.moc"
