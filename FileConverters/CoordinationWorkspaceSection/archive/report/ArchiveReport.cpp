#include "FileConverters/CoordinationWorkspaceSection/archive/report/ArchiveReport.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/files/AtomicFile.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/files/Descriptor.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/files/StableStorage.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace {

constexpr mode_t NEW_FILE_MODE = 0666; // less the user's mask

// A record's keys come out in the order of their names; not each has the first of them.
const std::array<QByteArray, 2> BEGINS = {"{\"earlier\":", "{\"format\":"};
constexpr int LONGEST_BEGIN = 11;

bool endsInsideALine(int descriptor)
{
    char last = '\n';
    const off_t size = lseek(descriptor, 0, SEEK_END);
    return size > 0 && pread(descriptor, &last, sizeof last, size - 1) == 1 && last != '\n';
}

// Line by line: all of them together may be more than memory, or one QByteArray, holds.
bool holds(const QString& file, const ArchiveReport::Records& records)
{
    QFile report(file);
    const auto isNext = [&report](const DocumentRecord& record) {
        const QByteArray line = record.toLine();
        return report.read(line.size()) == line;
    };
    return report.open(QIODevice::ReadOnly) &&
           std::all_of(records.begin(), records.end(), isNext) && report.atEnd();
}

bool write(const QString& file, const ArchiveReport::Records& records)
{
    QFile report(file);
    const auto isWritten = [&report](const DocumentRecord& record) {
        const QByteArray line = record.toLine();
        return report.write(line) == line.size();
    };
    return report.open(QIODevice::WriteOnly) &&
           std::all_of(records.begin(), records.end(), isWritten) && report.flush();
}

} // namespace

std::optional<ArchiveReport::Records> ArchiveReport::read(const QString& file)
{
    Records records;
    QFile report(file);
    if (!QFileInfo(file).isFile()) {
        return records;
    }
    if (!report.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    // Not until atEnd(): by a file's size it is never reached where reading fails.
    for (QByteArray line = report.readLine(); !line.isEmpty(); line = report.readLine()) {
        if (const auto record = DocumentRecord::fromLine(line)) {
            records.insert(record->path, *record);
        }
    }
    return report.error() == QFileDevice::NoError ? std::optional(records) : std::nullopt;
}

bool ArchiveReport::mayStandIn(const QString& file)
{
    const QFileInfo info(file);
    QFile report(file);
    if (!info.exists()) {
        return true;
    }
    if (!info.isFile() || !report.open(QIODevice::ReadOnly)) {
        return false;
    }
    // A killed run may have left no more than a piece of the first line.
    const QByteArray line = report.read(LONGEST_BEGIN);
    return std::any_of(BEGINS.begin(), BEGINS.end(), [&](const QByteArray& begin) {
        return line.startsWith(begin) || begin.startsWith(line);
    });
}

bool ArchiveReport::append(const QString& file, const std::vector<DocumentRecord>& records)
{
    QByteArray lines;
    for (const DocumentRecord& record : records) {
        lines += record.toLine();
    }
    const Descriptor report(open(QFile::encodeName(file).constData(),
                                 O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC, NEW_FILE_MODE));
    if (!report.isOpen()) {
        return false;
    }
    // Its own lock, which goes with the descriptor: lines of two workers must not mix.
    flock(report.number(), LOCK_EX);
    const bool isNew = lseek(report.number(), 0, SEEK_END) == 0;
    if (endsInsideALine(report.number())) {
        lines.prepend('\n');
    }
    return StableStorage::writeAll(report.number(), lines) &&
           StableStorage::syncFile(report.number()) &&
           (!isNew || StableStorage::syncFolder(QFileInfo(file).absolutePath()));
}

bool ArchiveReport::replace(const QString& file, const Records& records)
{
    const QFileInfo info(file);
    const std::unique_ptr<AtomicFile> part =
        AtomicFile::beginAlone(info.absolutePath(), info.fileName());
    if (!part) {
        return false;
    }
    if (holds(file, records)) {
        return true;
    }
    return write(part->partPath(), records) && part->finish() && part->commit(true) &&
           StableStorage::syncFolder(part->folder());
}
