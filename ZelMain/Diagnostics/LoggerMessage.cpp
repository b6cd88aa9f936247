#include "ZelMain/Diagnostics/LoggerMessage.h"

#include "ZelMain/Diagnostics/CID.h"
#include "ZelMain/Diagnostics/DCID.h"
#include "ZelMain/Diagnostics/LogServiceInterface.h"
#include "ZelMain/Diagnostics/LoggerImpl.h"

#include <QDebug>

#include <iterator>

namespace PkLogger {

namespace {

/** What a type of message asks of the service and of the user's logger. */
struct Route
{
    bool (LogService::*isEnabled)() const;
    bool (Logger::*log)(const QString& text, const CID& cid, const DCID& dcid);
};

constexpr Route ROUTES[] = {
    // indexed by LogType
    {&LogService::isErrorOutputEnabled, &Logger::logError},
    {&LogService::isWarningOutputEnabled, &Logger::logWarning},
    {&LogService::isDebugOutputEnabled, &Logger::logDebug},
    {&LogService::isInfoOutputEnabled, &Logger::logInfo},
};

/** Null for a number that is no type. */
const Route* routeOf(LoggerMessage::LogType type)
{
    const bool isType = type >= 0 && type < static_cast<int>(std::size(ROUTES));
    return isType ? &ROUTES[type] : nullptr;
}

} // namespace

void LoggerMessage::LogMessage(LogType type, const QString& user, const QString& first,
                               const QString& second)
{
    const auto service = LogService::GetLogService();
    if (!service || !service->isLoggerEnabled() || !service->isUserEnabled(user)) {
        return;
    }
    const QString text = first + QStringLiteral(", ") + second;
    if (service->isConsoleLogEnabled()) {
        logCosole(type, text);
    } else {
        logFile(type, user, text);
    }
}

void LoggerMessage::logCosole(LogType type, const QString& text)
{
    const Route* route = routeOf(type);
    const auto service = LogService::GetLogService();
    if (route == nullptr || !service || !((*service).*route->isEnabled)()) {
        return;
    }
    qDebug().noquote().nospace() << text << '\n';
}

void LoggerMessage::logFile(LogType type, const QString& user, const QString& text)
{
    const Route* route = routeOf(type);
    if (route == nullptr) {
        return; // before the user is made
    }
    const auto logger = GetLoggerHandle(user);
    if (logger) {
        ((*logger).*route->log)(text, CID(), DCID());
    }
}

QSharedPointer<Logger> LoggerMessage::GetLoggerHandle(const QString& user)
{
    const auto service = LogService::GetLogService();
    if (!service) {
        return {};
    }
    return service->getLoggerObject(user);
}

} // namespace PkLogger
