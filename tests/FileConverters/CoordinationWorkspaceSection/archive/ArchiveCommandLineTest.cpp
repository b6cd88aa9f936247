#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveCommandLine.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

Q_DECLARE_METATYPE(ArchiveCommandLine::Task)
Q_DECLARE_METATYPE(std::optional<qint64>)

namespace {

const QStringList FOLDERS = {"/no/source", "/no/target"};

ArchiveCommandLine parsed(const QStringList& options)
{
    ArchiveCommandLine line;
    const QString problem = line.parse(options + FOLDERS);
    if (!problem.isEmpty()) {
        qFatal("refused: %s", qPrintable(problem));
    }
    return line;
}

} // namespace

class ArchiveCommandLineTest : public QObject
{
    Q_OBJECT

private slots:
    void tasksAreUnderstood_data();
    void tasksAreUnderstood();
    void switchesStandAlone_data();
    void switchesStandAlone();
    void limitsAreUnderstood_data();
    void limitsAreUnderstood();
    void jobsAreCounted();
    void foldersAreToldWithoutLinks();
    void filesAreToldAbsolutely();
    void machinesAreReadFromTheirFile_data();
    void machinesAreReadFromTheirFile();
    void wrongUsageIsTold_data();
    void wrongUsageIsTold();
    void helpNamesEveryOption();
};

void ArchiveCommandLineTest::tasksAreUnderstood_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<ArchiveCommandLine::Task>("task");
    QTest::newRow("convert") << FOLDERS << ArchiveCommandLine::CONVERT;
    QTest::newRow("folders like options")
        << QStringList{"--", "--help", "--version"} << ArchiveCommandLine::CONVERT;
    QTest::newRow("help") << QStringList{"--help"} << ArchiveCommandLine::SHOW_HELP;
    QTest::newRow("version") << QStringList{"--version"} << ArchiveCommandLine::SHOW_VERSION;
    QTest::newRow("schema") << QStringList{"--json-schema"} << ArchiveCommandLine::SHOW_SCHEMA;
    QTest::newRow("help before all else")
        << QStringList{"--json-schema", "--version", "--jobs=none", "--help"}
        << ArchiveCommandLine::SHOW_HELP;
}

void ArchiveCommandLineTest::tasksAreUnderstood()
{
    QFETCH(QStringList, arguments);
    ArchiveCommandLine line;
    QCOMPARE(line.parse(arguments), QString());
    QTEST(line.task, "task");
}

void ArchiveCommandLineTest::switchesStandAlone_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QList<bool>>("told");
    QTest::newRow("none") << "--jobs=1" << QList<bool>{false, false, false, false, false};
    QTest::newRow("dry run") << "--dry-run" << QList<bool>{true, false, false, false, false};
    QTest::newRow("force") << "--force" << QList<bool>{false, true, false, false, false};
    QTest::newRow("verify") << "--verify" << QList<bool>{false, false, true, false, false};
    QTest::newRow("only clean") << "--only-clean" << QList<bool>{false, false, false, true, false};
    QTest::newRow("fail if lossy")
        << "--fail-if-lossy" << QList<bool>{false, false, false, false, true};
}

void ArchiveCommandLineTest::switchesStandAlone()
{
    QFETCH(QString, option);
    const ArchiveCommandLine line = parsed({option});
    const QList<bool> told = {line.isTrial, line.forces, line.settings.verifies,
                              line.settings.onlyClean, line.failsIfLossy};
    QTEST(told, "told");
}

void ArchiveCommandLineTest::limitsAreUnderstood_data()
{
    using Limit = std::optional<qint64>;
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<Limit>("milliseconds");
    QTest::addColumn<Limit>("memoryBytes");
    QTest::newRow("by size") << QStringList() << Limit() << Limit();
    QTest::newRow("no time limit") << QStringList{"--timeout=none"} << Limit(0) << Limit();
    QTest::newRow("no memory limit") << QStringList{"--memory", "none"} << Limit() << Limit(0);
    QTest::newRow("least") << QStringList{"--timeout=1", "--memory=1"} << Limit(1000)
                           << Limit(1000000);
    QTest::newRow("most") << QStringList{"--timeout=1000000000", "--memory=1000000000"}
                          << Limit(1000000000000) << Limit(1000000000000000);
}

void ArchiveCommandLineTest::limitsAreUnderstood()
{
    QFETCH(QStringList, options);
    const ArchiveSettings settings = parsed(options).settings;
    QTEST(settings.milliseconds, "milliseconds");
    QTEST(settings.memoryBytes, "memoryBytes");
}

void ArchiveCommandLineTest::jobsAreCounted()
{
    QCOMPARE(parsed({}).jobs, 0);
    QCOMPARE(parsed({"--jobs=1"}).jobs, 1);
    QCOMPARE(parsed({"--jobs", "1000"}).jobs, 1000);
}

