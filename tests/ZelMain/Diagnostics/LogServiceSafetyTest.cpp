#include "ZelMain/Diagnostics/LogServiceImpl.h"

#include "ZelMain/Diagnostics/FileOutDevConfig.h"
#include "ZelMain/Diagnostics/LoggerImpl.h"
#include "tests/ZelMain/Diagnostics/RecordingDevice.h"
#include "tests/support/BlockedFolder.h"
#include "tests/support/FileSizeLimit.h"
#include "tests/support/ShiftedClock.h"
#include "tests/support/WaitingCall.h"

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>
#include <future>
#include <memory>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using PkLogger::FileOutDevConfig;
using PkLogger::LogService;
using PkLogger::LogServiceImpl;
using Level = PkLogger::LoggerDataLogInterface::LOGLEVEL;

namespace {

using namespace std::chrono_literals;

const QString USER = QStringLiteral("DATABASE");

/** A service beside the program's own, which gives up early. */
class ImpatientService : public LogServiceImpl
{
public:
    ImpatientService() : LogServiceImpl(200ms, 50ms) {}
    ~ImpatientService() override { closeLogger(); }
};

/** A service beside the program's own, which waits as long as that one. */
class PatientService : public LogServiceImpl
{
public:
    ~PatientService() override { closeLogger(); }
};

/** A device whose write, or open, waits for data from a pipe that nobody sends. */
class DeafDevice : public RecordingDevice
{
public:
    DeafDevice() { (void)!pipe(m_ends); }
    ~DeafDevice() override
    {
        ::close(m_ends[0]);
        ::close(m_ends[1]);
    }
    bool waitUntilReached()
    {
        return m_isReached.get_future().wait_for(60s) == std::future_status::ready;
    }

protected:
    qint64 writeData(const char* /*data*/, qint64 size) override
    {
        m_isReached.set_value();
        char byte = 0;
        return ::read(m_ends[0], &byte, 1) == 1 ? size
                                                : -1; // a point at which threads are cancelled
    }

private:
    int m_ends[2] = {-1, -1};
    std::promise<void> m_isReached;
};

/** A device that does something with the service when it is written to or closed. */
class ActingDevice : public RecordingDevice
{
public:
    std::function<void()> whenWritten;
    std::function<void()> whenClosed;

    void close() override
    {
        if (whenClosed) {
            std::exchange(whenClosed, nullptr)();
        }
        RecordingDevice::close();
    }

protected:
    qint64 writeData(const char* data, qint64 size) override
    {
        if (whenWritten) {
            std::exchange(whenWritten, nullptr)();
        }
        return RecordingDevice::writeData(data, size);
    }
};

template <typename Device = RecordingDevice>
QSharedPointer<Device> addUser(LogServiceImpl& service, const QString& name)
{
    auto device = QSharedPointer<Device>::create();
    service.getLoggerObject(name, device, QStringLiteral("'T'"), {});
    service.enableUserOutput(name, true);
    return device;
}

bool log(LogServiceImpl& service, int handle, const QString& text)
{
    return service.logString(handle, Level::LOG_INFO, text);
}

template <typename Call>
std::future<void> inAnotherThread(Call call)
{
    return std::async(std::launch::async, call);
}

/** A cancelled thread leaves marks on its stack that AddressSanitizer takes for errors. */
bool canCancelThreads()
{
#ifdef __SANITIZE_ADDRESS__
    return false;
#else
    return true;
#endif
}

bool isDone(std::future<void>& call)
{
    return call.wait_for(0s) == std::future_status::ready;
}

bool comesToAnEnd(std::future<void>& call)
{
    return call.wait_for(60s) == std::future_status::ready;
}

} // namespace

