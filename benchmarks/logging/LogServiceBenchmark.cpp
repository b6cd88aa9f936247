// How fast the log service is, beside spdlog's asynchronous logger: one worker, a queue of 10 000,
// overflow blocks, a file, and a pattern with the same columns.
//
// usage: LogServiceBenchmark [RUNS]
//
// Prints a table with the median of the runs and their spread, lowest to highest.

#include "ZelMain/Diagnostics/LogServiceImpl.h"
#include "ZelMain/Diagnostics/LoggerImpl.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <spdlog/async.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;
using Nanoseconds = std::chrono::duration<double, std::nano>;

constexpr int LINES = 200000;      // of all producers together
constexpr int SINGLE_CALLS = 5000; // less than the queue holds, so that none is refused
constexpr int SWITCHED_OFF_CALLS = 5000000;

/** A logger set up with a file of its own; finish() returns when every line is in the file. */
class Contender
{
public:
    virtual ~Contender() = default;
    virtual void start(const std::string& file) = 0;
    virtual bool log(int producer, int number) = 0;
    virtual bool logSwitchedOff(int number) = 0;
    virtual void finish() = 0;
};

class ServiceContender : public Contender
{
public:
    void start(const std::string& file) override
    {
        m_service->initLogService({});
        m_service->registerOutputDevice(
            QSharedPointer<QFile>::create(QString::fromStdString(file)));
        m_service->enableInfoOutput(true);
        m_service->enableLogger(true);
        m_logger = m_service->getLoggerObject("BENCHMARK      ");
        m_service->enableUserOutput("BENCHMARK      ", true);
    }

    bool log(int producer, int number) override
    {
        return m_logger->logInfo("producer %d writes line number %d", producer, number);
    }

    bool logSwitchedOff(int number) override
    {
        return m_logger->logDebug("producer %d writes line number %d", 0, number);
    }

    void finish() override { m_service->closeLogger(); }

private:
    const QSharedPointer<PkLogger::LogServiceImpl> m_service =
        PkLogger::LogServiceImpl::getLogServicePointer();
    QSharedPointer<PkLogger::Logger> m_logger;
};

class SpdlogContender : public Contender
{
public:
    void start(const std::string& file) override
    {
        spdlog::init_thread_pool(10000, 1);
        m_logger =
            spdlog::create_async<spdlog::sinks::basic_file_sink_mt>("BENCHMARK      ", file, true);
        m_logger->set_pattern("%d %b %Y %H:%M:%S.%e %n %l %t  %v");
        m_logger->set_level(spdlog::level::info);
    }

    bool log(int producer, int number) override
    {
        m_logger->info("producer {} writes line number {}", producer, number);
        return true;
    }

    bool logSwitchedOff(int number) override
    {
        m_logger->debug("producer {} writes line number {}", 0, number);
        return true;
    }

    void finish() override
    {
        m_logger.reset();
        spdlog::shutdown(); // joins the worker, which empties the queue and closes the file
    }

private:
    std::shared_ptr<spdlog::logger> m_logger;
};

bool hasLines(const std::string& path, int count)
{
    QFile file(QString::fromStdString(path));
    return file.open(QIODevice::ReadOnly) && file.readAll().count('\n') == count;
}

/** From the first call to the last line in the file. */
double linesPerSecond(Contender& contender, const std::string& file, int producers)
{
    contender.start(file);
    const auto begin = Clock::now();
    std::vector<std::thread> threads;
    threads.reserve(static_cast<std::size_t>(producers));
    for (int producer = 0; producer < producers; ++producer) {
        threads.emplace_back([&contender, producer, producers] {
            for (int number = 0; number < LINES / producers; ++number) {
                while (!contender.log(producer, number)) {
                    std::this_thread::yield();
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    contender.finish();
    const Nanoseconds time = Clock::now() - begin;
    if (!hasLines(file, LINES)) {
        std::fprintf(stderr, "lines are missing in %s\n", file.c_str());
        std::exit(EXIT_FAILURE);
    }
    return LINES * 1e9 / time.count();
}

struct CallCost
{
    double medianNs;
    double percentile99Ns;
};

/** What one call costs the caller, without the two looks at the clock around it. */
CallCost acceptedCallCost(Contender& contender, const std::string& file)
{
    contender.start(file);
    contender.log(0, 0); // whatever the first call sets up
    std::vector<double> clockCosts;
    std::vector<double> costs;
    for (int number = 1; number < SINGLE_CALLS; ++number) {
        const auto before = Clock::now();
        const auto between = Clock::now();
        const bool isAccepted = contender.log(0, number);
        const auto after = Clock::now();
        clockCosts.push_back(Nanoseconds(between - before).count());
        if (isAccepted) {
            costs.push_back(Nanoseconds(after - between).count());
        }
    }
    contender.finish();
    std::sort(clockCosts.begin(), clockCosts.end());
    std::sort(costs.begin(), costs.end());
    const double clockCost = clockCosts[clockCosts.size() / 2];
    return {costs[costs.size() / 2] - clockCost, costs[costs.size() * 99 / 100] - clockCost};
}

double switchedOffCallCost(Contender& contender, const std::string& file)
{
    contender.start(file);
    const auto begin = Clock::now();
    for (int number = 0; number < SWITCHED_OFF_CALLS; ++number) {
        contender.logSwitchedOff(number);
    }
    const Nanoseconds time = Clock::now() - begin;
    contender.finish();
    return time.count() / SWITCHED_OFF_CALLS;
}

/** The figures of one measurement over the runs. */
struct Row
{
    const char* name;
    std::vector<double> service;
    std::vector<double> spdlog;
};

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void print(const Row& row)
{
    const auto figures = [](const std::vector<double>& values) {
        const auto [least, most] = std::minmax_element(values.begin(), values.end());
        std::printf(" %11.0f (%9.0f .. %9.0f)", median(values), *least, *most);
    };
    std::printf("%-34s", row.name);
    figures(row.service);
    figures(row.spdlog);
    std::printf("  %5.2f\n", median(row.service) / median(row.spdlog));
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
    const QTemporaryDir folder;
    const std::string file = folder.filePath("log.txt").toStdString();
    ServiceContender service;
    SpdlogContender spdlog;

    Row one{"lines/s, 1 producer", {}, {}};
    Row four{"lines/s, 4 producers", {}, {}};
    Row typical{"ns for an accepted call, median", {}, {}};
    Row slow{"ns for an accepted call, 99 %", {}, {}};
    Row off{"ns for a switched-off call", {}, {}};
    const auto measure = [&](Contender& contender, std::vector<double> Row::*figures) {
        (one.*figures).push_back(linesPerSecond(contender, file, 1));
        (four.*figures).push_back(linesPerSecond(contender, file, 4));
        const CallCost cost = acceptedCallCost(contender, file);
        (typical.*figures).push_back(cost.medianNs);
        (slow.*figures).push_back(cost.percentile99Ns);
        (off.*figures).push_back(switchedOffCallCost(contender, file));
    };
    for (int run = 0; run < runs; ++run) {
        measure(service, &Row::service);
        measure(spdlog, &Row::spdlog);
    }

    std::printf("%d runs%17s%36s%36s  ratio\n", runs, "", "log service", "spdlog");
    for (const Row& row : {one, four, typical, slow, off}) {
        print(row);
    }
    return EXIT_SUCCESS;
}
