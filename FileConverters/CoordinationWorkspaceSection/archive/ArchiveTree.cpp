#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveTree.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/files/AtomicFile.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/files/Paths.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchiveSettings.h"
#include "FileConverters/CoordinationWorkspaceSection/archive/processes/StopSignals.h"

#include <QFile>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <set>

namespace fs = std::filesystem;

namespace {

constexpr int BEGINNING = 65536; // more blanks than that stand before no document's first "<"
constexpr int CHUNK = 4096;      // of it; nearly every file tells with its first byte
const QByteArray BLANKS("\0\t\n\r \xef\xbb\xbf\xfe\xff", 10);  // and byte-order marks
constexpr qint64 MOST_BYTES = std::numeric_limits<int>::max(); // that Qt reads at one go

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
    explicit Walk(const QString& folder) : m_root(Paths::native(folder)) {}

    std::vector<ArchiveEntry> entries()
    {
        visitFolder(m_root);
        tellLookAlikesApart();
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
        const QString name = Paths::textOf(entry.path().filename());
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
        } else if (!Paths::isUtf8(entry.path().lexically_relative(m_root))) {
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
        if (!Paths::isUtf8(path.lexically_relative(m_root))) {
            m_shownOtherwise.insert(m_entries.size());
        }
        m_entries.push_back({pathOf(path), 0, QLatin1String(reason), QLatin1String(text), outcome});
    }

    QString pathOf(const fs::path& path) const
    {
        return Paths::textOf(path.lexically_relative(m_root));
    }

    // What a name that is not UTF-8 shows as may be the name of something else.
    void tellLookAlikesApart()
    {
        if (m_shownOtherwise.empty()) {
            return;
        }
        std::set<QString> taken;
        for (std::size_t i = 0; i < m_entries.size(); ++i) {
            if (m_shownOtherwise.count(i) == 0) {
                taken.insert(m_entries[i].path);
            }
        }
        for (const std::size_t i : m_shownOtherwise) {
            while (!taken.insert(m_entries[i].path).second) {
                m_entries[i].path += QChar(QChar::ReplacementCharacter);
            }
        }
    }

    const fs::path m_root;
    std::vector<ArchiveEntry> m_entries;
    std::set<std::size_t> m_shownOtherwise; // of the entries
};

} // namespace

std::vector<ArchiveEntry> ArchiveTree::find(const QString& folder)
{
    return Walk(folder).entries();
}

void ArchiveTree::sweep(const QString& folder)
{
    std::error_code error;
    fs::recursive_directory_iterator entry(Paths::native(folder),
                                           fs::directory_options::skip_permission_denied, error);
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        std::error_code ignored;
        if (fs::exists(entry->path() / Paths::native(ArchiveSettings::FOLDER), ignored)) {
            entry.disable_recursion_pending();
        }
        if (AtomicFile::isPart(Paths::textOf(entry->path().filename())) &&
            entry->symlink_status(ignored).type() == fs::file_type::regular) {
            fs::remove(entry->path(), ignored);
        }
    }
}
