#include "FileConverters/CoordinationWorkspaceSection/archive/worker/ConverterProcess.h"

#include "tests/support/TestFolder.h"

#include <QtTest>

#include <cerrno>
#include <csignal>
#include <system_error>

#include <dlfcn.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/wait.h>

Q_DECLARE_METATYPE(ConverterProcess::Outcome)

namespace {

bool hasProcessesLeft = true;
bool hasKilledOthers = false;

} // namespace

// These stand in for the C library's in the whole program.

extern "C" __attribute__((visibility("default"))) int clone(int (*fn)(void*), void* stack,
                                                            int flags, void* arg, ...)
{
    if (!hasProcessesLeft) {
        errno = EAGAIN;
        return -1;
    }
    using Clone = int (*)(int (*)(void*), void*, int, void*, ...);
    return reinterpret_cast<Clone>(dlsym(RTLD_NEXT, "clone"))(fn, stack, flags, arg);
}

// The number that stands for no process stands for every process when it is killed: a mistake must
// not come that far.
extern "C" __attribute__((visibility("default"))) int kill(pid_t pid, int sig) noexcept
{
    if (pid <= 0) {
        hasKilledOthers = true;
        errno = EPERM;
        return -1;
    }
    using Kill = int (*)(pid_t, int);
    return reinterpret_cast<Kill>(dlsym(RTLD_NEXT, "kill"))(pid, sig);
}

// Programs of the test's own stand in for the converter.
class ConverterProcessTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void outcomeFollowsFromHowItEnds_data();
    void outcomeFollowsFromHowItEnds();
    void itGetsTheDocumentAndAnEmptyInput();
    void itsOutputTakesTheFilesPlace();
    void itIsEndedWhenItsTimeIsUp_data();
    void itIsEndedWhenItsTimeIsUp();
    void itMaySayMuch();
    void itStandsUnderItsLimits();
    void whatIsMissingIsNotStarted_data();
    void whatIsMissingIsNotStarted();
    void aProgramThatHasNoRoomBreaksOff();
    void withoutAProcessNothingIsConverted();
    void noProcessIsLeftAndNoFileOpen();

private:
    QString path(const QString& name) const { return m_folder->path(name); }
    QByteArray output() const { return m_folder->read("output"); }
    ConverterProcess::Outcome run(const QByteArray& script, const ProcessLimits& limits = {}) const;

    std::unique_ptr<TestFolder> m_folder;
};

void ConverterProcessTest::init()
{
    m_folder = std::make_unique<TestFolder>();
    m_folder->write("output", "what stood here before");
}

ConverterProcess::Outcome ConverterProcessTest::run(const QByteArray& script,
                                                    const ProcessLimits& limits) const
{
    m_folder->writeProgram("converter", script);
    return ConverterProcess::convert(path("converter"), "/the document", path("output"), limits);
}

void ConverterProcessTest::outcomeFollowsFromHowItEnds_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<ConverterProcess::Outcome>("outcome");
    const auto row = [](const char* name, const char* script, ConverterProcess::Outcome outcome) {
        QTest::newRow(name) << QByteArray(script) << outcome;
    };
    row("converted", "printf '\\nPROGRESS' >&2", ConverterProcess::CONVERTED);
    row("the status counts, not the word", "printf '\\nFAILURE' >&2", ConverterProcess::CONVERTED);
    row("refused", "printf '\\nFAILURE' >&2; exit 1", ConverterProcess::REFUSED);
    row("nothing said", "exit 1", ConverterProcess::UNREADABLE);
    row("something else said", "printf 'FAILURE' >&2; exit 1", ConverterProcess::UNREADABLE);
    row("more said", "printf '\\nFAILURE\\n' >&2; exit 1", ConverterProcess::UNREADABLE);
    row("another status", "exit 126", ConverterProcess::UNREADABLE);
    row("not loaded", "exit 127", ConverterProcess::BROKE_OFF);
    row("aborted", "kill -ABRT $$", ConverterProcess::BROKE_OFF);
    row("killed after its word", "printf '\\nFAILURE' >&2; kill -KILL $$",
        ConverterProcess::BROKE_OFF);
}

void ConverterProcessTest::outcomeFollowsFromHowItEnds()
{
    QFETCH(QByteArray, script);
    QTEST(run(script), "outcome");
}

