#include "FileConverters/CoordinationWorkspaceSection/ProcessLimits.h"

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
    const auto bytes = static_cast<rlim_t>(memoryBytes);
    const rlimit memory{bytes, bytes};
    return setrlimit(RLIMIT_AS, &memory) == 0;
}
