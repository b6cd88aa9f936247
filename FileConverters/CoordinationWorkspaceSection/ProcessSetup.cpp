#include "FileConverters/CoordinationWorkspaceSection/ProcessSetup.h"

#include <QtGlobal>

#ifdef __GLIBC__
#include <malloc.h>
#endif

#ifdef Q_OS_UNIX
#include <csignal>

#include <sys/resource.h>

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

#else

void ProcessSetup::raiseStackLimit() {}

void ProcessSetup::reportWriteFailuresAsErrors() {}

#endif

void ProcessSetup::tuneAllocator()
{
#ifdef __GLIBC__
    mallopt(M_MXFAST, 0);
#endif
}
