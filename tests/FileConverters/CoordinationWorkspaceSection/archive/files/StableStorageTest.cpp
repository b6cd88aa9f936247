#include "FileConverters/CoordinationWorkspaceSection/archive/files/StableStorage.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/processes/Pipe.h"
#include "tests/support/Interruption.h"
#include "tests/support/WaitingCall.h"

#include <QDir>
#include <QtTest>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>

#include <sys/stat.h>
#include <unistd.h>

class StableStorageTest : public QObject
{
    Q_OBJECT

private slots:
    void interruptedWriteGoesOn();
    void writeThatNobodyReadsFails();
    void foldersAreMadeWithThoseAbove();
    void folderIsNotMadeInTheWayOfAFile();
    void firstFolderThatFailsTellsTheReason();
    void foldersAreSyncedUpToTheTop();
    void whatIsNotThereIsNotSynced();
};

namespace {

QByteArray readBytes(int descriptor, int size)
{
    QByteArray bytes;
    std::array<char, 4096> buffer{};
    while (bytes.size() < size) {
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count <= 0) {
            break;
        }
        bytes.append(buffer.data(), static_cast<int>(count));
    }
    return bytes;
}

} // namespace

void StableStorageTest::interruptedWriteGoesOn()
{
    QByteArray bytes;
    while (bytes.size() < 300000) { // several times what a pipe holds
        bytes += QByteArray::number(bytes.size()) + ' ';
    }
    const Interruption interruption;
    const Pipe pipe;
    std::atomic<pthread_t> writer{};
    std::atomic<bool> isWritten{false};
    WaitingCall call([&] {
        writer = pthread_self();
        isWritten = StableStorage::writeAll(pipe.writeEnd.number(), bytes);
    });
    // The first one comes when a part is written, the second when nothing more was.
    for (int i = 0; i < 2; ++i) {
        QVERIFY(call.waitUntilAsleep());
        Interruption::interrupt(writer);
    }
    QVERIFY(call.waitUntilAsleep());
    QVERIFY(readBytes(pipe.readEnd.number(), bytes.size()) == bytes);
    call.end();
    QVERIFY(isWritten);
}

void StableStorageTest::writeThatNobodyReadsFails()
{
    signal(SIGPIPE, SIG_IGN);
    Pipe pipe;
    pipe.readEnd.close();
    QVERIFY(!StableStorage::writeAll(pipe.writeEnd.number(), "x"));
    QCOMPARE(errno, EPIPE);
    QVERIFY(StableStorage::writeAll(pipe.writeEnd.number(), {}));
}

void StableStorageTest::foldersAreMadeWithThoseAbove()
{
    const QTemporaryDir folder;
    QVERIFY(StableStorage::makeFolders(folder.filePath("a/b/c")));
    QVERIFY(QFileInfo(folder.filePath("a/b/c")).isDir());
    QVERIFY(StableStorage::makeFolders(folder.filePath("a/b/c")));
    QVERIFY(StableStorage::makeFolders(folder.filePath("a/b/d")));
    QVERIFY(QFileInfo(folder.filePath("a/b/d")).isDir());
}

void StableStorageTest::folderIsNotMadeInTheWayOfAFile()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(!StableStorage::makeFolders(folder.filePath("file/a")));
    QCOMPARE(errno, ENOTDIR);
}

void StableStorageTest::firstFolderThatFailsTellsTheReason()
{
    // Nobody may make a folder in what the kernel tells of its devices.
    QCOMPARE(mkdir("/sys/StableStorageTest", 0700), -1);
    const int reason = errno;
    QVERIFY(reason != ENOENT);
    QVERIFY(!StableStorage::makeFolders("/sys/StableStorageTest/a/b"));
    QCOMPARE(errno, reason);
}

void StableStorageTest::foldersAreSyncedUpToTheTop()
{
    const QTemporaryDir folder;
    QVERIFY(StableStorage::makeFolders(folder.filePath("a/b")));
    QVERIFY(StableStorage::syncFolders(folder.filePath("a/b"), folder.path()));
    QVERIFY(StableStorage::syncFolders(folder.path(), folder.path()));
}

void StableStorageTest::whatIsNotThereIsNotSynced()
{
    const QTemporaryDir folder;
    QVERIFY(!StableStorage::syncFolder(folder.filePath("none")));
    QCOMPARE(errno, ENOENT);
    QVERIFY(!StableStorage::syncFolders(folder.filePath("none"), folder.path()));
    QVERIFY(!StableStorage::syncFile(-1));
    QCOMPARE(errno, EBADF);
}

QTEST_GUILESS_MAIN(StableStorageTest)

#include "StableStorageTest.moc"
