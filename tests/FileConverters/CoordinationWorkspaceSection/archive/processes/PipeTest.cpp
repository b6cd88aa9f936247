#include "FileConverters/CoordinationWorkspaceSection/archive/processes/Pipe.h"
#include "tests/support/Sanitizer.h"

#include <QDir>
#include <QtTest>

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

/** Pipes, and the descriptors that own their ends. */
class PipeTest : public QObject
{
    Q_OBJECT

private slots:
    void whatIsWrittenIsRead();
    void programsDoNotGetIt();
    void endsCloseWithIt();
    void endIsClosedOnce();
    void closingLeavesTheErrorAsItIs();
    void descriptorPassesOn();
    void noneIsNotOpen();
    void aSystemWithoutRoomMakesNone();

private:
    static bool isOpen(int number) { return fcntl(number, F_GETFD) >= 0; }
};

void PipeTest::whatIsWrittenIsRead()
{
    Pipe pipe;
    QCOMPARE(write(pipe.writeEnd.number(), "ab", 2), ssize_t(2));
    pipe.writeEnd.close();
    char bytes[4] = {};
    QCOMPARE(read(pipe.readEnd.number(), bytes, sizeof bytes), ssize_t(2));
    QCOMPARE(QByteArray(bytes), QByteArray("ab"));
    QCOMPARE(read(pipe.readEnd.number(), bytes, sizeof bytes), ssize_t(0));
}

void PipeTest::programsDoNotGetIt()
{
    const Pipe pipe;
    for (const Descriptor* const end : {&pipe.readEnd, &pipe.writeEnd}) {
        QCOMPARE(fcntl(end->number(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    }
}

void PipeTest::endsCloseWithIt()
{
    int readEnd = -1;
    int writeEnd = -1;
    {
        const Pipe pipe;
        readEnd = pipe.readEnd.number();
        writeEnd = pipe.writeEnd.number();
        QVERIFY(isOpen(readEnd) && isOpen(writeEnd));
    }
    QVERIFY(!isOpen(readEnd) && !isOpen(writeEnd));
}

void PipeTest::endIsClosedOnce()
{
    Pipe pipe;
    const int number = pipe.writeEnd.number();
    pipe.writeEnd.close();
    QVERIFY(!pipe.writeEnd.isOpen());
    const Descriptor next(dup(pipe.readEnd.number()));
    QCOMPARE(next.number(), number); // the system gives the number again, now to somebody else
    pipe.writeEnd.close();
    QVERIFY(isOpen(number));
}

void PipeTest::closingLeavesTheErrorAsItIs()
{
    const Pipe pipe;
    Descriptor descriptor(dup(pipe.readEnd.number()));
    ::close(descriptor.number()); // so that closing it fails
    errno = ENOSPC;
    descriptor.close();
    QCOMPARE(errno, ENOSPC);
}

void PipeTest::descriptorPassesOn()
{
    const Pipe pipe;
    const int number = dup(pipe.readEnd.number());
    Descriptor first(number);
    Descriptor second;
    second = std::move(first);
    QCOMPARE(second.number(), number);
    QVERIFY(isOpen(number));
    second = Descriptor();
    QVERIFY(!isOpen(number));
}

void PipeTest::noneIsNotOpen()
{
    QVERIFY(!Descriptor().isOpen());
    QVERIFY(!Descriptor(-1).isOpen());
    QVERIFY(Descriptor(dup(STDIN_FILENO)).isOpen());
}

void PipeTest::aSystemWithoutRoomMakesNone()
{
    if (IS_SANITIZED) {
        QSKIP("a sanitizer needs descriptors of its own");
    }
    rlimit before{};
    QCOMPARE(getrlimit(RLIMIT_NOFILE, &before), 0);
    const rlimit none{0, before.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_NOFILE, &none), 0);
    int error = 0;
    try {
        const Pipe pipe;
    } catch (const std::system_error& thrown) {
        error = thrown.code().value();
    }
    setrlimit(RLIMIT_NOFILE, &before);
    QCOMPARE(error, EMFILE);
}

QTEST_GUILESS_MAIN(PipeTest)

#include "PipeTest.moc"
