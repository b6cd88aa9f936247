#include "FileConverters/CoordinationWorkspaceSection/ConverterProcess.h"

#include <unistd.h>

namespace {

// The converter has none of these.
constexpr int LIMITS_REFUSED = 3;
constexpr int NOT_LOADED = 127;

} // namespace

// In the child, between fork and exec.
void ConverterProcess::setupChildProcess()
{
    if (!m_limits.applyToThisProcess()) {
        _exit(LIMITS_REFUSED);
    }
}

ConverterProcess::Outcome ConverterProcess::outcome()
{
    // The loader's, when the libraries do not fit into the memory.
    const bool isLoaded = exitCode() != NOT_LOADED;
    if (exitStatus() == QProcess::CrashExit || !isLoaded) {
        return BROKE_OFF;
    }
    if (exitCode() == 0) {
        return CONVERTED;
    }
    if (exitCode() == LIMITS_REFUSED) {
        return NOT_STARTED;
    }
    return readAllStandardError() == "\nFAILURE" ? REFUSED : UNREADABLE;
}

ConverterProcess::Outcome ConverterProcess::convert(const QString& converter,
                                                    const QString& document, const QString& output,
                                                    const ProcessLimits& limits)
{
    ConverterProcess process(limits);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(output);
    process.start(converter, {document}, QIODevice::ReadOnly);
    if (!process.waitForStarted(-1)) {
        return NOT_STARTED;
    }
    const int patience = limits.milliseconds == 0 ? -1 : static_cast<int>(limits.milliseconds);
    if (process.state() == QProcess::NotRunning || process.waitForFinished(patience)) {
        return process.outcome();
    }
    process.kill();
    process.waitForFinished(-1);
    return OUT_OF_TIME;
}
