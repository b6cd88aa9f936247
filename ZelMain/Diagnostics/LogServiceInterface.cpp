#include "ZelMain/Diagnostics/LogServiceInterface.h"

#include "ZelMain/Diagnostics/LogServiceImpl.h"

namespace PkLogger {

QSharedPointer<LogService> LogService::GetLogService()
{
    return LogServiceImpl::getLogServicePointer();
}

LogService::~LogService() = default;

Logger::~Logger() = default;

} // namespace PkLogger
