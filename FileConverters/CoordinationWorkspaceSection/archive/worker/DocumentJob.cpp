#include "FileConverters/CoordinationWorkspaceSection/archive/worker/DocumentJob.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/files/StableStorage.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/processes/BoundedServer.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/worker/ConverterProcess.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentText.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/FindingList.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/Inspection.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/TextLayout.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/Verification.h"

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

using TextLayout::quoted;

namespace {

constexpr double MILLISECONDS_PER_SECOND = 1000.0;
constexpr int CHUNK = 65536;
constexpr char SEPARATOR = '\0'; // no path has one
// What a larger document leaves of its memory would count among what the next one takes.
constexpr qint64 MOST_SHARED_BYTES = 65536;

bool has(const Inspection& inspection, Finding::Kind kind)
{
    return std::any_of(inspection.losses.begin(), inspection.losses.end(),
                       [&](const Finding& loss) { return loss.kind == kind; });
}

std::vector<LossSummary> summaryOf(const Findings& losses)
{
    std::vector<LossSummary> summaries;
    for (const Finding& loss : losses) {
        const QString kind = Finding::nameOf(loss.kind);
        const auto known =
            std::find_if(summaries.begin(), summaries.end(),
                         [&](const LossSummary& other) { return other.kind == kind; });
        if (known == summaries.end()) {
            summaries.push_back({kind, 1, loss.place.line, loss.place.path, loss.text});
        } else {
            ++known->count;
        }
    }
    return summaries;
}

void set(DocumentRecord& record, DocumentRecord::Outcome outcome, const char* reason,
         const QString& text)
{
    record.outcome = outcome;
    record.reason = QLatin1String(reason);
    record.text = text;
}

void judgeUnreadable(const DocumentText& text, const ReadError& error, DocumentRecord& record)
{
    // A page or a drawing is none of ours. A workspace document that broke must not go unseen.
    if (text.text().contains(QLatin1String("coordinated_data_root"))) {
        set(record, DocumentRecord::FAILED, "not-well-formed",
            QStringLiteral("line %1: %2").arg(error.line).arg(error.text));
    } else {
        set(record, DocumentRecord::REFUSED, "no-workspace",
            QStringLiteral("it is no workspace document"));
    }
}

void judgeImpossible(const Inspection& inspection, DocumentRecord& record)
{
    if (has(inspection, Finding::NO_SECTION)) {
        set(record, DocumentRecord::REFUSED, "no-workspace",
            QStringLiteral("it is no workspace document"));
    } else if (has(inspection, Finding::SEVERAL_SECTIONS)) {
        set(record, DocumentRecord::REFUSED, "several-sections",
            QStringLiteral("it has several coordination workspaces"));
    } else {
        set(record, DocumentRecord::FAILED, "invalid-profile-id",
            QStringLiteral("a profile has no UUID as its id"));
    }
}

void judge(const Inspection& inspection, DocumentRecord& record)
{
    switch (inspection.advice) {
    case Inspection::CONVERT:
        record.outcome = DocumentRecord::CONVERTED;
        record.systems = ChangedSystem::among(inspection.systems);
        return;
    case Inspection::CURRENT:
        record.outcome = DocumentRecord::CURRENT;
        return;
    case Inspection::REVIEW:
    case Inspection::TOO_OLD:
        record.outcome = DocumentRecord::LOSSY;
        record.losses = summaryOf(inspection.losses);
        record.systems = ChangedSystem::among(inspection.systems);
        return;
    case Inspection::TOO_NEW:
        set(record, DocumentRecord::REFUSED, "too-new",
            QStringLiteral("its version %1 is newer than this software knows")
                .arg(quoted(inspection.version)));
        return;
    case Inspection::IMPOSSIBLE:
        judgeImpossible(inspection, record);
        return;
    }
}

QByteArray judgeDocument(const QString& path)
{
    DocumentRecord record;
    const std::optional<DocumentText> text = DocumentText::ofFile(path);
    ReadError error;
    if (!text) {
        set(record, DocumentRecord::FAILED, "not-readable", QStringLiteral("it cannot be read"));
    } else if (const auto inspection = inspectDocument(*text, error, FindingList::LOSSES)) {
        judge(*inspection, record);
    } else {
        judgeUnreadable(*text, error, record);
    }
    return record.toLine();
}

// Empty when the output is right.
QByteArray findDifference(const QString& before, const QString& after)
{
    QFile file(after);
    const auto beforeText = DocumentText::ofFile(before);
    const auto afterText =
        file.open(QIODevice::ReadOnly) ? DocumentText::ofOutput(file) : std::nullopt;
    ReadError error;
    const auto verification =
        beforeText && afterText ? verifyConversion(*beforeText, *afterText, error) : std::nullopt;
    if (!verification) {
        return "it cannot be compared: " + error.text.toUtf8();
    }
    if (verification->differences.empty()) {
        return {};
    }
    const Difference& first = verification->differences.front();
    return QStringLiteral("line %1, %2: %3")
        .arg(QString::number(first.place.line), first.place.path, first.text)
        .toUtf8();
}

// False, with errno set, when not every byte was written.
bool copyBytes(const QString& from, const QString& to)
{
    QFile source(from);
    QFile copy(to);
    if (!source.open(QIODevice::ReadOnly) ||
        !copy.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
        return false;
    }
    for (QByteArray chunk = source.read(CHUNK); !chunk.isEmpty(); chunk = source.read(CHUNK)) {
        if (copy.write(chunk) != chunk.size()) {
            return false;
        }
    }
    return true;
}

bool isLeftAlone(DocumentRecord::Outcome outcome)
{
    return outcome != DocumentRecord::CONVERTED && outcome != DocumentRecord::LOSSY &&
           outcome != DocumentRecord::CURRENT;
}

} // namespace

