#include "FileConverters/CoordinationWorkspaceSection/archive/files/Paths.h"

#include <QFile>
#include <QStringList>

namespace fs = std::filesystem;

namespace {

constexpr int LONGEST_CHARACTER = 4; // of UTF-8, in bytes
constexpr int HEXADECIMAL = 16;

// Whether Qt gives back the same bytes. From the beginning it drops a byte-order mark.
bool isUtf8Text(const QByteArray& bytes)
{
    return QString::fromUtf8(bytes).toUtf8() == bytes;
}

fs::path withoutLinks(const QString& path)
{
    std::error_code error;
    fs::path absolute = fs::absolute(Paths::native(path), error);
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

fs::path Paths::native(const QString& path)
{
    return {QFile::encodeName(path).constData()};
}

bool Paths::isUtf8(const fs::path& path)
{
    return isUtf8Text(path.c_str());
}

QString Paths::textOf(const fs::path& path)
{
    const QByteArray bytes = path.c_str();
    if (isUtf8Text(bytes)) {
        return QString::fromUtf8(bytes);
    }
    QString text;
    for (int at = 0; at < bytes.size();) {
        int length = 1;
        while (length <= LONGEST_CHARACTER && !isUtf8Text(bytes.mid(at, length))) {
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

std::optional<QString> Paths::real(const QString& path)
{
    const fs::path real = withoutLinks(path);
    return isUtf8(real) ? std::optional(textOf(real)) : std::nullopt;
}

bool Paths::overlap(const QString& one, const QString& other)
{
    const fs::path realOne = withoutLinks(one);
    const fs::path realOther = withoutLinks(other);
    return isInsideOrSame(realOne, realOther) || isInsideOrSame(realOther, realOne);
}

bool Paths::hasPlaceFor(const QString& folder, const QString& path)
{
    fs::path place = native(folder);
    const QStringList names = path.split(QLatin1Char('/'));
    for (int i = 0; i < names.size(); ++i) {
        place /= native(names[i]);
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
