#pragma once

#pragma GCC visibility push(default) // what a shared library shows

class QString;

namespace PkLogger {

/** The side of the log service that its writer thread sees. */
class LoggerDataAccessInterface
{
public:
    /**
     * Waits for a queued message and writes its line.
     *
     * @return false when the service is closing and nothing is left to write.
     */
    virtual bool writeData() = 0;

    virtual ~LoggerDataAccessInterface();
};

/** The side of the log service that its loggers see. */
class LoggerDataLogInterface
{
public:
    /** Numbers of the level words and of the bits of the level mask. */
    enum LOGLEVEL { LOG_DEBUG = 0, LOG_INFO = 1, LOG_WARNING = 2, LOG_ERROR = 3 };

    /**
     * Queues a message of the user with the number @p handle, from any thread.
     *
     * @return false when it was refused: the queue is full, the number is not the service's or
     *         its user is disabled, or the user has no private device and logger or level are off.
     */
    virtual bool logString(int handle, LOGLEVEL level, const QString& text) = 0;

    /** The same for a UTF-8 text; null counts as an empty message. */
    virtual bool logString(int handle, LOGLEVEL level, const char* text) = 0;

    virtual ~LoggerDataLogInterface();
};

} // namespace PkLogger

#pragma GCC visibility pop
