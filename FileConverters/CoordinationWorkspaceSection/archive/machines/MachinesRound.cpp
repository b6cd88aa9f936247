#include "FileConverters/CoordinationWorkspaceSection/archive/machines/MachinesRound.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchiveSchedule.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/machines/LoginFile.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/machines/MachineRecord.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <iterator>

namespace {

const QString PARALLEL_FOLDER = QStringLiteral("/parallel");
const QString SSH_LOG = QStringLiteral("ssh-log");
constexpr qint64 MILLISECONDS_PER_SECOND = 1000;
// For logging in, and for the slowest of its documents.
constexpr qint64 BASE_SECONDS = 60;
constexpr qint64 BYTES_A_SECOND = 100000; // to a machine and back, over a slow line
constexpr qint64 DOCUMENTS_A_SECOND = 10; // many times longer than a sound one takes
constexpr int MOST_COMPLAINTS = 100;      // a machine may talk without end

// A job that takes longer hangs, or its documents are hostile: each has all its time here.
qint64 secondsFor(const ArchiveSchedule::Job& job, const ArchiveSettings& settings)
{
    qint64 bytes = 0;
    qint64 longest = 0;
    for (const PlannedDocument& document : job) {
        bytes += document.size;
        longest = std::max(longest, settings.limitsFor(document.size).milliseconds);
    }
    return BASE_SECONDS + longest / MILLISECONDS_PER_SECOND + bytes / BYTES_A_SECOND +
           static_cast<qint64>(job.size()) / DOCUMENTS_A_SECOND;
}

} // namespace

MachinesRound::MachinesRound(const ArchiveSettings& settings, const QString& worker,
                             const QString& folder)
    : m_settings(settings), m_parcels(settings, folder), m_parallelFolder(folder + PARALLEL_FOLDER),
      m_parallel(worker, m_parallelFolder)
{
}

MachinesRound::~MachinesRound()
{
    if (m_parallel.state() != QProcess::NotRunning) {
        m_parallel.stopJobs();
    }
}

bool MachinesRound::pack(const std::vector<PlannedDocument>& documents, const QString& loginFile)
{
    // Since the run began the file may be gone, or name none any more.
    const int count = std::max(1, LoginFile::read(loginFile).machines);
    for (const ArchiveSchedule::Job& job : ArchiveSchedule::parcelsOf(documents, count)) {
        const std::optional<PlannedJob> packed = m_parcels.pack(job);
        if (!packed) {
            return false;
        }
        m_packed.push_back(*packed);
        m_seconds = std::max(m_seconds, secondsFor(job, m_settings));
    }
    return QDir().mkpath(m_parallelFolder);
}

bool MachinesRound::start(const QString& loginFile, int jobs)
{
    return m_parallel.startParcels(m_parcels.folder(), m_packed,
                                   {loginFile, jobs, SSH_LOG, m_seconds});
}

bool MachinesRound::isOver() const
{
    return m_parallel.state() == QProcess::NotRunning && !m_parallel.canReadLine();
}

std::optional<std::vector<DocumentRecord>> MachinesRound::next(int milliseconds)
{
    m_parallel.waitForReadyRead(milliseconds);
    readComplaints();
    while (m_parallel.canReadLine()) {
        readLine(m_parallel.readLine());
    }
    std::vector<DocumentRecord> taken;
    for (const auto& [parcel, returned] : m_returned) {
        std::vector<ReturnedDocument> documents;
        std::transform(returned.begin(), returned.end(), std::back_inserter(documents),
                       [](const auto& entry) { return entry.second; });
        const auto records = acceptBatch(m_settings, documents);
        if (!records) {
            return std::nullopt;
        }
        for (const DocumentRecord& record : *records) {
            m_parcels.finish(parcel, record.path);
        }
        taken.insert(taken.end(), records->begin(), records->end());
    }
    m_returned.clear();
    return taken;
}

// "PARCEL<tab>RECORD", among whatever else a login shell prints.
void MachinesRound::readLine(const QByteArray& line)
{
    const int tab = line.indexOf('\t');
    const int parcel = line.left(tab).toInt();
    const QByteArray said = line.mid(tab + 1);
    const std::optional<DocumentRecord> told = DocumentRecord::fromLine(said);
    if (!told) {
        if (said.startsWith(ArchivePlan::PROBLEM)) {
            complain(said.mid(ArchivePlan::PROBLEM.size()));
        }
        return;
    }
    const PlannedDocument* const document = m_parcels.find(parcel, told->path);
    if (document == nullptr) {
        return;
    }
    if (MachineRecord::isAnswer(*told, *document, m_settings)) {
        // What is told again counts no more.
        m_returned[parcel].try_emplace(
            told->path, ReturnedDocument{*document, *told, m_parcels.output(parcel, told->path)});
    } else {
        m_forHere.insert(told->path);
    }
}

void MachinesRound::readComplaints()
{
    m_parallel.setReadChannel(QProcess::StandardError);
    while (m_parallel.canReadLine()) {
        const QByteArray line = m_parallel.readLine();
        complain(line.mid(line.indexOf('\t') + 1));
    }
    m_parallel.setReadChannel(QProcess::StandardOutput);
    readSshLog();
}

void MachinesRound::readSshLog()
{
    QFile log(m_parcels.folder() + QLatin1Char('/') + SSH_LOG);
    if (!log.open(QIODevice::ReadOnly) || !log.seek(m_sshLogRead)) {
        return;
    }
    for (QByteArray line = log.readLine(); line.endsWith('\n'); line = log.readLine()) {
        m_sshLogRead += line.size();
        complain(line);
    }
}

void MachinesRound::complain(const QByteArray& line)
{
    const QByteArray said = line.trimmed();
    if (!said.isEmpty() && m_known.size() < MOST_COMPLAINTS && !m_known.contains(said)) {
        m_known.insert(said);
        m_complaints.append(QString::fromUtf8(said));
    }
}

QStringList MachinesRound::takeComplaints()
{
    QStringList complaints;
    complaints.swap(m_complaints);
    return complaints;
}
