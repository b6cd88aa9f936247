#include "FileConverters/CoordinationWorkspaceSection/StopSignals.h"

#include <csignal>
#include <initializer_list>

namespace {

volatile std::sig_atomic_t stopping = 0;

void noteStop(int /*signal*/)
{
    stopping = 1;
}

} // namespace

void StopSignals::watch()
{
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        std::signal(signal, noteStop);
    }
}

bool StopSignals::isStopping()
{
    return stopping != 0;
}