/** Devices that fail or block, callers in the wrong place, and what a close leaves behind. */
class LogServiceSafetyTest : public QObject
{
    Q_OBJECT

private slots:
    void failingDeviceCostsItsOwnLinesOnly();
    void fullDiskGetsLinesAgainWhenItHasSpace();
    void deviceThatCannotBeOpenedCostsItsOwnLinesOnly_data();
    void deviceThatCannotBeOpenedCostsItsOwnLinesOnly();
    void deviceThatItsOwnerClosesComesBackWithItsSwitch();
    void serviceNeedsNeitherHomeFolderNorSettings();
    void blockedWriterHoldsUpNobodyWhoLogs();
    void callThatClosesDevicesWaitsForTheWriteUnderWay();
    void blockedOpenHoldsUpNobodyWhoLogs();
    void linesBehindABlockedOpenAreWrittenAfterIt();

    void closeGivesUpOnABlockedWrite();
    void closeGivesUpOnAWriteThatCannotBeCancelled();
    void closeGivesUpOnABlockedOpen();
    void closeGivesUpOnABlockedCleanup();
    void closeWaitsForACleanupThatEnds();
    void cleanupRemovesWhatIsOlderThanAMonth();
    void closeLetsGoOfDevices();
    void callThatWaitsIsReleasedWhenCloseGivesUp();
    void userThatWasClosedIsNotSwitched();
    void userOfALaterStartIsSwitchedAsItIs();
    void nextStartAfterATerminatedWriterBeginsEmpty();

    void deviceMayLogWhileItIsWrittenTo();
    void deviceMaySwitchTheServiceWhileItIsWrittenTo();
    void deviceMayRegisterOthersWhileItIsWrittenTo();
    void deviceMayCloseTheServiceWhileItIsWrittenTo();
    void serviceThatIsClosingTakesNoUsers();
    void deviceMayStartAndCloseWhileItIsClosed();
    void configurationMayLogWhileItIsRead();
    void idleWriterFlushesFiles();
    void usersMayBeAddedWhileLinesAreWritten();
};

void LogServiceSafetyTest::failingDeviceCostsItsOwnLinesOnly()
{
    ImpatientService service;
    service.initLogService({});
    const auto failing = QSharedPointer<RecordingDevice>::create();
    const auto sound = QSharedPointer<RecordingDevice>::create();
    service.registerOutputDevice(failing);
    service.registerOutputDevice(sound);
    service.enableLogger(true);
    service.enableInfoOutput(true);
    service.getLoggerObject(USER);
    service.enableUserOutput(USER, true);

    failing->failWrites(true);
    QVERIFY(log(service, 1, "first"));
    QVERIFY(sound->waitForLines(1));
    failing->failWrites(false);
    QVERIFY(log(service, 1, "second"));
    service.closeLogger();
    QCOMPARE(sound->lines().size(), 2);
    QCOMPARE(failing->lines().size(), 1);
    QVERIFY(failing->text().endsWith(" second\n"));
}

void LogServiceSafetyTest::fullDiskGetsLinesAgainWhenItHasSpace()
{
    ImpatientService service;
    service.initLogService({});
    QTemporaryDir folder;
    const QString path = folder.filePath("log.txt");
    service.getLoggerObject(USER, QSharedPointer<QFile>::create(path), QStringLiteral("'T'"), {});
    service.enableUserOutput(USER, true);
    const auto probe = addUser(service, "PROBE");
    const auto logAndWait = [&](const QString& text, int count) {
        for (int i = 0; i < count; ++i) {
            QVERIFY(log(service, 1, text + QString(90, '.')));
        }
        const int lines = probe->lines().size();
        QVERIFY(log(service, 2, "done"));
        QVERIFY(probe->waitForLines(lines + 1));
    };

    logAndWait("space", 10);
    {
        const FileSizeLimit limit(2000);
        logAndWait("full", 1000); // more than a file's buffer holds
    }
    logAndWait("space again", 10);
    service.closeLogger();

    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = file.readAll().split('\n');
    QCOMPARE(lines.last(), QByteArray()); // every line is whole
    int again = 0;
    for (const QByteArray& line : lines.mid(0, lines.size() - 1)) {
        QVERIFY2(line.startsWith("T ") && line.endsWith("."), line.constData());
        QCOMPARE(line.count('.'), 90);
        again += line.startsWith("T space again") ? 1 : 0;
    }
    QCOMPARE(again, 10);
    QVERIFY(lines.size() < 1000); // lines were lost while there was no space
}

