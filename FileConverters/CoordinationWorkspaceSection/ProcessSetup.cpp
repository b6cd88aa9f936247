#include "FileConverters/CoordinationWorkspaceSection/ProcessSetup.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QTextCodec>
#include <QtGlobal>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#ifdef Q_OS_UNIX
#include <csignal>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace {

void sayNothing(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& /*text*/)
{
}

} // namespace

void ProcessSetup::shutOutTheEnvironment()
{
    qInstallMessageHandler(sayNothing);
    // Messages that end the run.
    qunsetenv("QT_FATAL_WARNINGS");
    qunsetenv("QT_FATAL_CRITICALS");
    // Attributes come out in the order of their hashes.
    qunsetenv("QT_HASH_SEED");
    qSetGlobalQHashSeed(0);
    // Decodes file names and files, and decides which characters are printed as they are.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("UTF-8"));
}

#ifdef Q_OS_UNIX

void ProcessSetup::raiseStackLimit()
{
    rlimit limit{};
    if (getrlimit(RLIMIT_STACK, &limit) == 0) {
        limit.rlim_cur = limit.rlim_max;
        setrlimit(RLIMIT_STACK, &limit);
    }
}

void ProcessSetup::reportWriteFailuresAsErrors()
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

void ProcessSetup::keepClosedStreamsClosed()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) {
            // The lowest free number is given, which is the stream's, and only for what nobody asks
            // of it: reading of input and writing of output fail as they did.
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
        }
    }
}

bool ProcessSetup::isOutputTerminal()
{
    return isatty(STDOUT_FILENO) != 0;
}

bool ProcessSetup::isErrorTerminal()
{
    return isatty(STDERR_FILENO) != 0;
}

#else

void ProcessSetup::raiseStackLimit() {}

void ProcessSetup::reportWriteFailuresAsErrors() {}

void ProcessSetup::keepClosedStreamsClosed() {}

bool ProcessSetup::isOutputTerminal()
{
    return false;
}

bool ProcessSetup::isErrorTerminal()
{
    return false;
}

#endif

void ProcessSetup::tuneAllocator()
{
#ifdef __GLIBC__
    mallopt(M_MXFAST, 0);
#endif
}

QStringList ProcessSetup::argumentsOf(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 1; i < argc; ++i) {
        arguments.append(QString(argv[i]));
    }
    return arguments;
}

QString ProcessSetup::fromThisProgram(const char* path)
{
    return QDir::cleanPath(QFileInfo(QStringLiteral("/proc/self/exe")).canonicalPath() +
                           QLatin1Char('/') + QLatin1String(path));
}