DocumentJob::DocumentJob(const ArchiveSettings& settings, const PlannedDocument& document,
                         BoundedServer& reader)
    : m_settings(settings), m_document(document), m_source(settings.sourceOf(document.path)),
      m_reader(reader)
{
    m_record.path = document.path;
    m_record.earlier = document.earlier;
}

void DocumentJob::run()
{
    QElapsedTimer timer;
    timer.start();
    // What is not there cannot be read, either.
    stat(QFile::encodeName(m_source).constData(), &m_sourceBefore);
    m_limits = m_settings.limitsFor(m_sourceBefore.st_size);
    m_deadline = m_limits.deadline();
    if (!(identify() && inspect() && write())) {
        m_output.reset();
    }
    m_record.seconds = static_cast<double>(timer.elapsed()) / MILLISECONDS_PER_SECOND;
}

bool DocumentJob::end(DocumentRecord::Outcome outcome, const char* reason, const QString& text)
{
    set(m_record, outcome, reason, text);
    m_record.isVerified = false;
    return false;
}

bool DocumentJob::identify()
{
    m_record.source = FileIdentity::of(m_source);
    if (!m_record.source) {
        return end(DocumentRecord::FAILED, "not-readable", QStringLiteral("it cannot be read"));
    }
    return true;
}

ProcessLimits DocumentJob::remainingLimits() const
{
    ProcessLimits remaining = m_limits;
    if (!m_deadline.isForever()) {
        remaining.milliseconds = std::max<qint64>(1, m_deadline.remainingTime());
    }
    return remaining;
}

QByteArray DocumentJob::answerOfReader(const QByteArray& request)
{
    const QList<QByteArray> paths = request.split(SEPARATOR);
    const QString source = QString::fromUtf8(paths[0]);
    return paths.size() == 1 ? judgeDocument(source)
                             : findDifference(source, QString::fromUtf8(paths[1]));
}

std::optional<QByteArray> DocumentJob::askReader(const QByteArray& request)
{
    auto answer = m_reader.ask(request, remainingLimits());
    if (m_record.source->size > MOST_SHARED_BYTES) {
        m_reader.end();
    }
    return answer;
}

bool DocumentJob::inspect()
{
    const auto answer = askReader(m_source.toUtf8());
    const auto judgement = answer ? DocumentRecord::fromLine(*answer) : std::nullopt;
    if (!judgement) {
        return end(DocumentRecord::LIMIT, m_deadline.hasExpired() ? "time" : "memory",
                   QStringLiteral("reading it takes more than a document may"));
    }
    m_record.outcome = judgement->outcome;
    m_record.reason = judgement->reason;
    m_record.text = judgement->text;
    m_record.losses = judgement->losses;
    m_record.systems = judgement->systems;
    if (isLeftAlone(m_record.outcome)) {
        return false;
    }
    if (m_record.outcome == DocumentRecord::LOSSY && m_settings.onlyClean) {
        return end(DocumentRecord::LOSSY, "not-clean",
                   QStringLiteral("only documents without losses are written"));
    }
    if (m_document.isBlocked) {
        return end(DocumentRecord::REFUSED, "target-exists",
                   QStringLiteral("something stands in its place, and is kept"));
    }
    return true;
}

bool DocumentJob::write()
{
    if (!beginOutput()) {
        return false;
    }
    const bool isWritten =
        m_record.outcome == DocumentRecord::CURRENT ? copyInto(*m_output) : convertInto(*m_output);
    // A document that changes meanwhile may fail in other ways, too.
    return isUnchanged() && isWritten && finishOutput();
}

bool DocumentJob::beginOutput()
{
    const QFileInfo target(m_settings.targetOf(m_document.path));
    const QString folder = m_settings.isTrial() ? m_settings.staging : target.absolutePath();
    if (StableStorage::makeFolders(folder)) {
        m_output = AtomicFile::begin(folder, target.fileName());
    }
    if (!m_output) {
        failToWrite();
    }
    return m_output != nullptr;
}

