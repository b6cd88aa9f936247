#include "FileConverters/CoordinationWorkspaceSection/ProcessLimits.h"

#include <algorithm>
#include <csignal>

#include <sys/prctl.h>
#include <sys/resource.h>

bool ProcessLimits::applyToThisProcess() const
{
    const rlimit noCoreFile{0, 0};
    if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || setrlimit(RLIMIT_CORE, &noCoreFile) != 0) {
        return false;
    }
    if (memoryBytes == 0) {
        return true;
    }
    rlimit memory{};
    if (getrlimit(RLIMIT_AS, &memory) != 0) {
        return false;
    }
    memory.rlim_cur = std::min(static_cast<rlim_t>(memoryBytes), memory.rlim_max);
    return setrlimit(RLIMIT_AS, &memory) == 0;
}

QDeadlineTimer ProcessLimits::deadline() const
{
    return milliseconds == 0 ? QDeadlineTimer(QDeadlineTimer::Forever)
                             : QDeadlineTimer(milliseconds);
}
