#include "FileConverters/CoordinationWorkspaceSection/archive/files/ArchiveLock.h"

#include <QTemporaryDir>
#include <QtTest>

#include <array>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

/** What a lock's state is in a process of its own: a process does not stand in its own way. */
int stateElsewhere(const QString& file, ArchiveLock::Kind kind)
{
    const pid_t process = fork();
    if (process == 0) {
        _exit(ArchiveLock(file, kind).state());
    }
    int status = 0;
    waitpid(process, &status, 0);
    return WEXITSTATUS(status);
}

} // namespace

class ArchiveLockTest : public QObject
{
    Q_OBJECT

private slots:
    void whoMayHoldItBesides_data();
    void whoMayHoldItBesides();
    void itGoesWithItsHolder();
    void itGoesWithItsHolderWhoHasNoStandardInput();
    void aForkedProcessDoesNotHoldIt();
    void aNewFileHasTheRightsThatTheMaskLeaves();
    void aFolderThatIsNotThereTakesNone();

private:
    QString file() const { return m_folder.filePath(QStringLiteral("lock")); }

    QTemporaryDir m_folder;
};

void ArchiveLockTest::whoMayHoldItBesides_data()
{
    QTest::addColumn<int>("held");
    QTest::addColumn<int>("wanted");
    QTest::addColumn<int>("state");
    QTest::newRow("one alone") << +ArchiveLock::ALONE << +ArchiveLock::ALONE << +ArchiveLock::BUSY;
    QTest::newRow("a job beside a run")
        << +ArchiveLock::ALONE << +ArchiveLock::TOGETHER << +ArchiveLock::BUSY;
    QTest::newRow("a run beside a job")
        << +ArchiveLock::TOGETHER << +ArchiveLock::ALONE << +ArchiveLock::BUSY;
    QTest::newRow("jobs together")
        << +ArchiveLock::TOGETHER << +ArchiveLock::TOGETHER << +ArchiveLock::HELD;
}

void ArchiveLockTest::whoMayHoldItBesides()
{
    QFETCH(int, held);
    QFETCH(int, wanted);
    const ArchiveLock lock(file(), static_cast<ArchiveLock::Kind>(held));
    QCOMPARE(lock.state(), ArchiveLock::HELD);
    QTEST(stateElsewhere(file(), static_cast<ArchiveLock::Kind>(wanted)), "state");
}

void ArchiveLockTest::itGoesWithItsHolder()
{
    {
        const ArchiveLock lock(file(), ArchiveLock::ALONE);
        QCOMPARE(stateElsewhere(file(), ArchiveLock::ALONE), +ArchiveLock::BUSY);
    }
    QCOMPARE(stateElsewhere(file(), ArchiveLock::ALONE), +ArchiveLock::HELD);
}

/** Whose lock has the first of all descriptors. */
void ArchiveLockTest::itGoesWithItsHolderWhoHasNoStandardInput()
{
    const int standardInput = dup(STDIN_FILENO);
    close(STDIN_FILENO);
    itGoesWithItsHolder();
    (void)dup2(standardInput, STDIN_FILENO);
    close(standardInput);
}

void ArchiveLockTest::aForkedProcessDoesNotHoldIt()
{
    std::array<int, 2> ends{};
    QCOMPARE(pipe(ends.data()), 0);
    pid_t forked = 0;
    {
        const ArchiveLock lock(file(), ArchiveLock::ALONE);
        forked = fork();
        if (forked == 0) {
            close(ends[1]);
            char nothing = 0;
            _exit(static_cast<int>(read(ends[0], &nothing, 1))); // until the other end is closed
        }
    }
    QCOMPARE(stateElsewhere(file(), ArchiveLock::ALONE), +ArchiveLock::HELD);
    close(ends[0]);
    close(ends[1]);
    QCOMPARE(waitpid(forked, nullptr, 0), forked);
}

void ArchiveLockTest::aNewFileHasTheRightsThatTheMaskLeaves()
{
    const mode_t before = umask(0);
    for (const mode_t mask : {0U, 022U, 077U}) {
        QFile::remove(file());
        umask(mask);
        const ArchiveLock lock(file(), ArchiveLock::ALONE);
        struct stat status = {};
        QCOMPARE(stat(QFile::encodeName(file()).constData(), &status), 0);
        QCOMPARE(status.st_mode & ALLPERMS, 0666U & ~mask);
    }
    umask(before);
}

void ArchiveLockTest::aFolderThatIsNotThereTakesNone()
{
    const ArchiveLock lock(m_folder.filePath(QStringLiteral("nowhere/lock")), ArchiveLock::ALONE);
    QCOMPARE(lock.state(), ArchiveLock::FAILED);
}

QTEST_GUILESS_MAIN(ArchiveLockTest)

#include "ArchiveLockTest.moc"
