#include "ZelMain/Diagnostics/LogSession.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

using namespace PkLogger;

namespace {

/** Counts the lines it is given, and does something of its own meanwhile. */
class ActingDevice : public QIODevice
{
public:
    explicit ActingDevice(std::function<void()> act = [] {}) : m_act(std::move(act)) {}

    int lines = 0;

protected:
    qint64 readData(char* /*data*/, qint64 /*size*/) override { return -1; }

    qint64 writeData(const char* /*data*/, qint64 size) override
    {
        ++lines;
        m_act();
        return size;
    }

private:
    std::function<void()> m_act;
};

QSharedPointer<ActingDevice> openDevice(std::function<void()> act = [] {})
{
    auto device = QSharedPointer<ActingDevice>::create(std::move(act));
    device->open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    return device;
}

} // namespace

class LogSessionTest : public QObject
{
    Q_OBJECT

private slots:
    void init();

    void lineGoesToEachOpenCommonDevice();
    void lineOfAUserWithADeviceGoesThereAlone();
    void deviceThatClosesTheGateIsTheLast();
    void closedGateLeavesDevicesAlone();
    void noDeviceIsNeitherOpenedNorClosed();
    void deviceCannotWriteTheNextLine();
    void fileThatIsClosedMeanwhileIsNotFlushed();

private:
    void log(int handle);
    bool writeNext();

    std::unique_ptr<LogSession> m_session;
    std::atomic<int> m_options{0};
};

void LogSessionTest::init()
{
    m_session = std::make_unique<LogSession>();
    m_session->queue.allocate();
    m_session->users.emplace_back(); // the service's own
}

void LogSessionTest::log(int handle)
{
    LogEntry& entry = m_session->queue.freeSlot();
    entry.message = QStringLiteral("text");
    entry.handle = handle;
    m_session->queue.push();
}

bool LogSessionTest::writeNext()
{
    return m_session->writeNext(m_options);
}

void LogSessionTest::lineGoesToEachOpenCommonDevice()
{
    const auto first = openDevice();
    const auto second = openDevice();
    const auto closed = QSharedPointer<ActingDevice>::create();
    m_session->devices = {first, nullptr, closed, second};
    log(0);
    QVERIFY(writeNext());
    QCOMPARE(first->lines, 1);
    QCOMPARE(second->lines, 1);
    QCOMPARE(closed->lines, 0);
}

void LogSessionTest::lineOfAUserWithADeviceGoesThereAlone()
{
    const auto common = openDevice();
    const auto own = openDevice();
    m_session->devices = {common};
    m_session->users.emplace_back();
    m_session->users.back().device = own;
    log(1);
    QVERIFY(writeNext());
    QCOMPARE(own->lines, 1);
    QCOMPARE(common->lines, 0);
}

void LogSessionTest::deviceThatClosesTheGateIsTheLast()
{
    const auto first = openDevice([this] { m_session->gate.close(); });
    const auto second = openDevice();
    m_session->devices = {first, second};
    log(0);
    log(0);
    QVERIFY(!writeNext());
    QVERIFY(!writeNext());
    QCOMPARE(first->lines, 1);
    QCOMPARE(second->lines, 0);
}

void LogSessionTest::closedGateLeavesDevicesAlone()
{
    const auto open = openDevice();
    const auto closed = QSharedPointer<ActingDevice>::create();
    m_session->gate.close();
    m_session->open(closed.data());
    m_session->close(open.data());
    QVERIFY(open->isOpen());
    QVERIFY(!closed->isOpen());
}

void LogSessionTest::noDeviceIsNeitherOpenedNorClosed()
{
    const auto device = QSharedPointer<ActingDevice>::create();
    m_session->devices = {nullptr, device};
    m_session->open(nullptr);
    m_session->close(nullptr);
    m_session->openCommonDevices();
    QVERIFY(device->isOpen());
    m_session->closeCommonDevices();
    QVERIFY(!device->isOpen());
}

void LogSessionTest::deviceCannotWriteTheNextLine()
{
    bool isWritten = true;
    const auto device = openDevice([&] { isWritten = writeNext(); });
    m_session->devices = {device};
    log(0);
    log(0);
    QVERIFY(writeNext());
    QVERIFY(!isWritten);
    QCOMPARE(device->lines, 1);
}

void LogSessionTest::fileThatIsClosedMeanwhileIsNotFlushed()
{
    const QTemporaryDir folder;
    const auto file = QSharedPointer<QFile>::create(folder.filePath(QStringLiteral("log.txt")));
    QVERIFY(file->open(QIODevice::WriteOnly));
    const auto closer = openDevice([&] { file->close(); });
    m_session->devices = {file, closer};
    log(0);
    m_session->queue.stop();
    QVERIFY(writeNext());
    QVERIFY(!writeNext()); // flushes what stands in buffers, and the queue is over
    QCOMPARE(closer->lines, 1);
    QVERIFY(file->open(QIODevice::ReadOnly));
    QVERIFY(file->readAll().endsWith("text\n")); // by its own close
}

QTEST_GUILESS_MAIN(LogSessionTest)
#include "LogSessionTest.moc"