void LogServiceSafetyTest::deviceThatCannotBeOpenedCostsItsOwnLinesOnly_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("in no folder") << "no/such/folder";
    QTest::newRow("below a file") << "file/log.txt";
    QTest::newRow("a folder") << "folder";
}

void LogServiceSafetyTest::deviceThatCannotBeOpenedCostsItsOwnLinesOnly()
{
    QFETCH(QString, path);
    QTemporaryDir home;
    const QDir folder(home.path());
    folder.mkdir("folder");
    QFile(folder.filePath("file")).open(QIODevice::WriteOnly);

    ImpatientService service;
    service.initLogService({});
    const auto file = [&] { return QSharedPointer<QFile>::create(folder.filePath(path)); };
    const auto common = file();
    const auto own = file();
    const auto sound = QSharedPointer<RecordingDevice>::create();
    service.registerOutputDevice(common);
    service.registerOutputDevice(sound);
    service.enableInfoOutput(true);
    service.getLoggerObject(USER);
    service.enableUserOutput(USER, true);
    service.getLoggerObject("OWN", own, QStringLiteral("'T'"), {});
    const auto logOnce = [&](int lines) {
        service.enableUserOutput("OWN", true);
        service.enableLogger(true);
        QVERIFY(log(service, 2, "own")); // taken, since nobody knows about its device
        QVERIFY(log(service, 1, "common"));
        QVERIFY(sound->waitForLines(lines)); // the last line of both
    };

    logOnce(1);
    QVERIFY(!common->isOpen());
    QVERIFY(!own->isOpen());

    // With nothing in the way any more the next switch opens them.
    service.enableLogger(false);
    service.enableUserOutput("OWN", false);
    QVERIFY(QDir(home.path()).removeRecursively());
    QVERIFY(QDir().mkpath(QFileInfo(folder.filePath(path)).path()));
    logOnce(2);
    QVERIFY(common->isOpen());
    service.closeLogger();
    QFile written(folder.filePath(path));
    QVERIFY(written.open(QIODevice::ReadOnly));
    QVERIFY(written.readAll().count('\n') > 0);
}

void LogServiceSafetyTest::deviceThatItsOwnerClosesComesBackWithItsSwitch()
{
    ImpatientService service;
    service.initLogService({});
    const auto common = QSharedPointer<RecordingDevice>::create();
    const auto sound = QSharedPointer<RecordingDevice>::create();
    service.registerOutputDevice(common);
    service.registerOutputDevice(sound);
    service.enableLogger(true);
    service.enableInfoOutput(true);
    service.getLoggerObject(USER);
    service.enableUserOutput(USER, true);
    const auto own = addUser(service, "OWN");

    common->close();
    own->close();
    QVERIFY(log(service, 2, "lost"));
    QVERIFY(log(service, 1, "first"));
    QVERIFY(sound->waitForLines(1));
    service.enableLogger(false);
    service.enableUserOutput("OWN", false);
    service.enableLogger(true);
    service.enableUserOutput("OWN", true);
    QVERIFY(log(service, 2, "kept"));
    QVERIFY(log(service, 1, "second"));
    service.closeLogger();

    QCOMPARE(sound->lines().size(), 2);
    QCOMPARE(common->lines().size(), 1);
    QVERIFY(common->text().endsWith(" second\n"));
    QCOMPARE(own->text(), QByteArray("T kept\n"));
}

