#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveTree.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveSettings.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/AtomicFile.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/StopSignals.h"

#include <QFile>
#include <QStringList>

#include <algorithm>
#include <filesystem>
#include <limits>

namespace fs = std::filesystem;

namespace {

constexpr int BEGINNING = 65536; // more blanks than that stand before no document's first "<"
constexpr int CHUNK = 4096;      // of it; nearly every file tells with its first byte
const QByteArray BLANKS("\0\t\n\r \xef\xbb\xbf\xfe\xff", 10);  // and byte-order marks
constexpr qint64 MOST_BYTES = std::numeric_limits<int>::max(); // that Qt reads at one go
constexpr int LONGEST_CHARACTER = 4;                           // of UTF-8, in bytes
constexpr int HEXADECIMAL = 16;

fs::path nativePath(const QString& path)
{
    return {QFile::encodeName(path).constData()};
}

// Whether Qt gives back the same bytes. From the beginning it drops a byte-order mark.
bool isUtf8(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes).toUtf8() == bytes;
}

// Different names have to look different.
QString textOf(const fs::path& path)
{
    const QByteArray bytes = path.c_str();
    if (isUtf8(bytes)) {
        return QString::fromUtf8(bytes);
    }
    QString text;
    for (int at = 0; at < bytes.size();) {
        int length = 1;
        while (length <= LONGEST_CHARACTER && !isUtf8(bytes.mid(at, length))) {
            ++length;
        }
        if (length <= LONGEST_CHARACTER) {
            text += QString::fromUtf8(bytes.mid(at, length));
            at += length;
        } else {
            text += QChar(QChar::ReplacementCharacter);
            text += QString::number(static_cast<uchar>(bytes[at++]), HEXADECIMAL).toUpper();
        }
    }
    return text;
}

/**
 * Whether the file does not begin as XML does, in any encoding: a byte-order mark or not, blanks or
 * not, then "<". What cannot be read may be anything.
 */
bool isNoXml(const fs::path& path)
{
    QFile file(QFile::decodeName(path.c_str()));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return false;
    }
    for (int seen = 0; seen < BEGINNING; seen += CHUNK) {
        const QByteArray chunk = file.read(CHUNK);
        const auto* const first = std::find_if_not(
            chunk.begin(), chunk.end(), [](const char byte) { return BLANKS.contains(byte); });
        if (first != chunk.end()) {
            return *first != '<';
        }
        if (chunk.size() < CHUNK) {
            return file.error() == QFileDevice::NoError;
        }
    }
    return false;
}

/** One walk below a folder. */
class Walk
{
public:
    explicit Walk(const QString& folder) : m_root(nativePath(folder)) {}

    std::vector<ArchiveEntry> entries()
    {
        visitFolder(m_root);
        std::sort(m_entries.begin(), m_entries.end(),
                  [](const ArchiveEntry& one, const ArchiveEntry& other) {
                      return one.path < other.path;
                  });
        return std::move(m_entries);
    }

private:
    void visitFolder(const fs::path& folder)
    {
        std::error_code error;
        for (fs::directory_iterator entry(folder, error), end;
             !error && entry != end && !StopSignals::isStopping(); entry.increment(error)) {
            if (!isOurs(*entry)) {
                visit(*entry);
            }
        }
        if (error) {
            refuse(folder, "not-readable", "the folder cannot be read", DocumentRecord::FAILED);
        }
    }

    bool isOurs(const fs::directory_entry& entry) const
    {
        const QString name = textOf(entry.path().filename());
        return AtomicFile::isPart(name) ||
               (name == ArchiveSettings::FOLDER && entry.path().parent_path() == m_root);
    }

