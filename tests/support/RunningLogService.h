#pragma once

#include "ZelMain/Diagnostics/LogServiceImpl.h"

#include <QBuffer>
#include <QSharedPointer>
#include <QStringList>

/**
 * A log service that runs as long as this object lives: logger and all levels on, one common device
 * in memory, no user switched on.
 */
class RunningLogService
{
public:
    RunningLogService()
    {
        m_service->initLogService({});
        m_service->registerOutputDevice(m_device);
        m_service->enableConsoleLog(false);
        m_service->enableLogger(true);
        m_service->enableDebugOutput(true);
        m_service->enableInfoOutput(true);
        m_service->enableWarningOutput(true);
        m_service->enableErrorOutput(true);
    }
    ~RunningLogService() { m_service->closeLogger(); }
    Q_DISABLE_COPY_MOVE(RunningLogService)

    PkLogger::LogServiceImpl* operator->() const { return m_service.data(); }

    void addUser(const QString& name)
    {
        m_service->getLoggerObject(name);
        m_service->enableUserOutput(name, true);
    }

    /** Closes the service, which writes what waits, and gives the lines of the common device. */
    QStringList closeAndTakeLines()
    {
        m_service->closeLogger();
        return linesOf(*m_device);
    }

    /** The lines of a device that nobody writes to any more. */
    static QStringList linesOf(const QBuffer& device)
    {
        QStringList lines = QString::fromLatin1(device.data()).split('\n');
        lines.removeLast(); // what follows the last line feed
        return lines;
    }

private:
    const QSharedPointer<PkLogger::LogServiceImpl> m_service =
        PkLogger::LogServiceImpl::getLogServicePointer();
    const QSharedPointer<QBuffer> m_device = QSharedPointer<QBuffer>::create();
};
