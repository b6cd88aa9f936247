#include "FileConverters/CoordinationWorkspaceSection/archive/worker/DocumentBatch.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/files/StableStorage.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/processes/BoundedServer.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/report/ArchiveReport.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/worker/DocumentJob.h"

#include <QSet>

#include <algorithm>
#include <atomic>
#include <list>
#include <system_error>
#include <thread>
#include <utility>

namespace {

using Jobs = std::list<DocumentJob>;

constexpr std::size_t MOST_SYNCED_TOGETHER = 8;

std::vector<DocumentRecord> recordsOf(const Jobs& jobs, bool onlyWithOutput)
{
    std::vector<DocumentRecord> records;
    for (const DocumentJob& job : jobs) {
        if (!onlyWithOutput || !job.outputFolder().isEmpty()) {
            records.push_back(job.record());
        }
    }
    return records;
}

// A file that is synced waits for the disk, for some milliseconds; files that are synced at the
// same time wait together: 256 of 10 kB took 0.14 ms each instead of 3.6.
void syncAll(Jobs& jobs)
{
    std::vector<DocumentJob*> written;
    for (DocumentJob& job : jobs) {
        if (!job.outputFolder().isEmpty()) {
            written.push_back(&job);
        }
    }
    std::atomic<std::size_t> next = 0;
    const auto syncSome = [&] {
        for (std::size_t i = next++; i < written.size(); i = next++) {
            written[i]->sync();
        }
    };
    std::vector<std::thread> others;
    try {
        while (others.size() + 1 < std::min(MOST_SYNCED_TOGETHER, written.size())) {
            others.emplace_back(syncSome);
        }
    } catch (const std::system_error&) {
        // The system makes no more; those that there are do it, too.
    }
    syncSome();
    for (std::thread& other : others) {
        other.join();
    }
}

void commitAll(Jobs& jobs, const QString& target)
{
    for (DocumentJob& job : jobs) {
        job.commit();
    }
    QSet<QString> synced;
    for (DocumentJob& job : jobs) {
        const QString folder = job.outputFolder();
        if (folder.isEmpty() || synced.contains(folder)) {
            continue;
        }
        // Those above it, too: another process may have made them, and not come to sync them.
        if (StableStorage::syncFolders(folder, target)) {
            synced.insert(folder);
        } else {
            job.failToSyncFolder();
        }
    }
}

// None, with errno set, when it could not be reported.
std::optional<std::vector<DocumentRecord>> finish(const ArchiveSettings& settings, Jobs& jobs)
{
    if (settings.isTrial()) {
        return recordsOf(jobs, false);
    }
    syncAll(jobs);
    const std::vector<DocumentRecord> pending = recordsOf(jobs, true);
    if (!pending.empty() && !ArchiveReport::append(settings.pendingReport(), pending)) {
        return std::nullopt;
    }
    commitAll(jobs, settings.target);
    std::vector<DocumentRecord> records = recordsOf(jobs, false);
    return records.empty() || ArchiveReport::append(settings.report, records)
               ? std::optional(std::move(records))
               : std::nullopt;
}

} // namespace

std::vector<DocumentRecord> convertBatch(const ArchiveSettings& settings,
                                         const std::vector<PlannedDocument>& documents)
{
    BoundedServer reader(DocumentJob::answerOfReader);
    Jobs jobs;
    for (const PlannedDocument& document : documents) {
        jobs.emplace_back(settings, document, reader);
        jobs.back().run();
    }
    return finish(settings, jobs).value_or(std::vector<DocumentRecord>());
}

std::optional<std::vector<DocumentRecord>>
acceptBatch(const ArchiveSettings& settings, const std::vector<ReturnedDocument>& documents)
{
    BoundedServer reader(DocumentJob::answerOfReader); // is asked nothing, and makes no process
    Jobs jobs;
    for (const ReturnedDocument& returned : documents) {
        jobs.emplace_back(settings, returned.document, reader);
        if (!jobs.back().accept(returned.told, returned.output)) {
            jobs.pop_back();
        }
    }
    return finish(settings, jobs);
}
