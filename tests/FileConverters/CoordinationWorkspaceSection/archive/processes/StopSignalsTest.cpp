#include "FileConverters/CoordinationWorkspaceSection/archive/processes/StopSignals.h"

#include <QtTest>

#include <csignal>
#include <cstdlib>
#include <functional>

#include <sys/wait.h>
#include <unistd.h>

// A signal that came once has come for the whole process, so that each look has its own.
class StopSignalsTest : public QObject
{
    Q_OBJECT

private slots:
    void eachSignalIsNoted_data();
    void eachSignalIsNoted();
    void ignoredSignalsStayIgnored_data();
    void ignoredSignalsStayIgnored();
    void otherSignalsAreNotWatched();

private:
    void addSignals();
    /** How a process ends that does this: its status, or the negative number of its signal. */
    static int endOf(const std::function<bool()>& work);
};

void StopSignalsTest::addSignals()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("interrupt") << SIGINT;
    QTest::newRow("terminate") << SIGTERM;
    QTest::newRow("hang up") << SIGHUP;
}

int StopSignalsTest::endOf(const std::function<bool()>& work)
{
    const pid_t process = fork();
    if (process == 0) {
        _exit(work() ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    int status = 0;
    waitpid(process, &status, 0);
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

void StopSignalsTest::eachSignalIsNoted_data()
{
    addSignals();
}

void StopSignalsTest::eachSignalIsNoted()
{
    QFETCH(int, signal);
    const auto isNoted = [signal] {
        (void)std::signal(signal, SIG_DFL); // as a program is usually started
        StopSignals::watch();
        const bool before = StopSignals::isStopping();
        (void)raise(signal);
        const bool after = StopSignals::isStopping();
        (void)raise(signal); // once more, which ends nothing either
        return !before && after && StopSignals::isStopping();
    };
    QCOMPARE(endOf(isNoted), EXIT_SUCCESS);
}

void StopSignalsTest::ignoredSignalsStayIgnored_data()
{
    addSignals();
}

void StopSignalsTest::ignoredSignalsStayIgnored()
{
    QFETCH(int, signal);
    const auto isIgnored = [signal] {
        (void)std::signal(signal, SIG_IGN);
        StopSignals::watch();
        (void)raise(signal);
        return !StopSignals::isStopping();
    };
    QCOMPARE(endOf(isIgnored), EXIT_SUCCESS);
}

void StopSignalsTest::otherSignalsAreNotWatched()
{
    const auto isEnded = [] {
        StopSignals::watch();
        (void)raise(SIGUSR1);
        return true;
    };
    QCOMPARE(endOf(isEnded), -SIGUSR1);
}

QTEST_GUILESS_MAIN(StopSignalsTest)

#include "StopSignalsTest.moc"
