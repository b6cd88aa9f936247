#include "ZelMain/Diagnostics/LoggerImpl.h"

#include "ZelMain/Diagnostics/CID.h"
#include "ZelMain/Diagnostics/DCID.h"
#include "ZelMain/Diagnostics/LogServiceImpl.h"

#include <array>
#include <utility>

namespace PkLogger {

namespace {

constexpr int CID_TEXT_SIZE = 37;       // with the terminating zero
constexpr int SHOWN_CID_CHARACTERS = 8; // the first four bytes

} // namespace

LoggerImpl::LoggerImpl(QWeakPointer<LogServiceImpl> service, int handle)
    : m_service(std::move(service)), m_handle(handle)
{
}

LoggerImpl::~LoggerImpl() = default;

bool LoggerImpl::logDebug(const char* format, ...)
{
    if (!isDebugOutputEnabled()) {
        return false;
    }
    va_list arguments;
    va_start(arguments, format);
    const bool isQueued = logStr(LoggerDataLogInterface::LOG_DEBUG, format, arguments);
    va_end(arguments);
    return isQueued;
}

bool LoggerImpl::logInfo(const char* format, ...)
{
    if (!isInfoOutputEnabled()) {
        return false;
    }
    va_list arguments;
    va_start(arguments, format);
    const bool isQueued = logStr(LoggerDataLogInterface::LOG_INFO, format, arguments);
    va_end(arguments);
    return isQueued;
}

bool LoggerImpl::logWarning(const char* format, ...)
{
    if (!isWarningOutputEnabled()) {
        return false;
    }
    va_list arguments;
    va_start(arguments, format);
    const bool isQueued = logStr(LoggerDataLogInterface::LOG_WARNING, format, arguments);
    va_end(arguments);
    return isQueued;
}

bool LoggerImpl::logError(const char* format, ...)
{
    if (!isErrorOutputEnabled()) {
        return false;
    }
    va_list arguments;
    va_start(arguments, format);
    const bool isQueued = logStr(LoggerDataLogInterface::LOG_ERROR, format, arguments);
    va_end(arguments);
    return isQueued;
}

bool LoggerImpl::logStr(LoggerDataLogInterface::LOGLEVEL level, const char* format,
                        va_list arguments)
{
    const QString text = QString::vasprintf(format, arguments);
    const QSharedPointer<LogServiceImpl> service = m_service.toStrongRef();
    return service && service->logString(m_handle, level, text);
}

bool LoggerImpl::logDebug(const QString& text, const CID& cid, const DCID& dcid)
{
    return logWithIds(LoggerDataLogInterface::LOG_DEBUG, text, cid, dcid);
}

bool LoggerImpl::logInfo(const QString& text, const CID& cid, const DCID& dcid)
{
    return logWithIds(LoggerDataLogInterface::LOG_INFO, text, cid, dcid);
}

bool LoggerImpl::logWarning(const QString& text, const CID& cid, const DCID& dcid)
{
    return logWithIds(LoggerDataLogInterface::LOG_WARNING, text, cid, dcid);
}

bool LoggerImpl::logError(const QString& text, const CID& cid, const DCID& dcid)
{
    return logWithIds(LoggerDataLogInterface::LOG_ERROR, text, cid, dcid);
}

bool LoggerImpl::logWithIds(LoggerDataLogInterface::LOGLEVEL level, const QString& text,
                            const CID& cid, const DCID& dcid)
{
    const QSharedPointer<LogServiceImpl> service = m_service.toStrongRef();
    return service && service->logString(m_handle, level, appendIDsToLogString(text, cid, dcid));
}

QString LoggerImpl::appendIDsToLogString(const QString& text, const CID& cid, const DCID& dcid)
{
    QString result;
    if (cid != CID()) {
        std::array<char, CID_TEXT_SIZE> cidText{};
        CID::CIDIntoString(cid, cidText.data());
        result += QStringLiteral("CID = %1 ")
                      .arg(QString::fromLatin1(cidText.data(), SHOWN_CID_CHARACTERS));
    }
    // Says that there is a device and keeps its identifier to itself.
    if (dcid != DCID()) {
        result += QStringLiteral("DCID = () ");
    }
    return result + text;
}

bool LoggerImpl::isDebugOutputEnabled() const
{
    return isOutputEnabled(LoggerDataLogInterface::LOG_DEBUG);
}

bool LoggerImpl::isInfoOutputEnabled() const
{
    return isOutputEnabled(LoggerDataLogInterface::LOG_INFO);
}

bool LoggerImpl::isWarningOutputEnabled() const
{
    return isOutputEnabled(LoggerDataLogInterface::LOG_WARNING);
}

bool LoggerImpl::isErrorOutputEnabled() const
{
    return isOutputEnabled(LoggerDataLogInterface::LOG_ERROR);
}

bool LoggerImpl::isOutputEnabled(LoggerDataLogInterface::LOGLEVEL level) const
{
    // The level first: it answers most questions, and asking it needs no hold on the service.
    if (!LogServiceImpl::isLevelEnabled(level)) {
        return false;
    }
    const QSharedPointer<LogServiceImpl> service = m_service.toStrongRef();
    return service && service->isHandleEnabled(m_handle);
}

} // namespace PkLogger