void LogServiceSafetyTest::serviceNeedsNeitherHomeFolderNorSettings()
{
    const QByteArray home = qgetenv("HOME");
    qputenv("HOME", "/dev/null"); // nothing can be made below a file
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, "/dev/null/.config");
    {
        ImpatientService service; // looks up the log folder
        for (int start = 0; start < 2; ++start) {
            service.initLogService({});
            const auto device = addUser(service, USER);
            QVERIFY(log(service, 1, "text"));
            service.closeLogger();
            QCOMPARE(device->text(), QByteArray("T text\n"));
        }
    }
    qputenv("HOME", home);
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                       QFile::decodeName(qgetenv("XDG_CONFIG_HOME")));
}

void LogServiceSafetyTest::blockedWriterHoldsUpNobodyWhoLogs()
{
    ImpatientService service;
    service.initLogService({});
    const auto device = addUser(service, USER);
    device->blockWrites();
    QVERIFY(log(service, 1, "first"));
    QVERIFY(device->waitUntilBlocked());

    QVERIFY(log(service, 1, "second"));
    service.getLoggerObject("OTHER"); // neither opens nor closes anything
    service.enableUserOutput("OTHER", true);
    service.enableErrorOutput(true);
    QCOMPARE(service.getEnabledUserList(), QStringList{"OTHER"});
    QVERIFY(service.isUserEnabled(USER));
    service.initLogService(LogService::LogLevel);

    device->unblockWrites();
    service.closeLogger();
    QCOMPARE(device->lines().size(), 2);
}

void LogServiceSafetyTest::callThatClosesDevicesWaitsForTheWriteUnderWay()
{
    ImpatientService service;
    service.initLogService({});
    const auto device = addUser(service, USER);
    device->blockWrites();
    QVERIFY(log(service, 1, "first"));
    QVERIFY(device->waitUntilBlocked());

    auto call = inAnotherThread([&] { service.enableUserOutput(USER, false); });
    QVERIFY(log(service, 1, "second") || !service.isUserEnabled(USER)); // nobody waits for the call
    QVERIFY(!isDone(call));
    QCOMPARE(device->closeCount(), 0);
    device->unblockWrites();
    QVERIFY(comesToAnEnd(call));
    QCOMPARE(device->closeCount(), 1);
    QVERIFY(!device->wasSharedByThreads());
    QCOMPARE(device->lines().first(), QByteArray("T first\n"));
}

void LogServiceSafetyTest::blockedOpenHoldsUpNobodyWhoLogs()
{
    ImpatientService service;
    service.initLogService({});
    const auto blocked = QSharedPointer<RecordingDevice>::create();
    service.getLoggerObject(USER, blocked, QString(), {});
    const auto device = addUser(service, "SOUND");
    blocked->blockOpen();
    auto call = inAnotherThread([&] { service.enableUserOutput(USER, true); });
    QVERIFY(blocked->waitUntilBlocked());

    QVERIFY(log(service, 2, "text"));
    QVERIFY(service.isUserEnabled("SOUND"));
    QVERIFY(!isDone(call));
    blocked->unblockOpen();
    QVERIFY(comesToAnEnd(call));
    service.closeLogger();
    QCOMPARE(device->text(), QByteArray("T text\n"));
}

void LogServiceSafetyTest::linesBehindABlockedOpenAreWrittenAfterIt()
{
    ImpatientService service;
    service.initLogService({});
    const auto blocked = QSharedPointer<RecordingDevice>::create();
    service.getLoggerObject(USER, blocked, QStringLiteral("'T'"), {});
    blocked->blockOpen();
    auto call = inAnotherThread([&] { service.enableUserOutput(USER, true); });
    QVERIFY(blocked->waitUntilBlocked());
    QVERIFY(log(service, 1, "text")); // enabled already
    blocked->unblockOpen();
    QVERIFY(comesToAnEnd(call));
    QVERIFY(blocked->waitForLines(1));
    QCOMPARE(blocked->text(), QByteArray("T text\n"));
    QVERIFY(!blocked->wasSharedByThreads());
}

