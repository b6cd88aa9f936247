#pragma once

#include "ZelMain/Diagnostics/DeviceGate.h"
#include "ZelMain/Diagnostics/LogLine.h"
#include "ZelMain/Diagnostics/LogQueue.h"
#include "ZelMain/Diagnostics/UserEntry.h"

#include <QIODevice>
#include <QSharedPointer>

#include <vector>

namespace PkLogger {

/**
 * What lives from one start of the service to its close: queue, users and devices.
 *
 * A writer that has to be given up keeps its session, and whatever it still does there harms
 * nobody: the next start has a session of its own.
 */
class LogSession
{
public:
    static constexpr std::size_t MAX_USERS = 64;
    static constexpr std::size_t MAX_COMMON_DEVICES = 5;

    LogSession();

    /**
     * For the writer: waits for a message and writes its line.
     *
     * @return false when the session is over.
     */
    bool writeNext(const std::atomic<int>& options);

    // For calls that have entered the gate.

    void openCommonDevices();
    void closeCommonDevices();
    void open(QIODevice* device);
    void close(QIODevice* device);

    /** Closes all devices but @p busy, which may be null. */
    void closeAllDevices(const QIODevice* busy);

    LogQueue queue;
    DeviceGate gate;
    // Both have their room from the start, so nothing in them moves: the writer reads the users
    // while they grow, and a device that it writes to may register another.
    std::vector<UserEntry> users;                   // grows under the service lock
    std::vector<QSharedPointer<QIODevice>> devices; // grows in the gate

private:
    bool waitForEntry();
    bool write(const LogLine::Text& text, QIODevice* ownDevice);
    bool writeTo(QIODevice* device, const LogLine::Text& text);
    bool flushDevices();

    // The writer's own.
    LogLine m_line;
    bool m_isWriting = false;
    std::vector<QIODevice*> m_unflushed; // devices with lines that may stand in their buffers
};

} // namespace PkLogger
