#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchiveSchedule.h"

#include <QFile>

#include <algorithm>
#include <functional>
#include <map>

namespace {

// A job of small documents takes as long as some of the larger ones, so that what Parallel needs to
// start a job does not count, and a killed run loses little.
constexpr int MOST_DOCUMENTS_A_JOB = 256;
constexpr qint64 MOST_BYTES_A_JOB = 4000000;
constexpr int TURNS = 4; // at least, so that no core waits long for the last job
constexpr qint64 BYTES_PER_KILOBYTE = 1024;
// Logging in five times, which a parcel takes, is worth more documents than starting a process. A
// machine's memory is not known here: for each of its jobs it needs that of one such document.
constexpr int MOST_DOCUMENTS_A_PARCEL = 1024;
constexpr int FEWEST_DOCUMENTS_A_PARCEL = 16;
constexpr qint64 MOST_BYTES_A_PARCEL = 8000000;
constexpr int USUAL_CORES = 8;

/** The documents by how many of them may be converted at the same time, most first. */
using Classes = std::map<int, std::vector<PlannedDocument>, std::greater<>>;

Classes byMemory(const std::vector<PlannedDocument>& documents, int mostAtATime,
                 qint64 availableMemory)
{
    // What a document takes at the most. Without a limit it is still what a sound one takes.
    const ArchiveSettings usual;
    Classes classes;
    for (const PlannedDocument& document : documents) {
        const qint64 memory = usual.limitsFor(document.size).memoryBytes;
        classes[static_cast<int>(std::clamp<qint64>(availableMemory / memory, 1, mostAtATime))]
            .push_back(document);
    }
    return classes;
}

std::vector<ArchiveSchedule::Job> jobsOf(const std::vector<PlannedDocument>& documents,
                                         int mostDocuments, qint64 mostBytes)
{
    std::vector<ArchiveSchedule::Job> jobs;
    qint64 bytes = 0;
    for (const PlannedDocument& document : documents) {
        const bool fits = !jobs.empty() && bytes + document.size <= mostBytes &&
                          static_cast<int>(jobs.back().size()) < mostDocuments;
        if (!fits) {
            jobs.emplace_back();
            bytes = 0;
        }
        jobs.back().push_back(document);
        bytes += document.size;
    }
    return jobs;
}

} // namespace

std::vector<ArchiveSchedule::Round>
ArchiveSchedule::roundsOf(const std::vector<PlannedDocument>& documents, int mostAtATime,
                          qint64 availableMemory)
{
    std::vector<Round> rounds;
    for (const auto& [atATime, fitting] : byMemory(documents, mostAtATime, availableMemory)) {
        const int share = static_cast<int>(fitting.size()) / (atATime * TURNS);
        rounds.push_back({atATime, jobsOf(fitting, std::clamp(share, 1, MOST_DOCUMENTS_A_JOB),
                                          MOST_BYTES_A_JOB)});
    }
    return rounds;
}

ArchiveSchedule::Round ArchiveSchedule::oneByOne(const std::vector<PlannedDocument>& documents)
{
    return {1, jobsOf(documents, 1, MOST_BYTES_A_JOB)};
}

bool ArchiveSchedule::isForHere(const PlannedDocument& document)
{
    return document.size > MOST_BYTES_A_PARCEL;
}

std::vector<ArchiveSchedule::Job>
ArchiveSchedule::parcelsOf(const std::vector<PlannedDocument>& documents, int machines)
{
    const int share = static_cast<int>(documents.size()) / (machines * USUAL_CORES * TURNS);
    return jobsOf(documents, std::clamp(share, FEWEST_DOCUMENTS_A_PARCEL, MOST_DOCUMENTS_A_PARCEL),
                  MOST_BYTES_A_PARCEL);
}

qint64 ArchiveSchedule::availableMemory()
{
    QFile file(QStringLiteral("/proc/meminfo"));
    return file.open(QIODevice::ReadOnly) ? availableMemoryIn(file.readAll()) : 0;
}

qint64 ArchiveSchedule::availableMemoryIn(const QByteArray& account)
{
    for (const QByteArray& line : account.split('\n')) {
        const QList<QByteArray> words = line.simplified().split(' ');
        if (words[0] == "MemAvailable:") {
            return words.value(1).toLongLong() * BYTES_PER_KILOBYTE;
        }
    }
    return 0;
}
