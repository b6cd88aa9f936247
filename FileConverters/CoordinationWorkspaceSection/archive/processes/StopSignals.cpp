#include "FileConverters/CoordinationWorkspaceSection/archive/processes/StopSignals.h"

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
        // Under nohup, or in the background of a script, a program is started to ignore some.
        if (std::signal(signal, noteStop) == SIG_IGN) {
            std::signal(signal, SIG_IGN);
        }
    }
}

bool StopSignals::isStopping()
{
    return stopping != 0;
}
