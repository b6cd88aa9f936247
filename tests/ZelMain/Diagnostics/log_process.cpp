// What a process does to the log service at its edges, one way a run.
//
// usage: log_process WAY FILE
//
// Logs numbered lines to FILE, then ends, forks or crashes as WAY says; LogServiceProcessTest looks
// at the outcome. What a log call answered where no line tells it is printed.

#include "ZelMain/Diagnostics/LogServiceImpl.h"
#include "ZelMain/Diagnostics/LoggerImpl.h"

#include <QCoreApplication>
#include <QFile>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <thread>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int LINES = 1000;
constexpr int CHILDREN = 20;

const char* file = nullptr;

QSharedPointer<PkLogger::LogServiceImpl> service()
{
    return PkLogger::LogServiceImpl::getLogServicePointer();
}

QSharedPointer<PkLogger::Logger> start(const QString& path)
{
    service()->initLogService({});
    service()->registerOutputDevice(QSharedPointer<QFile>::create(path));
    service()->enableErrorOutput(true);
    service()->enableLogger(true);
    const auto logger = service()->getLoggerObject("PROCESS");
    service()->enableUserOutput("PROCESS", true);
    return logger;
}

void log(PkLogger::Logger& logger, int from, int to)
{
    for (int number = from; number < to; ++number) {
        while (!logger.logError("line %d", number)) {
            std::this_thread::yield();
        }
    }
}

int writtenLines()
{
    QFile written(file);
    return written.open(QIODevice::ReadOnly) ? written.readAll().count('\n') : 0;
}

/** Logs when it is destroyed and tells whether that was accepted. */
class LastWords
{
public:
    ~LastWords()
    {
        const bool isAccepted = m_logger && m_logger->logError("%s", "last words");
        std::printf("%s\n", isAccepted ? "accepted" : "refused");
        // Asked this late, the service is still there.
        PkLogger::LogService::GetLogService()->isUserExists("PROCESS");
    }
    void speakThrough(const QSharedPointer<PkLogger::Logger>& logger) { m_logger = logger; }

private:
    QSharedPointer<PkLogger::Logger> m_logger;
};

LastWords& madeBeforeTheService()
{
    static LastWords words;
    return words;
}

LastWords& madeAfterTheService()
{
    static LastWords words;
    return words;
}

QSharedPointer<PkLogger::Logger> atExitLogger;

void logAtExit()
{
    std::printf("%s\n", atExitLogger->logError("%s", "last words") ? "accepted" : "refused");
}

int endWithoutClosing()
{
    log(*start(file), 0, LINES);
    return EXIT_SUCCESS;
}

/** The cleanup has hardly begun by then. */
int endAtOnce()
{
    start(file)->logError("line %d", 0);
    return EXIT_SUCCESS;
}

int endWithAnEarlierStatic()
{
    madeBeforeTheService();
    const auto logger = start(file);
    madeBeforeTheService().speakThrough(logger);
    log(*logger, 0, LINES);
    return EXIT_SUCCESS;
}

int endWithALaterStatic()
{
    const auto logger = start(file);
    madeAfterTheService().speakThrough(logger);
    log(*logger, 0, LINES);
    return EXIT_SUCCESS;
}

int endWithAnEarlierHandler()
{
    std::atexit(logAtExit);
    atExitLogger = start(file);
    log(*atExitLogger, 0, LINES);
    return EXIT_SUCCESS;
}

int endWithALaterHandler()
{
    atExitLogger = start(file);
    std::atexit(logAtExit);
    log(*atExitLogger, 0, LINES);
    return EXIT_SUCCESS;
}

int endWithARunningThread()
{
    const auto logger = start(file);
    log(*logger, 0, LINES);
    std::atomic<bool> isLogging{false};
    std::thread([logger, &isLogging] {
        for (int number = LINES;; ++number) {
            logger->logError("line %d", number);
            isLogging = true;
        }
    }).detach();
    while (!isLogging) {
        std::this_thread::yield();
    }
    std::exit(EXIT_SUCCESS); // and leave the thread running
}

int startFromAnExitHandler()
{
    std::atexit([] { log(*start(file), 0, LINES); });
    return EXIT_SUCCESS;
}

/** What a forked process may do with the service before it ends; true when all went right. */
bool useServiceInChild(PkLogger::Logger& logger, int child)
{
    if (logger.logError("%s", "from a child") || service()->isUserExists("PROCESS")) {
        return false;
    }
    service()->closeLogger();
    service()->enableLogger(false);
    if (child % 2 == 0) {
        const auto own = start(QString::fromLocal8Bit(file) + ".child" + QString::number(child));
        log(*own, 0, LINES);
        if (child % 4 == 0) {
            service()->closeLogger();
        }
    }
    return true;
}

