#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ParallelProcess.h"

#include "tests/support/TestFolder.h"

#include <QtTest>

#include <csignal>
#include <cstdlib>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

const QByteArray RECORDS_ALL = R"(printf '%s\n' "$@" >"$RECORDS/arguments"
env >"$RECORDS/environment"
pwd >"$RECORDS/folder"
cat >"$RECORDS/input"
)";
const std::vector<PlannedJob> JOBS = {{0, 3}, {17, 5}};

} // namespace

// A program of the test's own stands where Parallel is looked for.
class ParallelProcessTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void jobsOfAPlanAreHandedOut();
    void parcelsAreHandedOut_data();
    void parcelsAreHandedOut();
    void configurationOfTheUserHasNoSay();
    void parallelThatIsMissingIsNotStarted();
    void onlyGnuParallelIsIt_data();
    void onlyGnuParallelIsIt();
    void parallelThatDoesNotEndIsKilled();
    void childEndsWithItsParentFromTheBeginning();

private:
    void standIn(const QByteArray& script) const { m_folder->writeProgram("parallel", script); }
    QByteArray recorded(const char* what) const { return m_folder->read(what); }
    QList<QByteArray> linesOf(const char* what) const { return recorded(what).split('\n'); }

    std::unique_ptr<TestFolder> m_folder;
    QByteArray m_path;
};

void ParallelProcessTest::init()
{
    m_folder = std::make_unique<TestFolder>();
    m_path = qgetenv("PATH");
    qputenv("PATH", m_folder->path().toLocal8Bit() + ':' + m_path);
    qputenv("RECORDS", m_folder->path().toLocal8Bit());
}

void ParallelProcessTest::cleanup()
{
    qputenv("PATH", m_path);
}

void ParallelProcessTest::jobsOfAPlanAreHandedOut()
{
    standIn(RECORDS_ALL);
    ParallelProcess parallel("/the worker", m_folder->path());
    QVERIFY(parallel.startJobs("/the plan", JOBS, 2));
    QVERIFY(parallel.waitForFinished(-1));
    QCOMPARE(recorded("input"), QByteArray("0 3\n17 5\n"));
    QCOMPARE(recorded("folder"), QByteArray("/\n"));
    const QList<QByteArray> arguments = linesOf("arguments");
    QCOMPARE(arguments.value(arguments.indexOf("--jobs") + 1), QByteArray("2"));
    const QList<QByteArray> environment = linesOf("environment");
    QVERIFY(environment.contains("COORDWORKSPACE_WORKER=/the worker"));
    QVERIFY(environment.contains("COORDWORKSPACE_PLAN=/the plan"));
}

void ParallelProcessTest::parcelsAreHandedOut_data()
{
    QTest::addColumn<int>("atTheSameTime");
    QTest::addColumn<QByteArray>("jobs");
    QTest::newRow("as many as the machine has cores") << 0 << QByteArray("100%");
    QTest::newRow("one") << 1 << QByteArray("1");
    QTest::newRow("several") << 3 << QByteArray("3");
}

void ParallelProcessTest::parcelsAreHandedOut()
{
    QFETCH(int, atTheSameTime);
    standIn(RECORDS_ALL);
    ParallelProcess parallel("/the worker", m_folder->path());
    QVERIFY(parallel.startParcels(m_folder->path(), JOBS,
                                  {"/the machines", atTheSameTime, "/the-log", 77}));
    QVERIFY(parallel.waitForFinished(-1));
    QCOMPARE(recorded("input"), QByteArray("1 0 3\n2 17 5\n"));
    QCOMPARE(recorded("folder"), QFile::encodeName(m_folder->path()) + '\n');
    const QList<QByteArray> arguments = linesOf("arguments");
    const auto valueOf = [&](const char* option) {
        return arguments.value(arguments.indexOf(option) + 1);
    };
    QTEST(valueOf("--jobs"), "jobs");
    QCOMPARE(valueOf("--sshloginfile"), QByteArray("/the machines"));
    QCOMPARE(valueOf("--timeout"), QByteArray("77"));
    const QList<QByteArray> environment = linesOf("environment");
    QVERIFY(environment.contains("COORDWORKSPACE_PARCELS=" + QFile::encodeName(m_folder->path())));
    QVERIFY(recorded("environment").contains("-E /the-log\n"));
}

void ParallelProcessTest::configurationOfTheUserHasNoSay()
{
    standIn(RECORDS_ALL);
    qputenv("PARALLEL", "--jobs 99");
    qputenv("PARALLEL_SHELL", "/bin/false");
    qputenv("PARALLEL_HOME", "/elsewhere");
    ParallelProcess parallel("/the worker", m_folder->path());
    QVERIFY(parallel.startJobs("/the plan", JOBS, 2));
    QVERIFY(parallel.waitForFinished(-1));
    const QList<QByteArray> environment = linesOf("environment");
    QVERIFY(environment.contains("PARALLEL_SHELL=/bin/sh"));
    QVERIFY(environment.contains("PARALLEL_HOME=" + QFile::encodeName(m_folder->path())));
    QVERIFY(!recorded("environment").contains("--jobs 99"));
    QVERIFY(linesOf("arguments").contains("--plain"));
    for (const char* name : {"PARALLEL", "PARALLEL_SHELL", "PARALLEL_HOME"}) {
        qunsetenv(name);
    }
}

void ParallelProcessTest::parallelThatIsMissingIsNotStarted()
{
    qputenv("PATH", m_folder->path().toLocal8Bit());
    ParallelProcess parallel("/the worker", m_folder->path());
    QVERIFY(!parallel.startJobs("/the plan", JOBS, 2));
    QVERIFY(!ParallelProcess::isGnu());
}

void ParallelProcessTest::onlyGnuParallelIsIt_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<bool>("isGnu");
    QTest::newRow("GNU's") << QByteArray("[ \"$1\" = --version ] && echo GNU parallel 20221122")
                           << true;
    QTest::newRow("another's") << QByteArray("echo parallel of GNU parallel's name") << false;
    QTest::newRow("one that says nothing") << QByteArray("exit 1") << false;
}

void ParallelProcessTest::onlyGnuParallelIsIt()
{
    QFETCH(QByteArray, script);
    standIn(script);
    QTEST(ParallelProcess::isGnu(), "isGnu");
}

void ParallelProcessTest::parallelThatDoesNotEndIsKilled()
{
    standIn("trap '' TERM\necho ready\nexec sleep 600");
    ParallelProcess parallel("/the worker", m_folder->path());
    QVERIFY(parallel.startJobs("/the plan", JOBS, 2));
    QVERIFY(parallel.waitForReadyRead(-1));
    parallel.stopJobs();
    QCOMPARE(parallel.state(), QProcess::NotRunning);
}

// A parent that is killed before its child has become Parallel leaves nothing behind.
void ParallelProcessTest::childEndsWithItsParentFromTheBeginning()
{
    standIn(RECORDS_ALL);
    ParallelProcess parallel("/the worker", m_folder->path());
    QVERIFY(parallel.startJobs("/the plan", JOBS, 2));
    QVERIFY(parallel.waitForFinished(-1));
    const pid_t child = fork();
    if (child == 0) {
        int signal = 0;
        prctl(PR_GET_PDEATHSIG, &signal);
        _exit(signal == SIGKILL ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    int status = -1;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), EXIT_SUCCESS);
}

QTEST_GUILESS_MAIN(ParallelProcessTest)

#include "ParallelProcessTest.moc"