void ConverterProcessTest::itGetsTheDocumentAndAnEmptyInput()
{
    QCOMPARE(run("echo \"$# $1\"; cat"), ConverterProcess::CONVERTED);
    QCOMPARE(output(), QByteArray("1 /the document\n"));
}

void ConverterProcessTest::itsOutputTakesTheFilesPlace()
{
    QCOMPARE(run("printf short"), ConverterProcess::CONVERTED);
    QCOMPARE(output(), QByteArray("short"));
    QCOMPARE(run("exit 1"), ConverterProcess::UNREADABLE);
    QCOMPARE(output(), QByteArray());
}

void ConverterProcessTest::itIsEndedWhenItsTimeIsUp_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("at work") << QByteArray("exec sleep 600");
    QTest::newRow("with a last word") << QByteArray("printf '\\nPROGRESS' >&2; exec sleep 600");
    QTest::newRow("without a word, unwilling") << QByteArray("trap '' TERM; exec sleep 600");
}

void ConverterProcessTest::itIsEndedWhenItsTimeIsUp()
{
    QFETCH(QByteArray, script);
    QCOMPARE(run(script, {0, 50}), ConverterProcess::OUT_OF_TIME);
}

void ConverterProcessTest::itMaySayMuch()
{
    // More than a pipe holds: it would wait for a reader.
    QCOMPARE(run("head -c 300000 /dev/zero >&2; printf '\\nFAILURE' >&2; exit 1"),
             ConverterProcess::UNREADABLE);
}

void ConverterProcessTest::itStandsUnderItsLimits()
{
    QCOMPARE(run("ulimit -v; ulimit -c; ulimit -t", {qint64(1) << 32, 600000}),
             ConverterProcess::CONVERTED);
    const QList<QByteArray> limits = output().split('\n');
    QCOMPARE(limits.value(0), QByteArray("4194304")); // in KiB
    QCOMPARE(limits.value(1), QByteArray("0"));
    QVERIFY(limits.value(2).toInt() >= 600);
    // This process has its own still.
    rlimit own{};
    QCOMPARE(getrlimit(RLIMIT_AS, &own), 0);
    QVERIFY(own.rlim_cur != rlim_t(1) << 32);
}

void ConverterProcessTest::whatIsMissingIsNotStarted_data()
{
    QTest::addColumn<QString>("program");
    QTest::addColumn<QString>("output");
    QTest::newRow("program") << "/no/converter"
                             << "output";
    QTest::newRow("right to start it") << "/dev/null"
                                       << "output";
    QTest::newRow("output's file") << "/bin/true"
                                   << "none";
}

void ConverterProcessTest::whatIsMissingIsNotStarted()
{
    QFETCH(QString, program);
    QFETCH(QString, output);
    QCOMPARE(ConverterProcess::convert(program, "/the document", path(output), {}),
             ConverterProcess::NOT_STARTED);
}

void ConverterProcessTest::aProgramThatHasNoRoomBreaksOff()
{
    QCOMPARE(run("exit 0", {4096, 0}), ConverterProcess::BROKE_OFF);
}

// The document has nothing to do with it.
void ConverterProcessTest::withoutAProcessNothingIsConverted()
{
    const uint open = QDir("/proc/self/fd").count();

    int error = 0;
    hasProcessesLeft = false;
    try {
        run("exit 0", {0, 60000});
    } catch (const std::system_error& failure) {
        error = failure.code().value();
    }
    hasProcessesLeft = true;

    QVERIFY(!hasKilledOthers);
    QCOMPARE(error, EAGAIN);
    QCOMPARE(QDir("/proc/self/fd").count(), open);
    QCOMPARE(output(), QByteArray("what stood here before"));
    QCOMPARE(run("exit 0"), ConverterProcess::CONVERTED);
}

void ConverterProcessTest::noProcessIsLeftAndNoFileOpen()
{
    const auto openFiles = [] { return QDir("/proc/self/fd").count(); };
    const uint before = openFiles();
    for (const char* script : {"exit 0", "exit 1", "kill -KILL $$"}) {
        run(script);
    }
    run("exec sleep 600", {0, 20});
    ConverterProcess::convert("/no/converter", "/the document", path("output"), {});
    QCOMPARE(openFiles(), before);
    errno = 0;
    QCOMPARE(waitpid(-1, nullptr, WNOHANG), -1);
    QCOMPARE(errno, ECHILD);
}

QTEST_GUILESS_MAIN(ConverterProcessTest)

#include "ConverterProcessTest.moc"
