// The worker of coordworkspace-convert-archive: converts the documents of one job of a plan.
//
// usage: coordworkspace-archive-worker PLAN OFFSET COUNT

#include "FileConverters/CoordinationWorkspaceSection/ProcessSetup.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/files/ArchiveLock.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchivePlan.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/machines/ArchiveParcels.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/worker/DocumentBatch.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <iostream>
#include <optional>

namespace {

constexpr int DONE = 0;
constexpr int FAILED = 1;
constexpr int WRONG_USAGE = 64;

// For a reason, in errno, for which the run cannot go on.
int stopRun(const char* what)
{
    std::cout << ArchivePlan::PROBLEM.constData() << what
              << " cannot be written: " << std::strerror(errno) << std::endl;
    return FAILED;
}

int fail(const std::string& problem)
{
    std::cerr << "coordworkspace-archive-worker: " << problem << '\n';
    return FAILED;
}

} // namespace

int main(int argc, char** argv)
{
    ProcessSetup::keepClosedStreamsClosed();
    ProcessSetup::raiseStackLimit();
    ProcessSetup::reportWriteFailuresAsErrors();
    ProcessSetup::tuneAllocator();
    ProcessSetup::shutOutTheEnvironment();
    if (argc != 4) {
        std::cerr << "usage: coordworkspace-archive-worker PLAN OFFSET COUNT\n"
                     "coordworkspace-convert-archive is the program to run\n";
        return WRONG_USAGE;
    }
    ArchiveSettings settings;
    const PlannedJob job = {QByteArray(argv[2]).toLongLong(), QByteArray(argv[3]).toInt()};
    const QString plan(argv[1]);
    const std::vector<PlannedDocument> documents = ArchivePlan::read(plan, job, settings);
    if (documents.empty()) {
        return fail("the plan cannot be read");
    }
    const QString objection = ArchiveParcels::objection(settings);
    if (!objection.isEmpty()) {
        return fail(objection.toStdString());
    }
    if (settings.converter.isEmpty()) {
        settings.converter =
            ProcessSetup::fromThisProgram(PROGRAMS_PATH "/CoordWorkSpaceSectionConverter0_3");
        ArchiveParcels::sweepBeside(plan);
    }
    std::optional<ArchiveLock> lock;
    if (!settings.isTrial()) {
        lock.emplace(settings.jobsLock(), ArchiveLock::TOGETHER);
        if (lock->state() == ArchiveLock::FAILED) {
            return stopRun("the lock of jobs");
        }
        // The plan of a run that is over is gone, and another may be at work.
        if (lock->state() != ArchiveLock::HELD || !QFile::exists(plan)) {
            return fail("the run is over");
        }
    }
    const std::vector<DocumentRecord> records = convertBatch(settings, documents);
    if (records.empty()) {
        return stopRun("the report");
    }
    for (const DocumentRecord& record : records) {
        std::cout << record.toLine().constData();
    }
    std::cout.flush();
    return DONE;
}