void LogServiceSafetyTest::closeGivesUpOnABlockedWrite()
{
    if (!canCancelThreads()) {
        QSKIP("cancels a thread");
    }
    ImpatientService service;
    service.initLogService({});
    const auto deaf = addUser<DeafDevice>(service, USER);
    const auto sound = addUser(service, "SOUND");
    QVERIFY(log(service, 1, "text"));
    QVERIFY(deaf->waitUntilReached());
    service.closeLogger();
    QCOMPARE(sound->closeCount(), 1);
    QCOMPARE(deaf->closeCount(), 0); // it would block again
    QVERIFY(!service.isUserExists(USER));
}

void LogServiceSafetyTest::closeGivesUpOnAWriteThatCannotBeCancelled()
{
    // The thread that is given up comes back into the service, which therefore has to stay.
    static const auto* const service = new std::unique_ptr<ImpatientService>(new ImpatientService);
    LogServiceImpl& impatient = **service;
    impatient.initLogService({});
    const auto stuck = addUser(impatient, USER);
    const auto sound = addUser(impatient, "SOUND");
    stuck->blockWrites();
    QVERIFY(log(impatient, 1, "one"));
    QVERIFY(log(impatient, 2, "behind it"));
    QVERIFY(stuck->waitUntilBlocked());
    impatient.closeLogger();
    QCOMPARE(sound->closeCount(), 1);
    QCOMPARE(stuck->closeCount(), 0);

    // What it does when it comes back touches nothing of the next start.
    impatient.initLogService({});
    const auto next = addUser(impatient, "NEXT");
    QVERIFY(log(impatient, 1, "first"));
    stuck->unblockWrites();
    QVERIFY(next->waitForLines(1));
    QVERIFY(log(impatient, 1, "second"));
    impatient.closeLogger();
    QCOMPARE(next->lines(), (QList<QByteArray>{"T first\n", "T second\n"}));
    QVERIFY(sound->lines().isEmpty());
}

void LogServiceSafetyTest::closeGivesUpOnABlockedOpen()
{
    ImpatientService service;
    service.initLogService({});
    const auto blocked = QSharedPointer<RecordingDevice>::create();
    service.getLoggerObject(USER, blocked, QStringLiteral("'T'"), {});
    const auto sound = addUser(service, "SOUND");
    blocked->blockOpen();
    auto call = inAnotherThread([&] { service.enableUserOutput(USER, true); });
    QVERIFY(blocked->waitUntilBlocked());
    service.closeLogger();
    QVERIFY(!isDone(call));
    QCOMPARE(sound->closeCount(), 1);
    QCOMPARE(blocked->closeCount(), 0);

    service.initLogService({});
    const auto next = addUser(service, USER);
    QVERIFY(log(service, 1, "text"));
    QVERIFY(next->waitForLines(1));
    blocked->unblockOpen();
    QVERIFY(comesToAnEnd(call));
    service.closeLogger();
}

void LogServiceSafetyTest::closeGivesUpOnABlockedCleanup()
{
    BlockedFolder folder(FileOutDevConfig({}).getFolderName());
    {
        ImpatientService service;
        for (const std::size_t start : {1U, 2U}) {
            service.initLogService({});
            QVERIFY(folder.waitUntilReached(start)); // each start has a cleanup of its own
            service.closeLogger();
            QVERIFY(!service.isUserExists("LOGGER"));
        }
    }
    folder.release(); // after the service has gone
    QCOMPARE(folder.threadsAskedToStop(), 2);
}

void LogServiceSafetyTest::closeWaitsForACleanupThatEnds()
{
    BlockedFolder folder(FileOutDevConfig({}).getFolderName());
    PatientService service;
    service.initLogService({});
    QVERIFY(folder.waitUntilReached());
    WaitingCall close([&service] { service.closeLogger(); });
    QVERIFY(close.waitUntilAsleep());
    folder.release();
    close.end();
    QCOMPARE(folder.threadsAskedToStop(), 0);
}

