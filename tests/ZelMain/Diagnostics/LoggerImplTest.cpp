#include "ZelMain/Diagnostics/LoggerImpl.h"

#include "ZelMain/Diagnostics/CID.h"
#include "ZelMain/Diagnostics/DCID.h"
#include "ZelMain/Diagnostics/LogServiceImpl.h"
#include "tests/ZelMain/Diagnostics/RecordingDevice.h"

#include <QtTest>

#include <array>

using PkLogger::Logger;
using PkLogger::LoggerDataLogInterface;
using PkLogger::LoggerImpl;
using PkLogger::LogServiceImpl;

namespace {

/** Identifiers that start 01 23 45 67 and go on with other bytes. */
template <typename Id>
Id sampleId()
{
    const std::array<unsigned char, 16> bytes{0x01, 0x23, 0x45, 0x67, 0x89, 0xab, 0xcd, 0xef,
                                              0x10, 0x32, 0x54, 0x76, 0x98, 0xba, 0xdc, 0xfe};
    return Id(bytes.data());
}

const QString USER = QStringLiteral("DATABASE");

} // namespace

class LoggerImplTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void identifiersStandInFrontOfTheText_data();
    void identifiersStandInFrontOfTheText();

    void printfFormIsLoggedAtItsLevel_data();
    void printfFormIsLoggedAtItsLevel();
    void printfFormIsWrittenAsQtWritesIt_data();
    void printfFormIsWrittenAsQtWritesIt();
    void identifierFormIsLoggedAtItsLevel_data();
    void identifierFormIsLoggedAtItsLevel();

    void queryNeedsLevelAndUser_data();
    void queryNeedsLevelAndUser();
    void servicesOwnLoggerIsNeverEnabled();
    void unwantedMessageIsNotFormatted_data();
    void unwantedMessageIsNotFormatted();
    void printfFormAsksTheObjectsOwnQuery();
    void identifierFormDoesNotAskTheQuery();
    void loggerWithoutAServiceDoesNothing();

private:
    void switchAllLevels(bool on);
    QStringList closeAndRead();

    const QSharedPointer<LogServiceImpl> m_service = LogServiceImpl::getLogServicePointer();
    QSharedPointer<RecordingDevice> m_device;
    QSharedPointer<LoggerImpl> m_logger;
};

void LoggerImplTest::init()
{
    m_device = QSharedPointer<RecordingDevice>::create();
    m_service->initLogService({});
    m_service->registerOutputDevice(m_device);
    m_service->enableLogger(true);
    m_logger = m_service->getLoggerObject(USER);
    m_service->enableUserOutput(USER, true);
    switchAllLevels(true);
}

void LoggerImplTest::cleanup()
{
    m_service->closeLogger();
}

void LoggerImplTest::switchAllLevels(bool on)
{
    m_service->enableDebugOutput(on);
    m_service->enableInfoOutput(on);
    m_service->enableWarningOutput(on);
    m_service->enableErrorOutput(on);
}

/** Level and message of each line. */
QStringList LoggerImplTest::closeAndRead()
{
    m_service->closeLogger();
    QStringList result;
    for (const QByteArray& line : m_device->lines()) {
        const QString text = QString::fromLatin1(line);
        const QString level = text.section(USER, 1).simplified().section(' ', 0, 0);
        result << level + ": " + text.mid(text.indexOf("*  ") + 3).chopped(1);
    }
    return result;
}

void LoggerImplTest::identifiersStandInFrontOfTheText_data()
{
    QTest::addColumn<bool>("hasCid");
    QTest::addColumn<bool>("hasDcid");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("result");
    QTest::newRow("none") << false << false << "text"
                          << "text";
    QTest::newRow("connection") << true << false << "text"
                                << "CID = 01234567 text";
    QTest::newRow("device, whose identifier stays unsaid") << false << true << "text"
                                                           << "DCID = () text";
    QTest::newRow("both") << true << true << "text"
                          << "CID = 01234567 DCID = () text";
    QTest::newRow("text with a place marker") << true << true << "%1 %2"
                                              << "CID = 01234567 DCID = () %1 %2";
    QTest::newRow("empty text") << true << false << ""
                                << "CID = 01234567 ";
}

void LoggerImplTest::identifiersStandInFrontOfTheText()
{
    QFETCH(bool, hasCid);
    QFETCH(bool, hasDcid);
    QFETCH(QString, text);
    const CID cid = hasCid ? sampleId<CID>() : CID();
    const DCID dcid = hasDcid ? sampleId<DCID>() : DCID();
    QTEST(LoggerImpl::appendIDsToLogString(text, cid, dcid), "result");
}

