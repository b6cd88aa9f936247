#include "FileConverters/CoordinationWorkspaceSection/inspect/Inspection.h"

#include "FileConverters/CoordinationWorkspaceSection/ConversionSteps.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/CharacterInspection.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/ContentInspection.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentText.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/FindingList.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/JoinInspection.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/LineBreakInspection.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/TextLayout.h"

#include <QDomDocument>

using namespace ConversionSteps;
using TextLayout::quoted;

namespace {

const QString SECTION = QStringLiteral("coordinated_data_root");
const QString SETTINGS = QStringLiteral("compatibility_profile_settings");

std::vector<QDomElement> allOf(const QDomElement& root, const QString& name)
{
    const QDomNodeList list = root.elementsByTagName(name);
    std::vector<QDomElement> elements;
    elements.reserve(static_cast<std::size_t>(list.size()));
    for (int i = 0; i < list.size(); ++i) {
        elements.push_back(list.item(i).toElement());
    }
    return elements;
}

// The converter refuses what has no section or several.
void inspectRefused(const QDomDocument& document, FindingList& findings)
{
    const QDomElement outermost = document.documentElement();
    const QDomNodeList sections = document.elementsByTagName(SECTION);
    if (sections.isEmpty()) {
        findings.add(Finding::NO_SECTION, outermost,
                     QStringLiteral("The document has no element \"%1\".").arg(SECTION));
    }
    for (int i = 1; i < sections.size(); ++i) {
        findings.add(Finding::SEVERAL_SECTIONS, sections.item(i).toElement(),
                     QStringLiteral("A document has one element \"%1\" only.").arg(SECTION));
    }
}

void inspectVersion(const QDomElement& root, XmlVersions::XmlValidState verdict,
                    FindingList& findings)
{
    const QString current = XmlVersions::GetXmlVersionString(SECTION);
    const QString version = quoted(root.attribute(QStringLiteral("version")));
    switch (verdict) {
    case XmlVersions::XmlConvertible:
    case XmlVersions::XmlNoConversion:
        break;
    case XmlVersions::XmlCurrent:
        findings.addAttribute(Finding::ALREADY_CURRENT, root, QStringLiteral("version"),
                              QStringLiteral("The document is of version %1 already: converting it"
                                             " again destroys its settings.")
                                  .arg(current));
        break;
    case XmlVersions::XmlInvalid:
        findings.add(
            Finding::TOO_OLD, root,
            QStringLiteral("The version %1 is none that is known to convert.").arg(version));
        break;
    case XmlVersions::XmlTooNew:
        findings.addAttribute(
            Finding::TOO_NEW, root, QStringLiteral("version"),
            QStringLiteral("The version %1 is newer than %2.").arg(version, current));
        break;
    }
}

/** A container of the old layout. */
struct Container
{
    const char* name;
    QDomElement OldSection::*first;
    const char* removed;   // nothing for the one that stays
    const char* misplaced; // what comes of it below something else than the root
    const char* repeated;  // what comes of a second one
};

constexpr const char* STAYS_WHERE_IT_IS = "It is no child of the root, so it is not removed.";
constexpr const char* SECOND_STAYS = "It is read, but only the first is removed.";

const Container CONTAINERS[] = {
    {"mic_channels", &OldSection::micChannels, nullptr,
     "It is no child of the root, so the settings are written nowhere.",
     "Only the first is read: these channels are not."},
    {"compat_configs", &OldSection::compatConfigs,
     "Goes; its configurations go into the new element.", STAYS_WHERE_IT_IS, SECOND_STAYS},
    {"compat_profiles", &OldSection::compatProfiles, "Goes; its profiles go into the new element.",
     STAYS_WHERE_IT_IS, SECOND_STAYS},
    {"compatibility_levels", &OldSection::compatLevels, "Goes unread.", STAYS_WHERE_IT_IS,
     "Only the first is removed."},
};

bool isChildOfRoot(const OldSection& section, const QDomElement& element)
{
    return element.parentNode() == section.root;
}

void inspectContainer(const OldSection& section, const Container& container, FindingList& findings)
{
    const QDomElement& first = section.*container.first;
    for (const QDomElement& element : allOf(section.root, QLatin1String(container.name))) {
        if (element != first) {
            findings.add(Finding::CONTAINER_REPEATED, element, QLatin1String(container.repeated));
        } else if (!isChildOfRoot(section, first)) {
            findings.add(Finding::CONTAINER_MISPLACED, first, QLatin1String(container.misplaced));
        } else if (container.removed != nullptr) {
            findings.add(Finding::CONTAINER_REMOVED, first, QLatin1String(container.removed));
        }
    }
}

void inspectComments(const QDomElement& container, FindingList& findings)
{
    QDomNode node = container.firstChild();
    while (!node.isNull()) {
        if (node.isComment()) {
            findings.add(Finding::COMMENT_REMOVED, node.parentNode().toElement(),
                         QStringLiteral("The comment %1 goes with its container.")
                             .arg(quoted(node.nodeValue().trimmed())));
        }
        QDomNode next = node.firstChild();
        while (next.isNull() && node != container) {
            next = node.nextSibling();
            node = node.parentNode();
        }
        node = next;
    }
}

// Configurations and profiles are found at any depth, and only those in the old containers go.
void inspectWhatStays(const OldSection& section, FindingList& findings)
{
    std::vector<QDomElement> holders = allOf(section.root, SETTINGS);
    for (const Container& container : CONTAINERS) {
        const QDomElement& element = section.*container.first;
        if (container.removed != nullptr && isChildOfRoot(section, element)) {
            holders.push_back(element);
        }
    }
    for (const auto* elements : {&section.configurations, &section.profiles}) {
        for (const QDomElement& element : findings.places().outside(*elements, holders)) {
            findings.add(Finding::STAYS_BEHIND, element,
                         QStringLiteral("It is read, and stays in the document as well."));
        }
    }
}

void inspectContents(const OldSection& section, FindingList& findings)
{
    for (QDomElement channel = section.micChannels.firstChildElement(); !channel.isNull();
         channel = channel.nextSiblingElement()) {
        ContentInspection::inspectChannel(channel, findings);
    }
    for (const QDomElement& configuration : section.configurations) {
        ContentInspection::inspectConfiguration(configuration, findings);
    }
    for (const QDomElement& profile : section.profiles) {
        ContentInspection::inspectProfile(profile, findings);
    }
    for (const QDomElement& container : {section.compatConfigs, section.compatProfiles}) {
        if (isChildOfRoot(section, container)) {
            ContentInspection::inspectContainer(container, findings);
            if (findings.takesNotes()) {
                inspectComments(container, findings);
            }
        }
    }
}

void inspectPlaces(const OldSection& section, FindingList& findings)
{
    for (const Container& container : CONTAINERS) {
        inspectContainer(section, container, findings);
    }
    for (const QDomElement& settings : allOf(section.root, SETTINGS)) {
        findings.add(Finding::SETTINGS_PRESENT, settings,
                     QStringLiteral("The document has such an element already: the conversion"
                                    " writes a second one."));
    }
    if (findings.takesNotes()) {
        inspectWhatStays(section, findings);
    }
}

std::vector<InspectedSystem> findSystems(const OldSection& section, const JoinInspection& join)
{
    const bool isWritten =
        section.micChannels.isNull() || isChildOfRoot(section, section.micChannels);
    if (join.breaksOff() || !isWritten) {
        return {};
    }
    const ProfilesByKey before = joinByProfileId(join.keysByProfileId(), join.profilesById());
    const ProfilesByKey after = applyFlags(join.flagsByKey(), before);
    std::vector<InspectedSystem> systems;
    for (auto entry = after.begin(); entry != after.end(); ++entry) {
        systems.push_back(
            {entry.key(), join.oldNameOf(entry.key()), before.value(entry.key()), entry.value()});
    }
    return systems;
}

Inspection::Advice adviceFor(const Inspection& inspection, bool breaksOff)
{
    if (breaksOff) {
        return Inspection::IMPOSSIBLE;
    }
    switch (*inspection.verdict) {
    case XmlVersions::XmlTooNew:
        return Inspection::TOO_NEW;
    case XmlVersions::XmlCurrent:
        return Inspection::CURRENT;
    case XmlVersions::XmlInvalid:
        return Inspection::TOO_OLD;
    case XmlVersions::XmlConvertible:
    case XmlVersions::XmlNoConversion:
        break;
    }
    return inspection.losses.empty() ? Inspection::CONVERT : Inspection::REVIEW;
}

void inspectSection(const OldSection& section, Inspection& inspection, FindingList& findings)
{
    const JoinInspection join(section);
    inspection.version = section.root.attribute(QStringLiteral("version"));
    inspection.verdict = XmlVersions::Verdict(section.root);
    inspection.channels = join.channelCount();
    inspection.configurations = static_cast<int>(section.configurations.size());
    inspection.profiles = static_cast<int>(section.profiles.size());
    inspection.systems = findSystems(section, join);

    inspectVersion(section.root, *inspection.verdict, findings);
    inspectPlaces(section, findings);
    join.inspect(findings);
    inspectContents(section, findings);
    inspection.losses = findings.losses();
    inspection.advice = adviceFor(inspection, join.breaksOff());
}

} // namespace

std::optional<Inspection> inspectDocument(const DocumentText& text, ReadError& error,
                                          FindingList::Wanted wanted)
{
    QDomDocument document;
    int line = 0;
    int column = 0;
    if (!document.setContent(text.text(), &error.text, &line, &column)) {
        error.kind = QStringLiteral("not-well-formed");
        error.line = text.lineOf(text.positionOf(line, column));
        if (!text.text().isEmpty() && !text.text().contains(QLatin1Char('<'))) {
            error.text += QStringLiteral("; there is no \"<\" in it (a file whose first line is one"
                                         " character long is read as UTF-16)");
        }
        return std::nullopt;
    }
    // The first one fills the tables that verdicts go by.
    static const XmlVersions VERSIONS;

    FindingList findings(document, text, wanted);
    inspectLineBreaks(text, document, findings);
    inspectCharacters(text, document, findings);
    Inspection inspection;
    const std::optional<OldSection> section = findOldSection(document);
    if (section) {
        inspectSection(*section, inspection, findings);
    } else {
        inspectRefused(document, findings);
        inspection.losses = findings.losses();
    }
    inspection.notes = findings.notes();
    return inspection;
}