void LogServiceSafetyTest::cleanupRemovesWhatIsOlderThanAMonth()
{
    const FileOutDevConfig config({});
    QFile file(config.getFolderName() + '/' + config.getBaseFileName() + ".txt");
    QVERIFY(QDir().mkpath(config.getFolderName()));
    QVERIFY(file.open(QIODevice::WriteOnly)); // no file can be made older than it is
    for (const int days : {20, 40}) {
        const ShiftedClock clock(days);
        PatientService service;
        service.initLogService({});
        service.closeLogger(); // waits for the cleanup
        QCOMPARE(file.exists(), days < 28);
    }
}

void LogServiceSafetyTest::closeLetsGoOfDevices()
{
    PatientService service;
    service.initLogService({});
    QWeakPointer<RecordingDevice> device = addUser(service, USER);
    QVERIFY(!device.isNull());
    service.closeLogger();
    QVERIFY(device.isNull());
}

void LogServiceSafetyTest::callThatWaitsIsReleasedWhenCloseGivesUp()
{
    if (!canCancelThreads()) {
        QSKIP("cancels a thread");
    }
    ImpatientService service;
    service.initLogService({});
    const auto deaf = addUser<DeafDevice>(service, USER);
    QVERIFY(log(service, 1, "text"));
    QVERIFY(deaf->waitUntilReached());
    bool isSwitched = true;
    auto call = inAnotherThread([&] { isSwitched = service.enableLogger(true); });
    service.closeLogger();
    QVERIFY(comesToAnEnd(call));
    QVERIFY(!isSwitched); // or it came first, and then the close forgot it
    QVERIFY(!service.isLoggerEnabled());
}

/** The call waits behind another one, on which a close of the service gives up meanwhile. */
void LogServiceSafetyTest::userThatWasClosedIsNotSwitched()
{
    ImpatientService service;
    service.initLogService({});
    const auto blocked = QSharedPointer<RecordingDevice>::create();
    service.getLoggerObject(USER, blocked, {}, {});
    const auto device = addUser(service, "SWITCHED");
    blocked->blockOpen();
    WaitingCall open([&] { service.enableUserOutput(USER, true); });
    QVERIFY(blocked->waitUntilBlocked());
    WaitingCall call([&] { service.enableUserOutput("SWITCHED", true); });
    QVERIFY(call.waitUntilAsleep());
    service.closeLogger();
    call.end();
    QCOMPARE(device->openCount(), 1); // from before
    blocked->unblockOpen();
}

/** As above, but the service is started again before the call comes to its turn. */
void LogServiceSafetyTest::userOfALaterStartIsSwitchedAsItIs()
{
    ImpatientService service;
    service.initLogService({});
    const auto blocked = QSharedPointer<RecordingDevice>::create();
    service.getLoggerObject(USER, blocked, {}, {});
    const auto device = addUser<ActingDevice>(service, "SWITCHED");
    blocked->blockOpen();
    WaitingCall open([&] { service.enableUserOutput(USER, true); });
    QVERIFY(blocked->waitUntilBlocked());
    WaitingCall call([&] { service.enableUserOutput("SWITCHED", true); });
    QVERIFY(call.waitUntilAsleep());
    device->whenClosed = [&] {
        service.initLogService({});
        service.getLoggerObject("SWITCHED"); // without a device
    };
    service.closeLogger();
    call.end();
    QCOMPARE(service.getEnabledUserList(), QStringList{"SWITCHED"});
    blocked->unblockOpen();
}

void LogServiceSafetyTest::nextStartAfterATerminatedWriterBeginsEmpty()
{
    if (!canCancelThreads()) {
        QSKIP("cancels a thread");
    }
    ImpatientService service;
    service.initLogService({});
    const auto deaf = addUser<DeafDevice>(service, USER);
    for (int i = 0; i < 100; ++i) {
        QVERIFY(log(service, 1, "old"));
    }
    QVERIFY(deaf->waitUntilReached());
    service.closeLogger();

    service.initLogService({});
    const auto next = addUser(service, USER);
    next->blockWrites();
    for (int i = 0; i < 9999; ++i) {
        QVERIFY(log(service, 1, "new")); // all of the queue is free
    }
    QVERIFY(!log(service, 1, "too many"));
    next->unblockWrites();
    service.closeLogger();
    QCOMPARE(next->lines().size(), 9999);
    QCOMPARE(next->lines().count("T new\n"), 9999);
}

