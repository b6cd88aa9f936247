#pragma once

#include <QThread>

#pragma GCC visibility push(default) // what a shared library shows

namespace PkLogger {

class LoggerDataAccessInterface;

/** The thread that takes messages off the log service's queue and writes them. */
class LoggerWriterThread : public QThread
{
    Q_OBJECT

public:
    /** @param source  asked for lines until it says that there are no more; outlives the thread. */
    explicit LoggerWriterThread(LoggerDataAccessInterface* source);

protected:
    void run() override;

private:
    LoggerDataAccessInterface* m_source;
};

} // namespace PkLogger

#pragma GCC visibility pop
