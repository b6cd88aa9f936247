#include "FileConverters/CoordinationWorkspaceSection/archive/processes/BoundedServer.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/processes/ProcessLimits.h"
#include "tests/support/Sanitizer.h"

#include <QDir>
#include <QtTest>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <system_error>
#include <vector>

#include <dlfcn.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr qint64 PLENTY = 2000000000;
constexpr int MEGABYTE = 1000000;

bool hasProcessesLeft = true;

int openDescriptors()
{
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries).size();
}

QByteArray work(const QByteArray& request)
{
    if (request == "process") {
        return QByteArray::number(getpid());
    }
    if (request == "descriptors") {
        return QByteArray::number(openDescriptors());
    }
    if (request == "throw") {
        throw std::runtime_error("as asked");
    }
    if (request == "abort") {
        std::abort();
    }
    if (request == "end") {
        _exit(0);
    }
    if (request == "sleep") {
        pause();
    }
    if (request.startsWith("take ")) {
        return QByteArray(request.mid(5).toInt() * MEGABYTE, 'x').right(1);
    }
    return "answer to " + request;
}

// The numbers that the system gives next.
std::vector<int> freeDescriptors(int count)
{
    std::vector<int> numbers;
    while (static_cast<int>(numbers.size()) < count) {
        numbers.push_back(dup(STDERR_FILENO));
    }
    for (const int number : numbers) {
        close(number);
    }
    return numbers;
}

bool throwsSystemError(BoundedServer& server)
{
    try {
        server.ask("b", {});
    } catch (const std::system_error&) {
        return true;
    }
    return false;
}

} // namespace

/** Stands in for the C library's in the whole program. */
extern "C" __attribute__((visibility("default"))) pid_t fork()
{
    if (!hasProcessesLeft) {
        errno = EAGAIN;
        return -1;
    }
    return reinterpret_cast<pid_t (*)()>(dlsym(RTLD_NEXT, "fork"))();
}

class BoundedServerTest : public QObject
{
    Q_OBJECT

private slots:
    void processHoldsItsEndsOfThePipesOnly();
    void initTestCase();
    void oneProcessAnswersEachRequest();
    void anyBytesMayBeAskedAndAnswered();
    void whatBreaksOffCostsOnlyItself_data();
    void whatBreaksOffCostsOnlyItself();
    void eachRequestHasALimitOnMemoryOfItsOwn();
    void itMayBeEndedAtAnyTime();
    void withoutDescriptorsItCannotBegin_data();
    void withoutDescriptorsItCannotBegin();
    void withoutAProcessItCannotBegin();
};

// With the other ends it would not notice that nobody can ask it any more.
void BoundedServerTest::processHoldsItsEndsOfThePipesOnly()
{
    const int before = openDescriptors();
    BoundedServer server(work);
    QCOMPARE(server.ask("descriptors", {})->toInt(), before + 2);
}

void BoundedServerTest::initTestCase()
{
    std::signal(SIGPIPE, SIG_IGN);
}

void BoundedServerTest::oneProcessAnswersEachRequest()
{
    BoundedServer server(work);
    const auto process = server.ask("process", {});
    QVERIFY(process && *process != QByteArray::number(getpid()));
    QCOMPARE(*server.ask("b", {}), QByteArray("answer to b"));
    QCOMPARE(server.ask("process", {}), process);
}

void BoundedServerTest::anyBytesMayBeAskedAndAnswered()
{
    BoundedServer server([](const QByteArray& request) { return request + request; });
    for (const QByteArray& request :
         {QByteArray(), QByteArray("\0\n\xff", 3), QByteArray(40000, '\0')}) {
        QCOMPARE(*server.ask(request, {}), request + request);
    }
}

void BoundedServerTest::whatBreaksOffCostsOnlyItself_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::newRow("an exception") << QByteArray("throw");
    QTest::newRow("a crash") << QByteArray("abort");
    QTest::newRow("an end without an answer") << QByteArray("end");
    QTest::newRow("no end") << QByteArray("sleep");
    if (!IS_SANITIZED) {
        QTest::newRow("too much memory") << QByteArray("take 1500");
    }
}

void BoundedServerTest::whatBreaksOffCostsOnlyItself()
{
    QFETCH(QByteArray, request);
    BoundedServer server(work);
    const auto process = server.ask("process", {});
    ProcessLimits limits;
    limits.milliseconds = request == "sleep" ? 100 : 60000;
    limits.memoryBytes = IS_SANITIZED ? 0 : MEGABYTE * qint64(1000);
    QCOMPARE(server.ask(request, limits), std::optional<QByteArray>());
    QCOMPARE(*server.ask("b", {}), QByteArray("answer to b"));
    QVERIFY(server.ask("process", {}) != process);
}

void BoundedServerTest::eachRequestHasALimitOnMemoryOfItsOwn()
{
    if (IS_SANITIZED) {
        QSKIP("a sanitizer runs within no limit on memory");
    }
    BoundedServer server(work);
    const auto process = server.ask("process", {PLENTY, 0});
    QCOMPARE(*server.ask("take 100", {500000000, 0}), QByteArray("x"));
    QCOMPARE(*server.ask("take 1000", {PLENTY, 0}), QByteArray("x"));
    QCOMPARE(server.ask("process", {PLENTY, 0}), process);
    QVERIFY(!server.ask("take 1000", {500000000, 0}));
}

void BoundedServerTest::itMayBeEndedAtAnyTime()
{
    BoundedServer server(work);
    server.end();
    const QByteArray process = *server.ask("process", {});
    server.end();
    QCOMPARE(kill(process.toInt(), 0), -1);
    QCOMPARE(*server.ask("b", {}), QByteArray("answer to b"));
}

void BoundedServerTest::withoutDescriptorsItCannotBegin_data()
{
    QTest::addColumn<int>("left");
    QTest::newRow("none for the first pipe") << 0;
    QTest::newRow("one for the first pipe") << 1;
    QTest::newRow("none for the second pipe") << 2;
    QTest::newRow("one for the second pipe") << 3;
}

void BoundedServerTest::withoutDescriptorsItCannotBegin()
{
    if (IS_SANITIZED) {
        QSKIP("a sanitizer looks at memory through descriptors");
    }
    QFETCH(int, left);
    const auto beyond = static_cast<rlim_t>(freeDescriptors(left + 1).back());
    const int open = openDescriptors();
    rlimit before{};
    getrlimit(RLIMIT_NOFILE, &before);
    const rlimit few{beyond, before.rlim_max};
    BoundedServer server(work);

    setrlimit(RLIMIT_NOFILE, &few);
    const bool hasThrown = throwsSystemError(server);
    setrlimit(RLIMIT_NOFILE, &before);

    QVERIFY(hasThrown);
    QCOMPARE(openDescriptors(), open);
    QCOMPARE(*server.ask("b", {}), QByteArray("answer to b"));
}

void BoundedServerTest::withoutAProcessItCannotBegin()
{
    const int open = openDescriptors();
    BoundedServer server(work);

    hasProcessesLeft = false;
    const bool hasThrown = throwsSystemError(server);
    hasProcessesLeft = true;

    QVERIFY(hasThrown);
    QCOMPARE(openDescriptors(), open);
    QCOMPARE(*server.ask("b", {}), QByteArray("answer to b"));
}

QTEST_GUILESS_MAIN(BoundedServerTest)

#include "BoundedServerTest.moc"
