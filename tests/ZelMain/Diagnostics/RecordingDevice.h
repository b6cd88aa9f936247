#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QList>
#include <QStringList>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

#include <pthread.h>

/**
 * A device that keeps what is written to it, one call an element, and counts how it is treated.
 *
 * It blocks and fails on demand, and notices when two threads are inside it at the same time.
 */
class RecordingDevice : public QIODevice
{
public:
    explicit RecordingDevice(QString name = QString()) : m_name(std::move(name)) {}

    /** Where devices note "open NAME" and "close NAME", in the order in which it happens. */
    static QStringList& journal()
    {
        static QStringList steps;
        return steps;
    }

    bool open(OpenMode mode) override
    {
        const Presence presence(*this);
        blockWhile(m_openBlocks);
        ++m_openCount;
        m_openMode = mode;
        journal() << "open " + m_name;
        return QIODevice::open(mode | Unbuffered);
    }

    void close() override
    {
        const Presence presence(*this);
        ++m_closeCount;
        journal() << "close " + m_name;
        QIODevice::close();
    }

    bool isSequential() const override { return true; }

    int openCount() const { return m_openCount; }
    int closeCount() const { return m_closeCount; }
    OpenMode lastOpenMode() const { return m_openMode; }
    bool wasSharedByThreads() const { return m_wasShared; }

    void blockWrites() { set(m_writesBlock, true); }
    void unblockWrites() { set(m_writesBlock, false); }
    void blockOpen() { set(m_openBlocks, true); }
    void unblockOpen() { set(m_openBlocks, false); }
    void failWrites(bool fail) { m_writesFail = fail; }

    /** Waits until a thread is held up in the device. */
    bool waitUntilBlocked()
    {
        return waitFor([this] { return m_blockedThreads > 0; });
    }

    bool waitForLines(int count)
    {
        return waitFor([this, count] { return m_lines.size() >= count; });
    }

    QList<QByteArray> lines() const
    {
        const std::lock_guard guard(m_mutex);
        return m_lines;
    }

    QByteArray text() const { return lines().join(); }

protected:
    qint64 readData(char* /*data*/, qint64 /*maxSize*/) override { return -1; }

    qint64 writeData(const char* data, qint64 size) override
    {
        const Presence presence(*this);
        blockWhile(m_writesBlock);
        if (m_writesFail) {
            return -1;
        }
        const std::lock_guard guard(m_mutex);
        m_lines << QByteArray(data, static_cast<int>(size));
        m_changed.notify_all();
        return size;
    }

private:
    /** Two threads in the device at once are told apart from one that comes in again. */
    class Presence
    {
    public:
        explicit Presence(RecordingDevice& device) : m_device(device)
        {
            if (m_device.m_inside.fetch_add(1) > 0) {
                m_device.m_wasShared = true;
            }
        }
        ~Presence() { m_device.m_inside.fetch_sub(1); }
        Presence(const Presence&) = delete;
        Presence& operator=(const Presence&) = delete;

    private:
        RecordingDevice& m_device;
    };

    void set(bool& flag, bool value)
    {
        const std::lock_guard guard(m_mutex);
        flag = value;
        m_changed.notify_all();
    }

    void blockWhile(const bool& flag)
    {
        std::unique_lock lock(m_mutex);
        if (!flag) {
            return;
        }
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr); // it comes back, whatever happens
        ++m_blockedThreads;
        m_changed.notify_all();
        m_changed.wait(lock, [&flag] { return !flag; });
        --m_blockedThreads;
    }

    template <typename Condition>
    bool waitFor(Condition condition)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::minutes(1), condition);
    }

    const QString m_name;
    std::atomic<int> m_openCount{0};
    std::atomic<int> m_closeCount{0};
    std::atomic<int> m_inside{0};
    std::atomic<bool> m_wasShared{false};
    std::atomic<bool> m_writesFail{false};
    OpenMode m_openMode;

    mutable std::mutex m_mutex; // guards what follows
    std::condition_variable m_changed;
    QList<QByteArray> m_lines;
    bool m_writesBlock = false;
    bool m_openBlocks = false;
    int m_blockedThreads = 0;
};
