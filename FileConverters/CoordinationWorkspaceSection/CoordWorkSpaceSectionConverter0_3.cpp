#include "FileConverters/CoordinationWorkspaceSection/CoordWorkSpaceSectionConverter0_3.h"

#include "FileConverters/CoordinationWorkspaceSection/ConversionSteps.h"
#include "ZelMain/FrequencyCompatibility/QDomDocHelper.h"
#include "ZelMain/FrequencyCompatibility/QtPkCompatProfile.h"
#include "ZelMain/ImportExport/XmlVersions.h"

#include <QDomDocument>
#include <QFile>
#include <QTextCodec>
#include <QTextStream>

using namespace ConversionSteps;

namespace {

// The first line of UTF-16 text without a byte-order mark, read as 8-bit text, ends at the high
// byte of its first character. What it cannot tell apart is kept: a line of one character counts
// as UTF-16 too, and big-endian text, whose first byte is already zero, does not.
bool looksLikeUtf16(const QString& firstLine)
{
    return QByteArray(firstLine.toStdString().c_str()).size() == 1;
}

// Whether an element goes because it stands right in a container that is removed.
bool goesWith(const QDomElement& container, const QDomElement& root, const QDomElement& element)
{
    return !container.isNull() && element.parentNode() == container &&
           container.parentNode() == root;
}

// "name" goes and comes again, so that it is the last of the attributes set.
void renameProfile(QDomElement element)
{
    const QString name = newProfileName(element.attribute(QStringLiteral("name")));
    element.removeAttribute(QStringLiteral("name"));
    element.setAttribute(QStringLiteral("name"), name);
}

// The working maps are gone when the new element is made: they are a good part of the memory.
ProfilesByKey readSettings(const OldSection& section)
{
    const ProfilesByKey profiles =
        joinByProfileId(readChannels(section.micChannels), readProfiles(section.profiles));
    return applyFlags(readConfigurations(section.configurations), profiles);
}

void appendKeyField(QDomDocument& document, const QString& name, const std::string& value,
                    QDomElement& parent)
{
    QDomDocHelper::CreateChildNode(document, name, QString(value.c_str()), parent);
}

} // namespace

void CoordWorkSpaceSectionConverter0_3::ReadInputFile(const QString& path, QString& text)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return;
    }
    // Read at one go: a pipe has no beginning to go back to.
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        return; // half a document must not pass for a whole one
    }
    QTextStream stream(bytes);
    if (looksLikeUtf16(stream.readLine())) {
        stream.setAutoDetectUnicode(false);
        stream.setCodec(QTextCodec::codecForName("UTF-16"));
    }
    stream.seek(0);
    text = stream.readAll();
}

bool CoordWorkSpaceSectionConverter0_3::Convert(QDomDocument& document)
{
    static const QString CURR_VERSION = QStringLiteral("0.3");

    std::optional<OldSection> section = findOldSection(document);
    if (!section) {
        return false;
    }
    // All is read before anything is changed: reading a profile may throw.
    const ProfilesByKey settings = readSettings(*section);

    QDomElement root = section->root;
    root.setAttribute(QStringLiteral("version"), CURR_VERSION);
    // Profiles outside of the removed container stay, and they stay renamed.
    for (const QDomElement& profile : section->profiles) {
        if (!goesWith(section->compatProfiles, root, profile)) {
            renameProfile(profile);
        }
    }
    QDomElement micChannels = section->micChannels;
    root.removeChild(section->compatProfiles);
    root.removeChild(section->compatLevels);
    root.removeChild(section->compatConfigs);
    section.reset();
    root.insertAfter(CreateCompatProfileSettingsElem(document, settings), micChannels);
    return true;
}

void CoordWorkSpaceSectionConverter0_3::CompatKeyParser(const QDomElement& element,
                                                        CompatSystemUniqueKey& key)
{
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString name = child.nodeName();
        if (name == QLatin1String("zone")) {
            key.zone = child.text().toStdString();
        } else if (name == QLatin1String("series")) {
            key.series = child.text().toStdString();
        } else if (name == QLatin1String("band")) {
            key.band = child.text().toStdString();
        } else if (name == QLatin1String("tx_profile") || name == QLatin1String("mode")) {
            key.txProfile = child.text().toStdString();
        } else if (name == QLatin1String("incl_group")) {
            key.inclGroup = child.text().toStdString();
        }
    }
}

QDomElement CoordWorkSpaceSectionConverter0_3::CreateCompatProfileSettingsElem(
    QDomDocument& document, const QMap<CompatSystemUniqueKey, PkCompatProfile>& profiles)
{
    QDomElement settings = document.createElement(QStringLiteral("compatibility_profile_settings"));
    settings.setAttribute(QStringLiteral("version"), XmlVersions::GetXmlVersionString(
                                                         XmlVersions::XML_VERSION_COMPAT_PROFILES));
    settings.setAttribute(QStringLiteral("count"), QStringLiteral("%1").arg(profiles.size()));
    for (auto entry = profiles.begin(); entry != profiles.end(); ++entry) {
        const CompatSystemUniqueKey& key = entry.key();
        QDomElement profile = document.createElement(QStringLiteral("profile"));
        appendKeyField(document, QStringLiteral("band"), key.band, profile);
        appendKeyField(document, QStringLiteral("series"), key.series, profile);
        appendKeyField(document, QStringLiteral("tx_profile"), key.txProfile, profile);
        appendKeyField(document, QStringLiteral("zone"), key.zone, profile);
        appendKeyField(document, QStringLiteral("incl_group"), key.inclGroup, profile);
        QtPkCompatProfile(entry.value()).Export(profile);
        settings.appendChild(profile);
    }
    return settings;
}
