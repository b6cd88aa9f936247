#include "fuzz/ProfileRules.h"

#include "ZelMain/FrequencyCompatibility/shared/PkCompatProfile.h"

#include <QDomElement>
#include <QRegularExpression>

#include <algorithm>
#include <tuple>
#include <vector>

namespace {

std::vector<QDomElement> elementsOf(const QDomElement& parent)
{
    std::vector<QDomElement> elements;
    const QDomNodeList children = parent.childNodes();
    for (int i = 0; i < children.size(); ++i) {
        if (children.at(i).isElement()) {
            elements.push_back(children.at(i).toElement());
        }
    }
    return elements;
}

std::optional<QDomElement> firstElementOf(const QDomElement& parent, const QString& name)
{
    const std::vector<QDomElement> elements = elementsOf(parent);
    const auto found =
        std::find_if(elements.begin(), elements.end(),
                     [&name](const QDomElement& element) { return element.tagName() == name; });
    return found == elements.end() ? std::nullopt : std::optional(*found);
}

void readFlag(const QDomElement& element, const QString& name, bool& flag)
{
    if (element.hasAttribute(name)) {
        flag = element.attribute(name).toInt() != 0;
    }
}

void readSpacing(const QDomElement& spacing, PkCompatProfile& profile)
{
    for (const QDomElement& element : elementsOf(spacing)) {
        const QString name = element.tagName();
        int unknown = 0;
        int& value = name == "ch_ch"      ? profile.chCh
                     : name == "imd_2t3o" ? profile.imd2t3o
                     : name == "imd_2t5o" ? profile.imd2t5o
                     : name == "imd_2t7o" ? profile.imd2t7o
                     : name == "imd_2t9o" ? profile.imd2t9o
                     : name == "imd_3t3o" ? profile.imd3t3o
                                          : unknown;
        value = element.text().toInt();
    }
}

void readFilter(const QDomElement& filter, PkCompatProfile& profile)
{
    profile.filterType = static_cast<EBFType>(filter.attribute("type").toInt());
    for (const QDomElement& element : elementsOf(filter)) {
        const QString name = element.tagName();
        if (name == "filter_start") {
            profile.filterStart = element.text().toInt();
        } else if (name == "filter_end") {
            profile.filterEnd = element.text().toInt();
        } else if (name == "filter_center") {
            profile.filterCenter = element.text().toInt();
        } else if (name == "filter_center_list" && profile.filterType == EBF_CENTER_LIST) {
            for (const QDomElement& centre : elementsOf(element)) {
                profile.filterCenterList.push_back(centre.text().toInt());
            }
        }
    }
}

auto fieldsOf(const PkCompatProfile& profile)
{
    return std::tie(profile.name, profile.id, profile.chCh, profile.imd2t3o, profile.imd2t5o,
                    profile.imd2t7o, profile.imd2t9o, profile.imd3t3o, profile.filterType,
                    profile.filterStart, profile.filterEnd, profile.filterCenter,
                    profile.filterCenterList, profile.imdSource, profile.synthesizable);
}

} // namespace

std::optional<boost::uuids::uuid> ProfileRules::uuidOf(const QString& text)
{
    // All hyphens or none, braces on both sides or on none, and nothing before or after.
    static const QRegularExpression FORM(
        QStringLiteral("\\A(?:\\{(?<inner>[^{}]*)\\}|(?<bare>[^{}]*))\\z"));
    static const QRegularExpression DIGITS(QStringLiteral(
        "\\A(?:[0-9A-Fa-f]{32}|[0-9A-Fa-f]{8}(?:-[0-9A-Fa-f]{4}){3}-[0-9A-Fa-f]{12})\\z"));
    const QRegularExpressionMatch form = FORM.match(text);
    QString digits = form.captured(QStringLiteral("inner")) + form.captured(QStringLiteral("bare"));
    if (!form.hasMatch() || !DIGITS.match(digits).hasMatch()) {
        return std::nullopt;
    }
    const QByteArray bytes = QByteArray::fromHex(digits.remove(QLatin1Char('-')).toLatin1());
    boost::uuids::uuid uuid{};
    std::copy(bytes.begin(), bytes.end(), uuid.begin());
    return uuid;
}

PkCompatProfile ProfileRules::importedInto(PkCompatProfile profile, const QDomElement& element)
{
    profile.id = uuidOf(element.attribute("id")).value();
    profile.name = element.attribute("name").toStdString();
    readFlag(element, "imd_source", profile.imdSource);
    readFlag(element, "synthesizable", profile.synthesizable);
    if (const auto spacing = firstElementOf(element, "spacing")) {
        readSpacing(*spacing, profile);
    }
    if (const auto filter = firstElementOf(element, "filter")) {
        readFilter(*filter, profile);
    }
    return profile;
}

bool ProfileRules::areEqual(const PkCompatProfile& one, const PkCompatProfile& other)
{
    return fieldsOf(one) == fieldsOf(other);
}

bool ProfileRules::isOfXml(const QString& text)
{
    const QVector<uint> characters = text.toUcs4();
    return std::all_of(characters.begin(), characters.end(), [](uint code) {
        return code == '\t' || code == '\n' || code == '\r' || (code >= 0x20 && code < 0xD800) ||
               (code >= 0xE000 && code < 0xFFFE) || (code >= 0x10000 && code < 0x110000);
    });
}