void LogServiceSafetyTest::deviceMayLogWhileItIsWrittenTo()
{
    ImpatientService service;
    service.initLogService({});
    const auto device = addUser<ActingDevice>(service, USER);
    device->whenWritten = [&] { log(service, 1, "echo"); };
    QVERIFY(log(service, 1, "text"));
    QVERIFY(device->waitForLines(2));
    service.closeLogger();
    QCOMPARE(device->lines(), (QList<QByteArray>{"T text\n", "T echo\n"}));
}

void LogServiceSafetyTest::deviceMaySwitchTheServiceWhileItIsWrittenTo()
{
    ImpatientService service;
    service.initLogService({});
    const auto device = addUser<ActingDevice>(service, USER);
    const auto common = QSharedPointer<RecordingDevice>::create();
    device->whenWritten = [&] {
        service.registerOutputDevice(common);
        service.enableLogger(true);
        service.getLoggerObject("OTHER");
        service.enableUserOutput("OTHER", true);
        service.enableInfoOutput(true);
        service.initLogService({});
        service.writeData(); // would write the line a second time
    };
    QVERIFY(log(service, 1, "text"));
    QVERIFY(device->waitForLines(1));
    QVERIFY(log(service, 2, "common text"));
    service.closeLogger();
    QCOMPARE(device->lines(), QList<QByteArray>{"T text\n"});
    QCOMPARE(common->lines().size(), 1);
}

void LogServiceSafetyTest::deviceMayRegisterOthersWhileItIsWrittenTo()
{
    ImpatientService service;
    service.initLogService({});
    const auto first = QSharedPointer<ActingDevice>::create();
    const auto second = QSharedPointer<RecordingDevice>::create();
    service.registerOutputDevice(first);
    service.registerOutputDevice(second);
    service.enableLogger(true);
    service.getLoggerObject(USER);
    service.enableUserOutput(USER, true);
    service.enableInfoOutput(true);
    first->whenWritten = [&] {
        for (int other = 0; other < 3; ++other) {
            service.registerOutputDevice(QSharedPointer<RecordingDevice>::create());
        }
    };
    QVERIFY(log(service, 1, "text"));
    QVERIFY(second->waitForLines(1)); // its place among the devices is where it was
    service.closeLogger();
    QCOMPARE(first->lines().size(), 1);
    QCOMPARE(second->lines().size(), 1);
}

void LogServiceSafetyTest::deviceMayCloseTheServiceWhileItIsWrittenTo()
{
    ImpatientService service;
    service.initLogService({});
    const auto device = addUser<ActingDevice>(service, USER);
    device->whenWritten = [&] { service.closeLogger(); }; // which cannot wait for itself
    QVERIFY(log(service, 1, "text"));
    QVERIFY(device->waitForLines(1));
    QVERIFY(service.isUserEnabled(USER));
    service.closeLogger();
    QCOMPARE(device->lines().size(), 1);
}

void LogServiceSafetyTest::serviceThatIsClosingTakesNoUsers()
{
    PatientService service;
    service.initLogService({});
    service.enableLogger(true);
    const auto device = addUser<ActingDevice>(service, USER);
    bool isClosing = false;
    bool isTaken = true;
    device->whenWritten = [&] {
        const QDeadlineTimer deadline(20s);
        while (service.isLoggerEnabled() && !deadline.hasExpired()) {
            QThread::yieldCurrentThread();
        }
        isClosing = !service.isLoggerEnabled();
        isTaken = !service.getLoggerObject("LATE").isNull();
    };
    QVERIFY(log(service, 1, "text"));
    service.closeLogger();
    QCOMPARE(device->lines(), QList<QByteArray>{"T text\n"});
    QVERIFY(isClosing);
    QVERIFY(!isTaken);
}

