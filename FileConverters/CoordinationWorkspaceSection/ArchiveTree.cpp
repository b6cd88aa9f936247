#include "FileConverters/CoordinationWorkspaceSection/ArchiveTree.h"

#include "FileConverters/CoordinationWorkspaceSection/ArchiveSettings.h"
#include "FileConverters/CoordinationWorkspaceSection/AtomicFile.h"

#include <QFile>
#include <QStringList>

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

namespace {

fs::path nativePath(const QString& path)
{
    return {QFile::encodeName(path).constData()};
}

QString textOf(const fs::path& path)
{
    return QString::fromUtf8(path.c_str());
}

bool isUtf8(const fs::path& path)
{
    return textOf(path).toUtf8() == path.c_str();
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
        for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
             entry.increment(error)) {
            if (!isOurs(*entry)) {
                visit(*entry);
            }
        }
        if (error) {
            refuse(folder, "not-readable", "the folder cannot be read");
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
        } else if (!isUtf8(entry.path())) {
            refuse(entry.path(), "name-not-utf8", "its name is not UTF-8");
        } else if (status.type() == fs::file_type::regular) {
            const auto size = entry.file_size(error);
            m_entries.push_back(
                {pathOf(entry.path()), error ? 0 : static_cast<qint64>(size), {}, {}});
        } else if (status.type() == fs::file_type::directory) {
            refuse(entry.path(), "link-to-folder", "links to folders are not followed");
        } else if (isLink && status.type() == fs::file_type::not_found) {
            refuse(entry.path(), "broken-link", "the link leads nowhere");
        } else {
            refuse(entry.path(), "no-file", "it is no file");
        }
    }

    void refuse(const fs::path& path, const char* reason, const char* text)
    {
        m_entries.push_back({pathOf(path), 0, QLatin1String(reason), QLatin1String(text)});
    }

    QString pathOf(const fs::path& path) const { return textOf(path.lexically_relative(m_root)); }

    const fs::path m_root;
    std::vector<ArchiveEntry> m_entries;
};

// Links on the way are followed as far as the path exists.
fs::path realPath(const QString& path)
{
    std::error_code error;
    const fs::path real = fs::weakly_canonical(fs::absolute(nativePath(path)), error);
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
        if (AtomicFile::isPart(textOf(entry->path().filename())) &&
            entry->symlink_status(ignored).type() == fs::file_type::regular) {
            fs::remove(entry->path(), ignored);
        }
    }
}

bool ArchiveTree::overlap(const QString& one, const QString& other)
{
    const fs::path realOne = realPath(one);
    const fs::path realOther = realPath(other);
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
