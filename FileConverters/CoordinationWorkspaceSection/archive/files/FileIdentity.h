#pragma once

#include <QString>

#include <optional>

class JsonLine;
class QJsonValue;

/** A file's bytes, as far as telling one from another takes. */
struct FileIdentity
{
    qint64 size = 0; ///< in bytes
    QString sha256;  ///< in lower-case hexadecimal (FIPS 180-4)

    /** @return none when the file cannot be read. */
    static std::optional<FileIdentity> of(const QString& path);

    void addTo(JsonLine& line, const char* key) const;

    /** @return none when the value is no object. */
    static std::optional<FileIdentity> fromJson(const QJsonValue& value);
};

bool operator==(const FileIdentity& one, const FileIdentity& other);
bool operator!=(const FileIdentity& one, const FileIdentity& other);
