#include "FileConverters/CoordinationWorkspaceSection/archive/files/FileIdentity.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/JsonLine.h"

#include <QFile>
#include <QJsonValue>

#include <algorithm>
#include <memory>

#include <openssl/evp.h>

namespace {

// What another machine tells may be anything.
constexpr double MOST_BYTES = 1LL << 53; // that a double counts one by one
constexpr int CHUNK = 65536;

} // namespace

void FileIdentity::addTo(JsonLine& line, const char* key) const
{
    line.beginObject(key);
    line.add("sha256", sha256);
    line.add("size", size);
    line.endObject();
}

std::optional<FileIdentity> FileIdentity::fromJson(const QJsonValue& value)
{
    if (!value.isObject()) {
        return std::nullopt;
    }
    const double size = std::clamp(value["size"].toDouble(), 0.0, MOST_BYTES);
    return FileIdentity{static_cast<qint64>(size), value["sha256"].toString()};
}

std::optional<FileIdentity> FileIdentity::of(const QString& path)
{
    // QCryptographicHash takes nine times as long: it knows nothing of the processor's
    // instructions.
    const std::unique_ptr<EVP_MD_CTX, void (*)(EVP_MD_CTX*)> digest(EVP_MD_CTX_new(),
                                                                    EVP_MD_CTX_free);
    QFile file(path);
    if (!digest || EVP_DigestInit_ex(digest.get(), EVP_sha256(), nullptr) != 1 ||
        !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return std::nullopt;
    }
    QByteArray chunk(CHUNK, Qt::Uninitialized);
    qint64 size = 0;
    qint64 count = 0;
    while ((count = file.read(chunk.data(), CHUNK)) > 0) {
        size += count;
        EVP_DigestUpdate(digest.get(), chunk.constData(), static_cast<std::size_t>(count));
    }
    QByteArray result(EVP_MAX_MD_SIZE, Qt::Uninitialized);
    unsigned int length = 0;
    if (count < 0 ||
        EVP_DigestFinal_ex(digest.get(), reinterpret_cast<unsigned char*>(result.data()),
                           &length) != 1) {
        return std::nullopt;
    }
    result.truncate(static_cast<int>(length));
    return FileIdentity{size, QString::fromLatin1(result.toHex())};
}

bool operator==(const FileIdentity& one, const FileIdentity& other)
{
    return one.size == other.size && one.sha256 == other.sha256;
}

bool operator!=(const FileIdentity& one, const FileIdentity& other)
{
    return !(one == other);
}
