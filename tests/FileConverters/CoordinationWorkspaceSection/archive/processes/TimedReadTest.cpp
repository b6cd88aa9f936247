#include "FileConverters/CoordinationWorkspaceSection/archive/processes/TimedRead.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/processes/Pipe.h"
#include "tests/support/Interruption.h"
#include "tests/support/WaitingCall.h"

#include <QtTest>

#include <array>
#include <atomic>
#include <cerrno>

class TimedReadTest : public QObject
{
    Q_OBJECT

private slots:
    void whatIsThereIsRead();
    void endIsTold();
    void timeEndsTheWait_data();
    void timeEndsTheWait();
    void waitGoesOn_data();
    void waitGoesOn();
    void longWaitIsNotCutOff();
    void failureIsTold();

private:
    std::array<char, 8> m_bytes{};
};

void TimedReadTest::whatIsThereIsRead()
{
    const Pipe pipe;
    QCOMPARE(write(pipe.writeEnd.number(), "abc", 3), ssize_t(3));
    const QDeadlineTimer unlimited(QDeadlineTimer::Forever);
    QCOMPARE(readBefore(unlimited, pipe.readEnd.number(), m_bytes.data(), 2), ssize_t(2));
    QCOMPARE(QByteArray(m_bytes.data(), 2), QByteArray("ab"));
    // Even when the time is up already.
    QCOMPARE(readBefore(QDeadlineTimer(0), pipe.readEnd.number(), m_bytes.data(), 2), ssize_t(1));
    QCOMPARE(m_bytes[0], 'c');
}

void TimedReadTest::endIsTold()
{
    Pipe pipe;
    pipe.writeEnd.close();
    QCOMPARE(readBefore(QDeadlineTimer(QDeadlineTimer::Forever), pipe.readEnd.number(),
                        m_bytes.data(), m_bytes.size()),
             ssize_t(0));
}

void TimedReadTest::timeEndsTheWait_data()
{
    QTest::addColumn<qint64>("milliseconds");
    QTest::newRow("up already") << qint64(0);
    QTest::newRow("soon") << qint64(5);
}

void TimedReadTest::timeEndsTheWait()
{
    QFETCH(qint64, milliseconds);
    const Pipe pipe;
    const QDeadlineTimer deadline(milliseconds);
    QCOMPARE(readBefore(deadline, pipe.readEnd.number(), m_bytes.data(), m_bytes.size()),
             ssize_t(-1));
    QCOMPARE(errno, ETIMEDOUT);
    QVERIFY(deadline.hasExpired());
}

void TimedReadTest::waitGoesOn_data()
{
    QTest::addColumn<qint64>("milliseconds");
    QTest::addColumn<bool>("isInterrupted");
    QTest::newRow("without an end") << qint64(-1) << false;
    QTest::newRow("whatever interrupts it") << qint64(-1) << true;
    QTest::newRow("longer than an int counts") << (qint64(1) << 31) + 1000 << true;
}

void TimedReadTest::waitGoesOn()
{
    QFETCH(qint64, milliseconds);
    QFETCH(bool, isInterrupted);
    const Interruption interruption;
    const Pipe pipe;
    const QDeadlineTimer deadline(milliseconds);
    std::atomic<pthread_t> reader{};
    std::atomic<ssize_t> count{-2};
    WaitingCall call([&] {
        reader = pthread_self();
        count = readBefore(deadline, pipe.readEnd.number(), m_bytes.data(), m_bytes.size());
    });
    QVERIFY(call.waitUntilAsleep());
    if (isInterrupted) {
        Interruption::interrupt(reader);
        QVERIFY(call.waitUntilAsleep());
    }
    QCOMPARE(count.load(), ssize_t(-2));
    QCOMPARE(write(pipe.writeEnd.number(), "x", 1), ssize_t(1));
    call.end();
    QCOMPARE(count.load(), ssize_t(1));
}

// Of a time that is twice as long as an int counts, 20 ms would be left of it.
void TimedReadTest::longWaitIsNotCutOff()
{
    const Pipe pipe;
    const QDeadlineTimer deadline((qint64(1) << 32) + 20);
    std::atomic<ssize_t> count{-2};
    WaitingCall call([&] {
        count = readBefore(deadline, pipe.readEnd.number(), m_bytes.data(), m_bytes.size());
    });
    QVERIFY(call.waitUntilAsleep());
    const QDeadlineTimer cutOff(40);
    while (!cutOff.hasExpired()) {
        std::this_thread::yield();
    }
    QCOMPARE(write(pipe.writeEnd.number(), "x", 1), ssize_t(1));
    call.end();
    QCOMPARE(count.load(), ssize_t(1));
}

void TimedReadTest::failureIsTold()
{
    constexpr int CLOSED = 1000;
    const QDeadlineTimer unlimited(QDeadlineTimer::Forever);
    QCOMPARE(readBefore(unlimited, CLOSED, m_bytes.data(), m_bytes.size()), ssize_t(-1));
    QCOMPARE(errno, EBADF);
}

QTEST_GUILESS_MAIN(TimedReadTest)

#include "TimedReadTest.moc"