void LoggerImplTest::printfFormIsLoggedAtItsLevel_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("line");
    QTest::newRow("debug") << 0 << "DEBUG: number 7 of nine";
    QTest::newRow("info") << 1 << "INFO: number 7 of nine";
    QTest::newRow("warning") << 2 << "WARNING: number 7 of nine";
    QTest::newRow("error") << 3 << "ERROR: number 7 of nine";
}

void LoggerImplTest::printfFormIsLoggedAtItsLevel()
{
    QFETCH(int, level);
    QFETCH(QString, line);
    Logger& logger = *m_logger;
    const auto log = [&logger, level] {
        switch (level) {
        case 0:
            return logger.logDebug("number %d of %s", 7, "nine");
        case 1:
            return logger.logInfo("number %d of %s", 7, "nine");
        case 2:
            return logger.logWarning("number %d of %s", 7, "nine");
        default:
            return logger.logError("number %d of %s", 7, "nine");
        }
    };
    QVERIFY(log());
    QCOMPARE(closeAndRead(), QStringList{line});
}

void LoggerImplTest::printfFormIsWrittenAsQtWritesIt_data()
{
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QByteArray>("argument");
    QTest::addColumn<QString>("message");
    QTest::newRow("format is UTF-8") << QByteArray("gr\xc3\xbc\xc3\x9f %s") << QByteArray("x")
                                     << QString::fromLatin1("gr\xfc\xdf x");
    QTest::newRow("text is UTF-8") << QByteArray("%s") << QByteArray("gr\xc3\xbc\xc3\x9f")
                                   << QString::fromLatin1("gr\xfc\xdf");
    QTest::newRow("percent sign") << QByteArray("100 %% %s") << QByteArray("x") << "100 % x";
    QTest::newRow("field width") << QByteArray("[%5s]") << QByteArray("x") << "[    x]";
    QTest::newRow("place marker in the text") << QByteArray("%s") << QByteArray("%1 %s") << "%1 %s";
    QTest::newRow("no conversion") << QByteArray("plain") << QByteArray("unused") << "plain";
    QTest::newRow("empty") << QByteArray("") << QByteArray("unused") << "";
}

void LoggerImplTest::printfFormIsWrittenAsQtWritesIt()
{
    QFETCH(QByteArray, format);
    QFETCH(QByteArray, argument);
    QFETCH(QString, message);
    QVERIFY(m_logger->logInfo(format.constData(), argument.constData()));
    QCOMPARE(closeAndRead(), QStringList{"INFO: " + message});
}

void LoggerImplTest::identifierFormIsLoggedAtItsLevel_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("line");
    QTest::newRow("debug") << 0 << "DEBUG: CID = 01234567 text";
    QTest::newRow("info") << 1 << "INFO: CID = 01234567 text";
    QTest::newRow("warning") << 2 << "WARNING: CID = 01234567 text";
    QTest::newRow("error") << 3 << "ERROR: CID = 01234567 text";
}

void LoggerImplTest::identifierFormIsLoggedAtItsLevel()
{
    QFETCH(int, level);
    QFETCH(QString, line);
    using IdForm = bool (Logger::*)(const QString&, const CID&, const DCID&);
    const IdForm forms[] = {&Logger::logDebug, &Logger::logInfo, &Logger::logWarning,
                            &Logger::logError};
    Logger& logger = *m_logger;
    QVERIFY((logger.*forms[level])(QStringLiteral("text"), sampleId<CID>(), DCID()));
    QCOMPARE(closeAndRead(), QStringList{line});
}

void LoggerImplTest::queryNeedsLevelAndUser_data()
{
    QTest::addColumn<int>("level");
    QTest::newRow("debug") << 0;
    QTest::newRow("info") << 1;
    QTest::newRow("warning") << 2;
    QTest::newRow("error") << 3;
}

void LoggerImplTest::queryNeedsLevelAndUser()
{
    QFETCH(int, level);
    using Query = bool (Logger::*)() const;
    const Query queries[] = {&Logger::isDebugOutputEnabled, &Logger::isInfoOutputEnabled,
                             &Logger::isWarningOutputEnabled, &Logger::isErrorOutputEnabled};
    const Logger& logger = *m_logger;
    const auto isEnabled = [&] { return (logger.*queries[level])(); };
    const auto setLevel = [this, level](bool on) {
        m_service->setLevelMask(static_cast<LoggerDataLogInterface::LOGLEVEL>(level), on);
    };
    switchAllLevels(false);
    QVERIFY(!isEnabled());
    setLevel(true);
    QVERIFY(isEnabled());
    for (int other = 0; other < 4; ++other) {
        QCOMPARE((logger.*queries[other])(), other == level);
    }
    m_service->enableUserOutput(USER, false);
    QVERIFY(!isEnabled());
    m_service->enableUserOutput(USER, true);
    m_service->enableLogger(false); // has no say here
    QVERIFY(isEnabled());
}

