#include "FileConverters/CoordinationWorkspaceSection/DocumentRecord.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

#include <openssl/evp.h>

namespace {

// Changes only when a program that knows the number before could misread a line.
constexpr int FORMAT = 1;
constexpr double MILLISECONDS = 1000.0;
constexpr int CHUNK = 65536;

// In the order of the outcomes.
constexpr std::array OUTCOMES = {"converted", "current", "lossy", "refused", "limit", "failed"};

QJsonArray arrayOf(const std::vector<LossSummary>& losses)
{
    QJsonArray array;
    for (const LossSummary& loss : losses) {
        array.append(QJsonObject{{"kind", loss.kind},
                                 {"count", loss.count},
                                 {"line", loss.line},
                                 {"path", loss.path},
                                 {"text", loss.text}});
    }
    return array;
}

std::vector<LossSummary> lossesFrom(const QJsonArray& array)
{
    std::vector<LossSummary> losses;
    for (const QJsonValue& loss : array) {
        losses.push_back({loss["kind"].toString(), loss["count"].toInt(), loss["line"].toInt(),
                          loss["path"].toString(), loss["text"].toString()});
    }
    return losses;
}

} // namespace

QJsonObject FileIdentity::toJson() const
{
    return {{"size", size}, {"sha256", sha256}};
}

std::optional<FileIdentity> FileIdentity::fromJson(const QJsonValue& value)
{
    if (!value.isObject()) {
        return std::nullopt;
    }
    return FileIdentity{static_cast<qint64>(value["size"].toDouble()), value["sha256"].toString()};
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

QString DocumentRecord::nameOf(Outcome outcome)
{
    return QLatin1String(OUTCOMES[static_cast<std::size_t>(outcome)]);
}

QByteArray DocumentRecord::toLine() const
{
    QJsonObject object = {{"format", FORMAT},
                          {"path", path},
                          {"outcome", nameOf(outcome)},
                          {"losses", arrayOf(losses)},
                          {"verified", isVerified},
                          {"seconds", std::round(seconds * MILLISECONDS) / MILLISECONDS}};
    if (!reason.isEmpty()) {
        object.insert("reason", reason);
        object.insert("text", text);
    }
    if (source) {
        object.insert("source", source->toJson());
    }
    if (target) {
        object.insert("target", target->toJson());
    }
    if (earlier) {
        object.insert("earlier", earlier->toJson());
    }
    if (systems) {
        object.insert("systems", ChangedSystem::toJson(*systems));
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact) + '\n';
}

std::optional<DocumentRecord> DocumentRecord::fromLine(const QByteArray& line)
{
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    const auto* const outcome =
        std::find_if(OUTCOMES.begin(), OUTCOMES.end(),
                     [&](const char* name) { return object["outcome"] == QLatin1String(name); });
    if (object["format"] != FORMAT || outcome == OUTCOMES.end()) {
        return std::nullopt;
    }
    DocumentRecord record;
    record.path = object["path"].toString();
    record.outcome = static_cast<Outcome>(outcome - OUTCOMES.begin());
    record.reason = object["reason"].toString();
    record.text = object["text"].toString();
    record.source = FileIdentity::fromJson(object["source"]);
    record.target = FileIdentity::fromJson(object["target"]);
    record.earlier = FileIdentity::fromJson(object["earlier"]);
    record.losses = lossesFrom(object["losses"].toArray());
    if (object["systems"].isArray()) {
        record.systems = ChangedSystem::fromJson(object["systems"].toArray());
    }
    record.isVerified = object["verified"].toBool();
    record.seconds = object["seconds"].toDouble();
    return record;
}

bool DocumentRecord::tellsTheSameAs(const DocumentRecord& other) const
{
    DocumentRecord sameTime = other;
    sameTime.seconds = seconds;
    return toLine() == sameTime.toLine();
}