/** Logs numbered lines beside the caller, up to a limit that is raised while it runs. */
class Load
{
public:
    explicit Load(PkLogger::Logger& logger)
        : m_thread([this, &logger] {
              while (!m_isOver) {
                  if (m_number < m_limit && logger.logError("line %d", m_number.load())) {
                      ++m_number;
                  }
              }
          })
    {
    }
    Load(const Load&) = delete;
    Load& operator=(const Load&) = delete;

    /** Comes back when the next lines are under way and the last of them is far. */
    void continueBelow(int lines)
    {
        const int before = m_number;
        m_limit = before + lines;
        while (m_number < before + lines / 20) {
            std::this_thread::yield();
        }
    }

    /** Comes back when as many lines more as it says stand in the file. */
    void continueUntilWritten(int lines)
    {
        m_limit = m_number + lines;
        while (writtenLines() < m_limit) {
            std::this_thread::yield();
        }
    }

    /** @return how many lines it has logged. */
    int end()
    {
        m_isOver = true;
        m_thread.join();
        return m_number;
    }

private:
    std::atomic<int> m_number{0};
    std::atomic<int> m_limit{0};
    std::atomic<bool> m_isOver{false};
    std::thread m_thread; // begins when the rest stands
};

/** Forks, and ends the child when it has used the service. */
bool childSucceeds(PkLogger::Logger& logger, int child)
{
    const pid_t process = fork();
    if (process == 0) {
        std::exit(useServiceInChild(logger, child) ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    int status = -1;
    waitpid(process, &status, 0);
    return status == 0;
}

int forkOften(void (*nextLines)(Load&))
{
    const auto logger = start(file);
    Load load(*logger);
    int failures = 0;
    for (int child = 0; child < CHILDREN; ++child) {
        nextLines(load);
        failures += childSucceeds(*logger, child) ? 0 : 1;
    }
    const int lines = load.end();
    service()->closeLogger();
    std::printf("%d lines, %d failures\n", lines, failures);
    return EXIT_SUCCESS;
}

int forkUnderLoad()
{
    return forkOften([](Load& load) { load.continueBelow(2 * LINES); });
}

int forkWhenIdle()
{
    return forkOften([](Load& load) { load.continueUntilWritten(LINES / 10); });
}

void withoutCoreFile()
{
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
}

int crashWhenIdle()
{
    withoutCoreFile();
    log(*start(file), 0, 10);
    while (writtenLines() < 10) { // the idle writer flushes
        std::this_thread::yield();
    }
    std::abort();
}

int crashUnderLoad()
{
    withoutCoreFile();
    const auto logger = start(file);
    std::thread([logger] { log(*logger, 0, LINES * 1000); }).detach();
    struct stat now = {};
    while (stat(file, &now) != 0 || now.st_size < 100000) {
        std::this_thread::yield();
    }
    std::abort();
}

/** How often the threads of this process have given up or lost their processor so far. */
long contextSwitches()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_nvcsw + usage.ru_nivcsw;
}

int idle()
{
    log(*start(file), 0, 1);
    long before = -1;
    // The cleanup ends and the writer falls asleep when they get a processor; from then on the one
    // switch of a round is this thread's own.
    for (int round = 0; round < 100; ++round) {
        before = contextSwitches();
        usleep(50000);
        const long switches = contextSwitches() - before;
        if (switches <= 1) {
            std::printf("%ld\n", switches);
            return EXIT_SUCCESS;
        }
    }
    std::printf("never idle\n");
    return EXIT_FAILURE;
}

const std::map<std::string, int (*)()> WAYS = {
    {"end-without-closing", endWithoutClosing},
    {"end-at-once", endAtOnce},
    {"end-with-an-earlier-static", endWithAnEarlierStatic},
    {"end-with-a-later-static", endWithALaterStatic},
    {"end-with-an-earlier-handler", endWithAnEarlierHandler},
    {"end-with-a-later-handler", endWithALaterHandler},
    {"end-with-a-running-thread", endWithARunningThread},
    {"start-from-an-exit-handler", startFromAnExitHandler},
    {"fork-under-load", forkUnderLoad},
    {"fork-when-idle", forkWhenIdle},
    {"crash-when-idle", crashWhenIdle},
    {"crash-under-load", crashUnderLoad},
    {"idle", idle},
};

} // namespace

int main(int argc, char** argv)
{
    const auto way = argc == 3 ? WAYS.find(argv[1]) : WAYS.end();
    if (way == WAYS.end()) {
        std::fprintf(stderr, "usage: log_process WAY FILE\n");
        return 2;
    }
    file = argv[2];
    const QCoreApplication application(argc, argv);
    return way->second();
}