void LogServiceSafetyTest::deviceMayStartAndCloseWhileItIsClosed()
{
    ImpatientService service;
    service.initLogService({});
    const auto device = addUser<ActingDevice>(service, USER);
    const auto behind = addUser(service, "BEHIND");
    device->whenClosed = [&] {
        service.closeLogger();
        service.initLogService({});
        QVERIFY(service.isUserExists("LOGGER"));
        QVERIFY(!service.isUserExists(USER));
        service.enableLogger(true);
    };
    service.closeLogger();
    QCOMPARE(behind->closeCount(), 1);
    QVERIFY(service.isLoggerEnabled());
    service.closeLogger();
    QVERIFY(!service.isUserExists("LOGGER"));
}

namespace {

class LoggingConfig : public PkLogger::LoggerConfigInterface
{
public:
    explicit LoggingConfig(LogServiceImpl& service) : m_service(service) {}

    bool isLoggerEnabled() const override { return log(m_service, 1, "asked"); }
    bool isConsoleLogEnabled() const override { return false; }
    bool isDebugOutputEnabled() const override { return false; }
    bool isInfoOutputEnabled() const override { return false; }
    bool isWarningOutputEnabled() const override { return false; }
    bool isErrorOutputEnabled() const override { return false; }
    QVector<UserState> getAdditionalUserStates() const override { return {}; }
    QVector<UserState> getUserStates() const override { return {}; }

private:
    LogServiceImpl& m_service;
};

} // namespace

void LogServiceSafetyTest::configurationMayLogWhileItIsRead()
{
    ImpatientService service;
    service.initLogService({});
    const auto device = addUser(service, USER);
    LoggingConfig config(service);
    service.configureLogService(&config);
    QVERIFY(service.isLoggerEnabled());
    QVERIFY(device->waitForLines(1));
}

void LogServiceSafetyTest::idleWriterFlushesFiles()
{
    ImpatientService service;
    service.initLogService({});
    QTemporaryDir folder;
    // A file system tells who reads it that something was written; a fifo does it without polling.
    const QByteArray path = QFile::encodeName(folder.filePath("fifo"));
    QCOMPARE(mkfifo(path.constData(), 0600), 0);
    const int reader = open(path.constData(), O_RDONLY | O_NONBLOCK);
    QVERIFY(reader >= 0);
    QCOMPARE(fcntl(reader, F_SETFL, 0), 0); // reads wait from now on
    service.getLoggerObject(USER, QSharedPointer<QFile>::create(QFile::decodeName(path)),
                            QStringLiteral("'T'"), {});
    service.enableUserOutput(USER, true);
    QVERIFY(log(service, 1, "text"));
    char text[64] = {};
    QCOMPARE(read(reader, text, sizeof text), ssize_t(7));
    QCOMPARE(QByteArray(text), QByteArray("T text\n"));
    ::close(reader);
}

void LogServiceSafetyTest::usersMayBeAddedWhileLinesAreWritten()
{
    ImpatientService service;
    service.initLogService({});
    const auto device = addUser(service, USER);
    std::vector<std::future<void>> threads;
    threads.reserve(4);
    for (int thread = 0; thread < 4; ++thread) {
        threads.push_back(inAnotherThread([&service, thread] {
            for (int i = 0; i < 15; ++i) {
                addUser(service, QString::number(thread * 15 + i));
                log(service, 1, "text");
            }
        }));
    }
    for (std::future<void>& thread : threads) {
        QVERIFY(comesToAnEnd(thread));
    }
    service.closeLogger();
    QCOMPARE(device->lines().size(), 60);
}

QTEST_GUILESS_MAIN(LogServiceSafetyTest)
#include "LogServiceSafetyTest.moc"
