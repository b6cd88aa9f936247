#include "fuzz/ConvertedDocument.h"

#include "fuzz/FuzzTarget.h"
#include "fuzz/ProfileRules.h"

#include "FileConverters/CoordinationWorkspaceSection/CoordWorkSpaceSectionConverter0_3.h"
#include "FileConverters/CoordinationWorkspaceSection/Utf8Output.h"

#include <QStringList>

#include <sstream>
#include <stdexcept>

using FuzzTarget::require;
using FuzzTarget::requireEqual;

namespace {

constexpr int INDENT = 4;

QByteArray asUtf8(const QString& text)
{
    std::ostringstream stream;
    require(writeUtf8(text, stream), "memory takes what is written");
    return QByteArray::fromStdString(stream.str());
}

bool hasBadId(const QDomElement& section)
{
    const QDomNodeList profiles = section.elementsByTagName(QStringLiteral("compat_profile"));
    for (int i = 0; i < profiles.size(); ++i) {
        if (!ProfileRules::uuidOf(profiles.at(i).toElement().attribute(QStringLiteral("id")))) {
            return true;
        }
    }
    return false;
}

QDomNodeList sectionsOf(const QDomDocument& document)
{
    return document.elementsByTagName(QStringLiteral("coordinated_data_root"));
}

QDomElement channelsOf(const QDomElement& section)
{
    return section.elementsByTagName(QStringLiteral("mic_channels")).item(0).toElement();
}

QStringList namesOfChildren(const QDomElement& parent)
{
    QStringList names;
    for (QDomNode child = parent.firstChild(); !child.isNull(); child = child.nextSibling()) {
        names.append(child.nodeName());
    }
    return names;
}

} // namespace

ConvertedDocument::ConvertedDocument(const QString& text)
{
    if (!document.setContent(text, nullptr, nullptr, nullptr)) {
        return;
    }
    m_before.text = document.toString(INDENT);
    m_before.sections = sectionsOf(document).size();
    const QDomElement section = sectionsOf(document).item(0).toElement();
    m_before.hasBadId = hasBadId(section);
    m_before.channels = placeOfChannels(section);
    convert();
}

void ConvertedDocument::convert()
{
    try {
        outcome = CoordWorkSpaceSectionConverter0_3::Convert(document) ? CONVERTED : REFUSED;
    } catch (const std::runtime_error&) {
        outcome = BROKEN_OFF;
    }
    if (outcome == CONVERTED) {
        output = asUtf8(document.toString(INDENT));
    }
}

bool ConvertedDocument::isReadableBefore() const
{
    return QDomDocument().setContent(FuzzTarget::textOf(asUtf8(m_before.text)));
}

void ConvertedDocument::check() const
{
    if (outcome == NOT_WELL_FORMED) {
        return;
    }
    require((outcome == REFUSED) == (m_before.sections != 1),
            "exactly the documents with one section are taken");
    require((outcome == BROKEN_OFF) == (m_before.sections == 1 && m_before.hasBadId),
            "exactly a bad id breaks a conversion off");
    if (outcome != CONVERTED) {
        requireEqual(document.toString(INDENT), m_before.text,
                     "what is not converted is not changed");
        return;
    }
    checkSettings(settings());
    // Qt prints some documents so that it cannot read them itself: with references to characters
    // that no document may hold, for one.
    QDomDocument again;
    const bool isReadAgain = again.setContent(FuzzTarget::textOf(output));
    require(isReadAgain || !isReadableBefore(), "what is written can be read");
    if (isReadAgain) {
        require(sectionsOf(again).size() == 1, "the section is there once");
        checkSettings(settingsOf(again));
    }
}

// Right behind the channels, or last when there are none; nowhere when they are out of place.
QDomElement ConvertedDocument::settingsOf(const QDomDocument& in) const
{
    const QDomElement section = sectionsOf(in).item(0).toElement();
    switch (m_before.channels) {
    case NO_CHANNELS:
        return section.lastChildElement();
    case CHANNELS_IN_PLACE:
        return channelsOf(section).nextSiblingElement();
    case CHANNELS_ELSEWHERE:
        break;
    }
    return {};
}

ConvertedDocument::PlaceOfChannels ConvertedDocument::placeOfChannels(const QDomElement& section)
{
    const QDomElement channels = channelsOf(section);
    if (channels.isNull()) {
        return NO_CHANNELS;
    }
    return channels.parentNode() == section ? CHANNELS_IN_PLACE : CHANNELS_ELSEWHERE;
}

void ConvertedDocument::checkSettings(const QDomElement& settings) const
{
    const QDomDocument owner = settings.ownerDocument();
    if (settings.isNull()) {
        return;
    }
    require(settings.tagName() == QLatin1String("compatibility_profile_settings"),
            "the new element stands in its place");
    require(sectionsOf(owner).item(0).toElement().attribute(QStringLiteral("version")) ==
                QLatin1String("0.3"),
            "a converted section says its version");
    require(settings.attribute(QStringLiteral("version")) == QLatin1String("1.0"),
            "the new element says its version");
    const QStringList profiles = namesOfChildren(settings);
    require(profiles.count(QStringLiteral("profile")) == profiles.size() &&
                settings.attribute(QStringLiteral("count")) == QString::number(profiles.size()),
            "the new element counts what it holds");
    for (QDomElement profile = settings.firstChildElement(); !profile.isNull();
         profile = profile.nextSiblingElement()) {
        require(namesOfChildren(profile) == QStringList{"band", "series", "tx_profile", "zone",
                                                        "incl_group", "compat_profile"},
                "a system has its key and its profile");
    }
}