void LoggerImplTest::servicesOwnLoggerIsNeverEnabled()
{
    const auto logger = m_service->getLoggerObject(LogServiceImpl::LOGGER_USER_ID);
    m_service->enableUserOutput(LogServiceImpl::LOGGER_USER_ID, true);
    QVERIFY(!logger->isErrorOutputEnabled());
    QVERIFY(!logger->logError("%s", "text"));
    QVERIFY(!logger->logError(QStringLiteral("text"), CID(), DCID()));
    QVERIFY(closeAndRead().isEmpty());
}

void LoggerImplTest::unwantedMessageIsNotFormatted_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("levelsOn");
    QTest::addColumn<bool>("userOn");
    for (int level = 0; level < 4; ++level) {
        QTest::addRow("level %d off", level) << level << false << true;
        QTest::addRow("user off at level %d", level) << level << true << false;
    }
}

void LoggerImplTest::unwantedMessageIsNotFormatted()
{
    QFETCH(int, level);
    QFETCH(bool, levelsOn);
    QFETCH(bool, userOn);
    using Log = bool (Logger::*)(const char*, ...);
    const Log logs[] = {&Logger::logDebug, &Logger::logInfo, &Logger::logWarning,
                        &Logger::logError};
    const QString names[] = {"DEBUG", "INFO", "WARNING", "ERROR"};
    Logger& logger = *m_logger;
    switchAllLevels(levelsOn);
    m_service->enableUserOutput(USER, userOn);
    // A text that is formatted tells how long it is.
    int formattedLength = -1;
    QVERIFY(!(logger.*logs[level])("four%n", &formattedLength));
    QCOMPARE(formattedLength, -1);

    switchAllLevels(true);
    m_service->enableUserOutput(USER, true);
    QVERIFY((logger.*logs[level])("four%n", &formattedLength));
    QCOMPARE(formattedLength, 4);
    QCOMPARE(closeAndRead(), QStringList(names[level] + ": four"));
}

namespace {

/** A logger that says yes to errors although nothing is switched on. */
class EagerLogger : public LoggerImpl
{
public:
    using LoggerImpl::LoggerImpl;
    bool isErrorOutputEnabled() const override { return true; }
};

} // namespace

void LoggerImplTest::printfFormAsksTheObjectsOwnQuery()
{
    m_service->getLoggerObject("PRIVATE", m_device, QStringLiteral("'T'"), {});
    m_service->enableUserOutput("PRIVATE", true);
    switchAllLevels(false);
    EagerLogger logger(m_service, 2);
    QVERIFY(!logger.logWarning("%s", "text"));
    QVERIFY(logger.logError("%s", "text"));
}

void LoggerImplTest::identifierFormDoesNotAskTheQuery()
{
    const auto device = QSharedPointer<RecordingDevice>::create();
    const auto logger = m_service->getLoggerObject("PRIVATE", device, QStringLiteral("'T'"), {});
    m_service->enableUserOutput("PRIVATE", true);
    switchAllLevels(false);
    QVERIFY(!logger->isErrorOutputEnabled());
    QVERIFY(!logger->logError("%s", "refused by the query"));
    QVERIFY(logger->logError(QStringLiteral("accepted by the service"), CID(), DCID()));
    QVERIFY(!m_logger->logError(QStringLiteral("level is off"), CID(), DCID()));
    m_service->closeLogger();
    QCOMPARE(device->text(), QByteArray("T accepted by the service\n"));
}

void LoggerImplTest::loggerWithoutAServiceDoesNothing()
{
    LoggerImpl logger({}, 1);
    QVERIFY(!logger.isDebugOutputEnabled());
    QVERIFY(!logger.isInfoOutputEnabled());
    QVERIFY(!logger.isWarningOutputEnabled());
    QVERIFY(!logger.isErrorOutputEnabled());
    QVERIFY(!logger.logDebug("%s", "text"));
    QVERIFY(!logger.logInfo("%s", "text"));
    QVERIFY(!logger.logWarning("%s", "text"));
    QVERIFY(!logger.logError("%s", "text"));
    QVERIFY(!logger.logError(QStringLiteral("text"), sampleId<CID>(), DCID()));
    EagerLogger eager({}, 1);
    QVERIFY(!eager.logError("%s", "text"));
    QVERIFY(closeAndRead().isEmpty());
}

QTEST_GUILESS_MAIN(LoggerImplTest)
#include "LoggerImplTest.moc"