    void visit(const fs::directory_entry& entry)
    {
        std::error_code error;
        const bool isLink = entry.is_symlink(error);
        const fs::file_status status = entry.status(error);
        if (status.type() == fs::file_type::directory && !isLink) {
            visitFolder(entry.path());
        } else if (!isUtf8(entry.path().lexically_relative(m_root).c_str())) {
            refuse(entry.path(), "name-not-utf8",
                   "its name is not UTF-8, or begins with a byte-order mark");
        } else if (status.type() == fs::file_type::regular) {
            visitFile(entry);
        } else if (status.type() == fs::file_type::directory) {
            refuse(entry.path(), "link-to-folder", "links to folders are not followed");
        } else if (isLink && status.type() == fs::file_type::not_found) {
            refuse(entry.path(), "broken-link", "the link leads nowhere");
        } else {
            refuse(entry.path(), "no-file", "it is no file");
        }
    }

    void visitFile(const fs::directory_entry& entry)
    {
        std::error_code error;
        const auto size = static_cast<qint64>(entry.file_size(error));
        if (isNoXml(entry.path())) {
            refuse(entry.path(), "no-workspace", "it is no workspace document");
        } else if (!error && size > MOST_BYTES) {
            refuse(entry.path(), "size", "it is larger than 2 GB", DocumentRecord::LIMIT);
        } else {
            m_entries.push_back({pathOf(entry.path()), error ? 0 : size, {}, {}});
        }
    }

    void refuse(const fs::path& path, const char* reason, const char* text,
                DocumentRecord::Outcome outcome = DocumentRecord::REFUSED)
    {
        m_entries.push_back({pathOf(path), 0, QLatin1String(reason), QLatin1String(text), outcome});
    }

    QString pathOf(const fs::path& path) const { return textOf(path.lexically_relative(m_root)); }

    const fs::path m_root;
    std::vector<ArchiveEntry> m_entries;
};

fs::path withoutLinks(const QString& path)
{
    std::error_code error;
    fs::path absolute = fs::absolute(nativePath(path), error);
    const fs::path real = fs::weakly_canonical(absolute, error);
    if (error) {
        return absolute;
    }
    // "folder/" and "folder" are the same.
    return real.has_filename() ? real : real.parent_path();
}

// By what the system says rather than by names: a folder may be mounted twice.
bool isInsideOrSame(fs::path path, const fs::path& folder)
{
    for (;;) {
        std::error_code error;
        if (path == folder || fs::equivalent(path, folder, error)) {
            return true;
        }
        if (path == path.parent_path()) {
            return false;
        }
        path = path.parent_path();
    }
}

} // namespace

std::vector<ArchiveEntry> ArchiveTree::find(const QString& folder)
{
    return Walk(folder).entries();
}

void ArchiveTree::sweep(const QString& folder)
{
    std::error_code error;
    fs::recursive_directory_iterator entry(nativePath(folder),
                                           fs::directory_options::skip_permission_denied, error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        std::error_code ignored;
        if (fs::exists(entry->path() / nativePath(ArchiveSettings::FOLDER), ignored)) {
            entry.disable_recursion_pending();
        }
        if (AtomicFile::isPart(textOf(entry->path().filename())) &&
            entry->symlink_status(ignored).type() == fs::file_type::regular) {
            fs::remove(entry->path(), ignored);
        }
    }
}

QString ArchiveTree::realPath(const QString& path)
{
    return textOf(withoutLinks(path));
}

bool ArchiveTree::overlap(const QString& one, const QString& other)
{
    const fs::path realOne = withoutLinks(one);
    const fs::path realOther = withoutLinks(other);
    return isInsideOrSame(realOne, realOther) || isInsideOrSame(realOther, realOne);
}

bool ArchiveTree::hasPlaceFor(const QString& folder, const QString& path)
{
    fs::path place = nativePath(folder);
    const QStringList names = path.split(QLatin1Char('/'));
    for (int i = 0; i < names.size(); ++i) {
        place /= nativePath(names[i]);
        std::error_code error;
        const fs::file_type type = fs::symlink_status(place, error).type();
        if (type == fs::file_type::not_found) {
            return true;
        }
        const bool isLast = i + 1 == names.size();
        if ((type == fs::file_type::directory) == isLast) {
            return false;
        }
    }
    return true;
}
