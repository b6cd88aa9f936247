#pragma once

#include "ZelMain/Diagnostics/LogServiceInterface.h"
#include "ZelMain/Diagnostics/LoggerDataAccessInterface.h"

#include <QWeakPointer>

#include <cstdarg>

#pragma GCC visibility push(default) // what a shared library shows

namespace PkLogger {

class LogServiceImpl;

/**
 * The logger of one user, made by LogServiceImpl::getLoggerObject().
 *
 * It knows its user by number and the service by a weak pointer, so it may be kept longer than
 * either. After a close and a new start a kept logger speaks for whoever has its number then.
 */
class LoggerImpl : public Logger
{
public:
    /** @param handle  the user's number in the service's table. */
    LoggerImpl(QWeakPointer<LogServiceImpl> service, int handle);
    ~LoggerImpl() override;

    LoggerImpl(const LoggerImpl&) = delete;
    LoggerImpl& operator=(const LoggerImpl&) = delete;

    bool logDebug(const char* format, ...) override Q_ATTRIBUTE_FORMAT_PRINTF(2, 3);
    bool logInfo(const char* format, ...) override Q_ATTRIBUTE_FORMAT_PRINTF(2, 3);
    bool logWarning(const char* format, ...) override Q_ATTRIBUTE_FORMAT_PRINTF(2, 3);
    bool logError(const char* format, ...) override Q_ATTRIBUTE_FORMAT_PRINTF(2, 3);

    bool logDebug(const QString& text, const CID& cid, const DCID& dcid) override;
    bool logInfo(const QString& text, const CID& cid, const DCID& dcid) override;
    bool logWarning(const QString& text, const CID& cid, const DCID& dcid) override;
    bool logError(const QString& text, const CID& cid, const DCID& dcid) override;

    bool isDebugOutputEnabled() const override;
    bool isInfoOutputEnabled() const override;
    bool isWarningOutputEnabled() const override;
    bool isErrorOutputEnabled() const override;

    /**
     * Queues the printf-form message without asking whether its level is on.
     *
     * @return false when the service is gone or refuses the message.
     */
    bool logStr(LoggerDataLogInterface::LOGLEVEL level, const char* format, va_list arguments)
        Q_ATTRIBUTE_FORMAT_PRINTF(3, 0);

    /**
     * Puts the identifiers that are not the default ones in front of @p text: "CID = " with the
     * first four bytes in hexadecimal, and "DCID = ()", which shows only that there is one.
     */
    static QString appendIDsToLogString(const QString& text, const CID& cid, const DCID& dcid);

private:
    bool logWithIds(LoggerDataLogInterface::LOGLEVEL level, const QString& text, const CID& cid,
                    const DCID& dcid);
    bool isOutputEnabled(LoggerDataLogInterface::LOGLEVEL level) const;

    QWeakPointer<LogServiceImpl> m_service;
    int m_handle;
};

} // namespace PkLogger

#pragma GCC visibility pop