bool DocumentJob::finishOutput()
{
    m_record.target = FileIdentity::of(m_output->partPath());
    if (!m_record.target || !m_output->finishLike(m_source)) {
        failToWrite();
        return false;
    }
    m_record.earlier.reset();
    return true;
}

bool DocumentJob::copyInto(const AtomicFile& output)
{
    if (!copyBytes(m_source, output.partPath())) {
        failToWrite();
        return false;
    }
    if (FileIdentity::of(output.partPath()) != m_record.source) {
        return end(DocumentRecord::FAILED, "not-written", QStringLiteral("the copy is not whole"));
    }
    return true;
}

bool DocumentJob::convertInto(const AtomicFile& output)
{
    switch (ConverterProcess::convert(m_settings.converter, m_source, output.partPath(),
                                      remainingLimits())) {
    case ConverterProcess::CONVERTED:
        return !m_settings.verifies || verify(output);
    case ConverterProcess::OUT_OF_TIME:
        return end(DocumentRecord::LIMIT, "time",
                   QStringLiteral("its conversion takes longer than a document may"));
    case ConverterProcess::BROKE_OFF:
        // A profile id that is no UUID has been seen before.
        return end(DocumentRecord::LIMIT, "memory",
                   QStringLiteral("its conversion takes more memory than a document may"));
    case ConverterProcess::REFUSED:
    case ConverterProcess::UNREADABLE:
        return end(DocumentRecord::FAILED, "not-converted",
                   QStringLiteral("the converter could not read it or not write its output"));
    case ConverterProcess::NOT_STARTED:
        break;
    }
    return end(DocumentRecord::FAILED, "no-converter",
               QStringLiteral("the converter could not be started"));
}

bool DocumentJob::verify(const AtomicFile& output)
{
    const auto difference = askReader(m_source.toUtf8() + SEPARATOR + output.partPath().toUtf8());
    if (!difference) {
        return end(DocumentRecord::LIMIT, m_deadline.hasExpired() ? "time" : "memory",
                   QStringLiteral("verifying it takes more than a document may"));
    }
    if (!difference->isEmpty()) {
        return end(DocumentRecord::FAILED, "not-verified", QString::fromUtf8(*difference));
    }
    m_record.isVerified = true;
    return true;
}

bool DocumentJob::accept(const DocumentRecord& told, const QString& output)
{
    stat(QFile::encodeName(m_source).constData(), &m_sourceBefore);
    if (!told.source || FileIdentity::of(m_source) != told.source) {
        return false;
    }
    m_record = told;
    m_record.path = m_document.path;
    m_record.earlier = told.target ? std::nullopt : m_document.earlier;
    if (!told.target || m_settings.isTrial()) {
        return true;
    }
    const bool isTaken = !output.isEmpty() && beginOutput() && moveInto(*m_output, output) &&
                         isUnchanged() && finishOutput();
    const bool isWhatWasTold = isTaken && m_record.target == told.target;
    if (!isWhatWasTold) {
        m_output.reset();
    }
    return isWhatWasTold;
}

bool DocumentJob::moveInto(const AtomicFile& output, const QString& file)
{
    const QByteArray from = QFile::encodeName(file);
    const QByteArray to = QFile::encodeName(output.partPath());
    // A folder of the target may be another file system.
    return std::rename(from.constData(), to.constData()) == 0 ||
           (errno == EXDEV && copyBytes(file, output.partPath()));
}

// Hash, inspection and conversion have each read the document: they must have read the same.
bool DocumentJob::isUnchanged()
{
    struct stat now = {};
    if (stat(QFile::encodeName(m_source).constData(), &now) != 0 ||
        now.st_size != m_record.source->size ||
        now.st_mtim.tv_sec != m_sourceBefore.st_mtim.tv_sec ||
        now.st_mtim.tv_nsec != m_sourceBefore.st_mtim.tv_nsec) {
        return end(DocumentRecord::FAILED, "changed",
                   QStringLiteral("it was changed while it was read"));
    }
    return true;
}

void DocumentJob::failToWrite()
{
    end(DocumentRecord::FAILED, "not-written",
        QStringLiteral("its output cannot be written: %1")
            .arg(QString::fromLocal8Bit(std::strerror(errno))));
    m_record.target.reset();
    m_record.earlier = m_document.earlier;
}

void DocumentJob::failToSyncFolder()
{
    const std::optional<FileIdentity> standing = m_record.target;
    failToWrite();
    m_record.earlier = standing;
}

void DocumentJob::sync()
{
    if (m_output && !m_output->sync()) {
        failToWrite();
        m_output.reset();
    }
}

void DocumentJob::commit()
{
    if (!m_output || m_output->commit(m_document.mayReplace)) {
        return;
    }
    if (errno == EEXIST) {
        // It came after the run had looked.
        end(DocumentRecord::REFUSED, "target-exists",
            QStringLiteral("something stands in its place, and is kept"));
        m_record.target.reset();
    } else {
        failToWrite();
    }
    m_output.reset();
}
