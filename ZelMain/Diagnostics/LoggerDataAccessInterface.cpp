#include "ZelMain/Diagnostics/LoggerDataAccessInterface.h"

namespace PkLogger {

LoggerDataAccessInterface::~LoggerDataAccessInterface() = default;

LoggerDataLogInterface::~LoggerDataLogInterface() = default;

} // namespace PkLogger