void ArchiveCommandLineTest::foldersAreToldWithoutLinks()
{
    const QTemporaryDir folder;
    const QDir root(QFileInfo(folder.path()).canonicalFilePath());
    QVERIFY(root.mkpath("shows"));
    QVERIFY(QFile::link("shows", root.filePath("link")));
    ArchiveCommandLine line;
    QCOMPARE(line.parse({root.filePath("link/"), root.filePath("link/new/../target")}), QString());
    QCOMPARE(line.settings.source, root.filePath("shows"));
    QCOMPARE(line.settings.target, root.filePath("shows/target"));
}

void ArchiveCommandLineTest::filesAreToldAbsolutely()
{
    const ArchiveCommandLine usual = parsed({});
    QCOMPARE(usual.settings.report, QString("/no/target/.coordworkspace/report.jsonl"));
    QVERIFY(usual.page.isEmpty());
    const ArchiveCommandLine asked = parsed({"--report=a.jsonl", "--html", "pages/b.html"});
    const QString here = QFileInfo(QDir::currentPath()).canonicalFilePath();
    QCOMPARE(asked.settings.report, here + "/a.jsonl");
    QCOMPARE(asked.page, here + "/pages/b.html");
}

void ArchiveCommandLineTest::machinesAreReadFromTheirFile_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<bool>("areOthers");
    QTest::addColumn<int>("jobs");
    QTest::newRow("another") << QByteArray("stage\n") << QStringList() << true << 0;
    QTest::newRow("this one and another")
        << QByteArray("3/:\nstage\n") << QStringList() << true << 0;
    QTest::newRow("this one") << QByteArray(":\n") << QStringList() << false << 0;
    QTest::newRow("this one and its jobs") << QByteArray("3/:\n") << QStringList() << false << 3;
    QTest::newRow("what is asked for holds")
        << QByteArray("3/:\n") << QStringList{"--jobs=5"} << false << 5;
}

void ArchiveCommandLineTest::machinesAreReadFromTheirFile()
{
    QFETCH(QByteArray, file);
    QFETCH(QStringList, options);
    QFETCH(bool, areOthers);
    QTemporaryFile machines;
    QVERIFY(machines.open());
    machines.write(file);
    QVERIFY(machines.flush());
    const ArchiveCommandLine line =
        parsed(options + QStringList("--machines=" + machines.fileName()));
    QCOMPARE(line.machines, areOthers ? machines.fileName() : QString());
    QTEST(line.jobs, "jobs");
}

void ArchiveCommandLineTest::wrongUsageIsTold_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("named");
    const auto row = [](const char* name, const QStringList& arguments, const char* named) {
        QTest::newRow(name) << arguments << QString(named);
    };
    row("unknown option", QStringList("--parallel") + FOLDERS, "parallel");
    row("unknown letter", QStringList("-n") + FOLDERS, "'n'");
    row("value too many", QStringList("--force=yes") + FOLDERS, "--force");
    row("value too few", FOLDERS + QStringList("--jobs"), "--jobs");
    row("no folders", {}, "SOURCE and TARGET");
    row("one folder", {"a"}, "SOURCE and TARGET");
    row("three folders", {"a", "b", "c"}, "SOURCE and TARGET");
    row("empty source", {"", "b"}, "SOURCE and TARGET");
    row("empty target", {"a", ""}, "SOURCE and TARGET");
    row("no report", QStringList("--report=") + FOLDERS, "--report is");
    row("no page", QStringList("--html=") + FOLDERS, "--html is");
    for (const char* option : {"timeout", "memory", "jobs"}) {
        for (const char* value :
             {"0", "-1", "1.5", "1s", "", "0x10", "1000000001", "NONE", "99999999999999999999"}) {
            row(qPrintable(QString("%1 of %2").arg(option, value)),
                QStringList(QString("--%1=%2").arg(option, value)) + FOLDERS,
                qPrintable(QString("--%1 is").arg(option)));
        }
    }
    row("no jobs", QStringList("--jobs=none") + FOLDERS, "--jobs is");
    row("too many jobs", QStringList("--jobs=1001") + FOLDERS, "--jobs is");
    row("machines of no file", QStringList("--machines=/no/file") + FOLDERS, "--machines is");
    row("machines of an empty file", QStringList("--machines=/dev/null") + FOLDERS,
        "--machines is");
}

void ArchiveCommandLineTest::wrongUsageIsTold()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, named);
    ArchiveCommandLine line;
    const QString problem = line.parse(arguments);
    QVERIFY2(problem.contains(named), qPrintable(problem));
}

void ArchiveCommandLineTest::helpNamesEveryOption()
{
    const QString help = ArchiveCommandLine::helpText();
    for (const char* option :
         {"--dry-run ", "--force ", "--verify ", "--only-clean ", "--fail-if-lossy ",
          "--timeout=S ", "--memory=MB ", "--jobs=N ", "--machines=FILE ", "--report=FILE ",
          "--html=FILE ", "--json-schema ", "--help ", "--version "}) {
        QVERIFY2(help.contains(QString("\n  ") + option), option);
    }
    for (const QString& line : help.split('\n')) {
        QVERIFY2(line.size() <= 100, qPrintable(line));
    }
}

QTEST_GUILESS_MAIN(ArchiveCommandLineTest)

#include "ArchiveCommandLineTest.moc"
