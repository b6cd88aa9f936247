#include "FileConverters/CoordinationWorkspaceSection/archive/processes/ProcessLimits.h"

#include <QtTest>

#include <csignal>

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr qint64 GIGABYTE = 1000000000;
constexpr pid_t THIS_PROCESS = 0;

/** A child that does nothing but take time of the processor. */
pid_t startBusyChild()
{
    const pid_t process = fork();
    if (process == 0) {
        volatile unsigned turns = 0;
        for (;;) {
            turns = turns + 1;
        }
    }
    return process;
}

int endOf(pid_t process)
{
    int status = 0;
    waitpid(process, &status, 0);
    return status;
}

rlimit limitOf(pid_t process, __rlimit_resource what)
{
    rlimit limit{};
    prlimit(process, what, nullptr, &limit);
    return limit;
}

} // namespace

class ProcessLimitsTest : public QObject
{
    Q_OBJECT

private slots:
    void aChildGetsThem();
    void aHardLimitStays();
    void thisProcessGetsThem();
    void withoutThemAChildKeepsWhatItHas();
    void aChildThatNobodyWaitsForEnds();
    void theTimeIsUp();
};

void ProcessLimitsTest::aChildGetsThem()
{
    const pid_t child = startBusyChild();
    QVERIFY((ProcessLimits{GIGABYTE, 2500}.applyTo(child)));
    QCOMPARE(limitOf(child, RLIMIT_AS).rlim_cur, rlim_t(GIGABYTE));
    QCOMPARE(limitOf(child, RLIMIT_CPU).rlim_cur, rlim_t(3)); // the next whole second
    QCOMPARE(limitOf(child, RLIMIT_CORE).rlim_cur, rlim_t(0));
    // Others may follow, higher ones as well.
    QVERIFY((ProcessLimits{2 * GIGABYTE, 9000}.applyTo(child)));
    QCOMPARE(limitOf(child, RLIMIT_AS).rlim_cur, rlim_t(2 * GIGABYTE));
    kill(child, SIGKILL);
    endOf(child);
}

void ProcessLimitsTest::aHardLimitStays()
{
    const pid_t child = startBusyChild();
    const rlimit hard{GIGABYTE, GIGABYTE};
    QCOMPARE(prlimit(child, RLIMIT_AS, &hard, nullptr), 0);
    QVERIFY((ProcessLimits{2 * GIGABYTE, 0}.applyTo(child)));
    QCOMPARE(limitOf(child, RLIMIT_AS).rlim_cur, rlim_t(GIGABYTE));
    kill(child, SIGKILL);
    endOf(child);
    QVERIFY(!(ProcessLimits{GIGABYTE, 0}.applyTo(child))); // it is gone
}

void ProcessLimitsTest::thisProcessGetsThem()
{
    const rlimit before = limitOf(THIS_PROCESS, RLIMIT_AS);
    const rlimit coreBefore = limitOf(THIS_PROCESS, RLIMIT_CORE);
    const rlimit someCore{coreBefore.rlim_max, coreBefore.rlim_max};
    setrlimit(RLIMIT_CORE, &someCore);

    QVERIFY((ProcessLimits{0, 0}.applyToThisProcess()));
    QCOMPARE(limitOf(THIS_PROCESS, RLIMIT_AS).rlim_cur, before.rlim_cur);
    QCOMPARE(limitOf(THIS_PROCESS, RLIMIT_CORE).rlim_cur, rlim_t(0));
    int signalAtParentsEnd = 0;
    prctl(PR_GET_PDEATHSIG, &signalAtParentsEnd);
    QCOMPARE(signalAtParentsEnd, SIGKILL);
    prctl(PR_SET_PDEATHSIG, 0);

    const bool isApplied = ProcessLimits{GIGABYTE, 0}.applyToThisProcess();
    const rlimit limited = limitOf(THIS_PROCESS, RLIMIT_AS);
    setrlimit(RLIMIT_AS, &before); // a sanitizer takes more, so nothing else may happen before
    prctl(PR_SET_PDEATHSIG, 0);
    QVERIFY(isApplied);
    QCOMPARE(limited.rlim_cur, rlim_t(GIGABYTE));
    QCOMPARE(limited.rlim_max, before.rlim_max);
}

void ProcessLimitsTest::withoutThemAChildKeepsWhatItHas()
{
    const pid_t child = startBusyChild();
    QVERIFY((ProcessLimits{0, 0}.applyTo(child)));
    QCOMPARE(limitOf(child, RLIMIT_AS).rlim_cur, limitOf(THIS_PROCESS, RLIMIT_AS).rlim_cur);
    QCOMPARE(limitOf(child, RLIMIT_CPU).rlim_cur, limitOf(THIS_PROCESS, RLIMIT_CPU).rlim_cur);
    kill(child, SIGKILL);
    endOf(child);
}

void ProcessLimitsTest::aChildThatNobodyWaitsForEnds()
{
    const pid_t child = startBusyChild();
    QVERIFY((ProcessLimits{0, 1}.applyTo(child)));
    const int status = endOf(child);
    QVERIFY(WIFSIGNALED(status));
    QCOMPARE(WTERMSIG(status), SIGXCPU);
}

void ProcessLimitsTest::theTimeIsUp()
{
    QVERIFY((ProcessLimits{0, 0}.deadline().isForever()));
    QVERIFY((!ProcessLimits{0, 60000}.deadline().hasExpired()));
    QVERIFY((ProcessLimits{0, 60000}.deadline().remainingTime() <= 60000));
}

QTEST_GUILESS_MAIN(ProcessLimitsTest)

#include "ProcessLimitsTest.moc"
