// Logs from several threads to a file, alerts to a file of their own, and one message to the
// console.
//
// usage: log_from_threads FOLDER

#include "ZelMain/Diagnostics/CID.h"
#include "ZelMain/Diagnostics/DCID.h"
#include "ZelMain/Diagnostics/LogServiceInterface.h"
#include "ZelMain/Diagnostics/LogServiceUsers.h"
#include "ZelMain/Diagnostics/LoggerImpl.h"
#include "ZelMain/Diagnostics/LoggerMessage.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTextStream>

#include <thread>
#include <vector>

using namespace PkLogger;

namespace {

constexpr int SCANNERS = 4;

void scan(const QSharedPointer<Logger>& logger, int number)
{
    // The text is built only when somebody wants it, and written by another thread.
    logger->logDebug("scanner %d: first step", number);
    logger->logInfo("scanner %d: %d channels found", number, number * 3);
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2) {
        QTextStream(stderr) << "usage: log_from_threads FOLDER\n";
        return 2;
    }
    const QDir folder(arguments[1]);

    const QSharedPointer<LogService> service = LogService::GetLogService();
    service->initLogService(LogService::LogLevel);

    const QString scanUser = LoggerUsers::LOGUSER_SCANINTERACTOR;
    const auto scans = service->getLoggerObject(scanUser);
    service->enableUserOutput(scanUser, true);
    service->enableInfoOutput(true);
    service->enableLogger(true);

    // The console and the common devices exclude each other: while it is on, they are closed.
    service->enableConsoleLog(true);
    LoggerMessage::LogMessage(LoggerMessage::LogInfo, scanUser, "scan", "begins");
    service->enableConsoleLog(false);

    // A common device: every user without a device of its own writes to it.
    service->registerOutputDevice(QSharedPointer<QFile>::create(folder.filePath("common.txt")));

    // A user with a device of its own, whatever the levels and the logger switch say.
    const auto alerts = service->getLoggerObject(
        LoggerUsers::LOGUSER_ALERTS, QSharedPointer<QFile>::create(folder.filePath("alerts.txt")),
        LoggerUsers::LOGUSER_ALERTS_DTFORMAT, LogService::OutUserName);
    service->enableUserOutput(LoggerUsers::LOGUSER_ALERTS, true);

    std::vector<std::thread> scanners;
    for (int number = 1; number <= SCANNERS; ++number) {
        scanners.emplace_back(scan, scans, number);
    }
    for (std::thread& scanner : scanners) {
        scanner.join();
    }
    // The printf form would ask for the level first, this one leaves it to the service.
    alerts->logWarning(QStringLiteral("%1 scanners are done").arg(SCANNERS), CID(), DCID());

    // What is queued is written before the program ends; LogServiceImpl::closeLogger() does it
    // sooner.
    return 0;
}
