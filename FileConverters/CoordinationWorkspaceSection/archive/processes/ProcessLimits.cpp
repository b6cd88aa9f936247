#include "FileConverters/CoordinationWorkspaceSection/archive/processes/ProcessLimits.h"

#include <algorithm>
#include <csignal>

#include <sys/prctl.h>
#include <sys/resource.h>

namespace {

constexpr pid_t THIS_PROCESS = 0;
constexpr qint64 MILLISECONDS_PER_SECOND = 1000;

bool limit(pid_t process, __rlimit_resource what, qint64 most)
{
    rlimit set{};
    if (prlimit(process, what, nullptr, &set) != 0) {
        return false;
    }
    set.rlim_cur = std::min(static_cast<rlim_t>(most), set.rlim_max);
    return prlimit(process, what, &set, nullptr) == 0;
}

} // namespace

bool ProcessLimits::applyToThisProcess() const
{
    const rlimit noCoreFile{0, 0};
    if (prctl(PR_SET_PDEATHSIG, SIGKILL) != 0 || setrlimit(RLIMIT_CORE, &noCoreFile) != 0) {
        return false;
    }
    if (memoryBytes == 0) {
        return true;
    }
    return limit(THIS_PROCESS, RLIMIT_AS, memoryBytes);
}

bool ProcessLimits::applyTo(pid_t process) const
{
    const rlimit noCoreFile{0, 0};
    const qint64 seconds = milliseconds / MILLISECONDS_PER_SECOND + 1;
    return prlimit(process, RLIMIT_CORE, &noCoreFile, nullptr) == 0 &&
           (memoryBytes == 0 || limit(process, RLIMIT_AS, memoryBytes)) &&
           (milliseconds == 0 || limit(process, RLIMIT_CPU, seconds));
}

QDeadlineTimer ProcessLimits::deadline() const
{
    return milliseconds == 0 ? QDeadlineTimer(QDeadlineTimer::Forever)
                             : QDeadlineTimer(milliseconds);
}
