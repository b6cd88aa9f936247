#include "FileConverters/CoordinationWorkspaceSection/ProcessSetup.h"
#include "FileConverters/CoordinationWorkspaceSection/Utf8Output.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveCommandLine.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveMessages.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchivePlaces.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveRun.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/files/Paths.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/processes/StopSignals.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <iostream>

namespace {

ArchiveStatus refuse(const QString& problem)
{
    ArchiveMessages::say(problem);
    std::cerr << "coordworkspace-convert-archive --help tells the usage\n";
    return ARCHIVE_USAGE;
}

ArchiveStatus convert(ArchiveCommandLine commandLine)
{
    const QString worker = ProcessSetup::fromThisProgram(HELPER_PATH);
    commandLine.settings.converter =
        ProcessSetup::fromThisProgram("CoordWorkSpaceSectionConverter0_3");
    for (const QString& program : {worker, commandLine.settings.converter}) {
        if (!QFileInfo(program).isExecutable()) {
            ArchiveMessages::say(QStringLiteral("a program is missing: %1").arg(program));
            return ARCHIVE_UNAVAILABLE;
        }
    }
    const QString objection = ArchivePlaces::objection(commandLine);
    return objection.isEmpty() ? ArchiveRun(commandLine, worker).run() : refuse(objection);
}

ArchiveStatus show(ArchiveCommandLine::Task task)
{
    if (task == ArchiveCommandLine::SHOW_HELP) {
        writeUtf8(ArchiveCommandLine::helpText(), std::cout);
    } else if (task == ArchiveCommandLine::SHOW_VERSION) {
        std::cout << "coordworkspace-convert-archive " ARCHIVE_VERSION "\n";
    } else {
        QFile schema(QStringLiteral(":/archive-report.schema.json"));
        schema.open(QIODevice::ReadOnly);
        std::cout << schema.readAll().constData();
    }
    return ARCHIVE_DONE;
}

} // namespace

int main(int argc, char** argv)
{
    ProcessSetup::keepClosedStreamsClosed();
    ProcessSetup::reportWriteFailuresAsErrors();
    ProcessSetup::shutOutTheEnvironment();
    StopSignals::watch();
    std::ios::sync_with_stdio(false);

    // As a text it would name another file.
    if (!std::all_of(argv + std::min(argc, 1), argv + argc, Paths::isUtf8)) {
        return refuse(QStringLiteral("an argument is not UTF-8"));
    }
    ArchiveCommandLine commandLine;
    const QString problem = commandLine.parse(ProcessSetup::argumentsOf(argc, argv));
    if (!problem.isEmpty()) {
        return refuse(problem);
    }
    const ArchiveStatus status = commandLine.task == ArchiveCommandLine::CONVERT
                                     ? convert(commandLine)
                                     : show(commandLine.task);
    std::cout.flush();
    return std::cout.good() ? status : std::max(status, ARCHIVE_NOT_WRITTEN);
}
