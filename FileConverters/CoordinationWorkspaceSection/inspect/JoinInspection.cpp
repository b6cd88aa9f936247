#include "FileConverters/CoordinationWorkspaceSection/inspect/JoinInspection.h"

#include "FileConverters/CoordinationWorkspaceSection/inspect/FindingList.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/TextLayout.h"

#include <QStringList>

#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include <algorithm>
#include <stdexcept>

using TextLayout::quoted;

namespace {

QString nameOf(const CompatSystemUniqueKey& key)
{
    QStringList filled;
    for (const std::string& field :
         {key.zone, key.series, key.band, key.txProfile, key.inclGroup}) {
        if (!field.empty()) {
            filled.append(QString(field.c_str()));
        }
    }
    return filled.isEmpty() ? QStringLiteral("without a name")
                            : quoted(filled.join(QStringLiteral(" / ")));
}

QString lineOf(const QDomElement& element, FindingList& findings)
{
    return QString::number(findings.places().of(element).line);
}

std::optional<PkCompatProfile> profileOf(const QDomElement& element)
{
    try {
        return ConversionSteps::readProfile(element);
    } catch (const std::runtime_error&) {
        return std::nullopt;
    }
}

// How the conversion writes the id of a profile; empty when there is none.
QString writtenIdOf(const std::optional<PkCompatProfile>& profile)
{
    return profile ? QString::fromStdString(boost::uuids::to_string(profile->id)) : QString();
}

// The UUID that a text stands for in the form of the profiles' own; empty when it is none.
QString uuidOf(const QString& text)
{
    const QByteArray latin = text.toLatin1();
    try {
        return QString::fromStdString(
            boost::uuids::to_string(boost::uuids::string_generator()(latin.begin(), latin.end())));
    } catch (const std::runtime_error&) {
        return {};
    }
}

} // namespace

JoinInspection::JoinInspection(const ConversionSteps::OldSection& section) : m_section(section)
{
    readAll();
    for (const ChannelElement& channel : m_channels) {
        m_channelOfId.insert(channel.channel.profileId, &channel);
    }
    for (const ChannelElement* channel : qAsConst(m_channelOfId)) {
        m_channelOfSystem.insert(channel->channel.key, channel);
    }
    for (const ConfigurationElement& configuration : m_configurations) {
        m_configurationOfSystem.insert(configuration.configuration.key, &configuration);
    }
    for (const ProfileElement& profile : m_profiles) {
        m_profileOfId.insert(profile.id, &profile);
        m_profileOfUuid.insert(profile.writtenId, &profile);
    }
}

void JoinInspection::readAll()
{
    for (QDomElement element = m_section.micChannels.firstChildElement(); !element.isNull();
         element = element.nextSiblingElement()) {
        m_channels.push_back({element, ConversionSteps::readChannel(element)});
    }
    for (const QDomElement& element : m_section.configurations) {
        m_configurations.push_back({element, ConversionSteps::readConfiguration(element)});
    }
    for (const QDomElement& element : m_section.profiles) {
        const std::optional<PkCompatProfile> profile = profileOf(element);
        m_profiles.push_back({element, element.attribute(QStringLiteral("id")),
                              element.attribute(QStringLiteral("name")), profile,
                              writtenIdOf(profile)});
    }
}

void JoinInspection::inspect(FindingList& findings) const
{
    inspectChannels(findings);
    inspectIds(findings);
    inspectConfigurations(findings);
    inspectSystems(findings);
    inspectProfiles(findings);
    inspectCounts(findings);
}

bool JoinInspection::breaksOff() const
{
    return std::any_of(m_profiles.begin(), m_profiles.end(),
                       [](const ProfileElement& profile) { return profile.writtenId.isEmpty(); });
}

QString JoinInspection::oldNameOf(const CompatSystemUniqueKey& system) const
{
    const ChannelElement* channel = m_channelOfSystem.value(system);
    const ProfileElement* profile =
        channel == nullptr ? nullptr : m_profileOfId.value(channel->channel.profileId);
    return profile == nullptr ? QString() : profile->name;
}

ConversionSteps::KeysByProfileId JoinInspection::keysByProfileId() const
{
    ConversionSteps::KeysByProfileId keys;
    for (auto entry = m_channelOfId.begin(); entry != m_channelOfId.end(); ++entry) {
        keys.insert(keys.cend(), entry.key(), entry.value()->channel.key);
    }
    return keys;
}

ConversionSteps::FlagsByKey JoinInspection::flagsByKey() const
{
    ConversionSteps::FlagsByKey flags;
    for (auto entry = m_configurationOfSystem.begin(); entry != m_configurationOfSystem.end();
         ++entry) {
        flags.insert(flags.cend(), entry.key(), entry.value()->configuration.flags);
    }
    return flags;
}

ConversionSteps::ProfilesById JoinInspection::profilesById() const
{
    ConversionSteps::ProfilesById profiles;
    for (auto entry = m_profileOfId.begin(); entry != m_profileOfId.end(); ++entry) {
        if (entry.value()->profile) {
            profiles.insert(profiles.cend(), entry.key(), *entry.value()->profile);
        }
    }
    return profiles;
}

void JoinInspection::inspectChannels(FindingList& findings) const
{
    for (const ChannelElement& channel : m_channels) {
        const ConversionSteps::Channel& read = channel.channel;
        if (read.profileId.isEmpty()) {
            findings.add(Finding::CHANNEL_WITHOUT_ID, channel.element,
                         QStringLiteral("The channel names no profile, so its system %1 gets none.")
                             .arg(nameOf(read.key)));
            continue;
        }
        const ChannelElement& last = *m_channelOfId.value(read.profileId);
        if (!(last.channel.key == read.key)) {
            findings.add(Finding::CHANNEL_REPLACED, channel.element,
                         QStringLiteral("The channel in line %1 names the same profile: its system"
                                        " %2 gets it, the system %3 does not.")
                             .arg(lineOf(last.element, findings), nameOf(last.channel.key),
                                  nameOf(read.key)));
        }
    }
}

QString JoinInspection::otherSpelling(const QString& id, FindingList& findings) const
{
    const QString uuid = uuidOf(id);
    if (uuid.isEmpty()) {
        return {};
    }
    const ProfileElement* profile = m_profileOfUuid.value(uuid);
    return profile == nullptr ? QString()
                              : QStringLiteral(" The one in line %1 has it in another spelling.")
                                    .arg(lineOf(profile->element, findings));
}

void JoinInspection::inspectIds(FindingList& findings) const
{
    for (auto entry = m_channelOfId.begin(); entry != m_channelOfId.end(); ++entry) {
        if (!entry.key().isEmpty() && !m_profileOfId.contains(entry.key())) {
            findings.add(Finding::ID_WITHOUT_PROFILE, entry.value()->element,
                         QStringLiteral("No profile has the id %1: defaults would take its place."
                                        "%2")
                             .arg(quoted(entry.key()), otherSpelling(entry.key(), findings)));
        }
    }
    QMap<CompatSystemUniqueKey, const ChannelElement*> earlier;
    for (const ChannelElement* channel : m_channelOfId) {
        const CompatSystemUniqueKey& key = channel->channel.key;
        const ChannelElement* replaced = earlier.value(key);
        if (replaced != nullptr) {
            findings.add(Finding::PROFILE_REPLACED, replaced->element,
                         QStringLiteral("The system %1 in line %2 cannot be told apart from %3: its"
                                        " profile %4 replaces %5.")
                             .arg(nameOf(key), lineOf(channel->element, findings),
                                  nameOf(replaced->channel.key), quoted(channel->channel.profileId),
                                  quoted(replaced->channel.profileId)));
        }
        earlier.insert(key, channel);
    }
}

void JoinInspection::inspectConfigurations(FindingList& findings) const
{
    QMap<CompatSystemUniqueKey, const ConfigurationElement*> earlier;
    for (const ConfigurationElement& configuration : m_configurations) {
        const CompatSystemUniqueKey& key = configuration.configuration.key;
        const ConfigurationElement* replaced = earlier.value(key);
        if (replaced != nullptr) {
            findings.add(Finding::CONFIGURATION_REPLACED, replaced->element,
                         QStringLiteral("The system %1 in line %2 cannot be told apart from %3: its"
                                        " configuration replaces this one.")
                             .arg(nameOf(key), lineOf(configuration.element, findings),
                                  nameOf(replaced->configuration.key)));
        }
        earlier.insert(key, &configuration);

        const ChannelElement* channel = m_channelOfSystem.value(key);
        if (channel == nullptr) {
            findings.add(Finding::CONFIGURATION_WITHOUT_PROFILE, configuration.element,
                         QStringLiteral("No channel leads from the system %1 to a profile: defaults"
                                        " would take its place.")
                             .arg(nameOf(key)));
        } else if (!(channel->channel.key == key)) {
            findings.add(Finding::SYSTEM_MISTAKEN, configuration.element,
                         QStringLiteral("The system %1 cannot be told apart from %2 in line %3 and"
                                        " gets its profile.")
                             .arg(nameOf(key), nameOf(channel->channel.key),
                                  lineOf(channel->element, findings)));
        }
    }
}

void JoinInspection::inspectSystems(FindingList& findings) const
{
    for (const ChannelElement* channel : m_channelOfSystem) {
        if (!m_configurationOfSystem.contains(channel->channel.key)) {
            findings.add(Finding::SYSTEM_WITHOUT_CONFIGURATION, channel->element,
                         QStringLiteral("The system %1 has no configuration: it does not reach the"
                                        " new element.")
                             .arg(nameOf(channel->channel.key)));
        }
    }
}

void JoinInspection::inspectProfiles(FindingList& findings) const
{
    for (const ProfileElement& profile : m_profiles) {
        const ProfileElement* last = m_profileOfId.value(profile.id);
        if (profile.writtenId.isEmpty()) {
            findings.add(Finding::INVALID_PROFILE_ID, profile.element,
                         QStringLiteral("The id %1 is no UUID: the conversion would break off.")
                             .arg(quoted(profile.id)));
        } else if (profile.writtenId != profile.id) {
            findings.addAttribute(Finding::PROFILE_ID_RESPELLED, profile.element,
                                  QStringLiteral("id"),
                                  QStringLiteral("%1 is written as %2.")
                                      .arg(quoted(profile.id), quoted(profile.writtenId)));
        }
        if (last != &profile) {
            findings.add(Finding::DUPLICATE_PROFILE_ID, profile.element,
                         QStringLiteral("The profile in line %1 has the same id and replaces it.")
                             .arg(lineOf(last->element, findings)));
        } else if (!m_channelOfId.contains(profile.id)) {
            findings.add(Finding::PROFILE_WITHOUT_CHANNEL, profile.element,
                         QStringLiteral("No channel names the profile %1: it does not reach the new"
                                        " element.")
                             .arg(quoted(profile.id)));
        }
        if (!profile.name.isEmpty() && ConversionSteps::newProfileName(profile.name).isEmpty()) {
            findings.addAttribute(Finding::PROFILE_NAME_EMPTIED, profile.element,
                                  QStringLiteral("name"),
                                  QStringLiteral("The name %1 is none of the old names and becomes"
                                                 " empty.")
                                      .arg(quoted(profile.name)));
        }
    }
}

void JoinInspection::inspectCounts(FindingList& findings) const
{
    const auto placeOr = [this](const QDomElement& container) {
        return container.isNull() ? m_section.root : container;
    };
    const auto systems = m_channelOfSystem.size();
    const auto configurations = m_configurationOfSystem.size();
    if (m_channelOfId.size() != m_profileOfId.size()) {
        findings.add(
            Finding::PROFILE_COUNT_DIFFERS, placeOr(m_section.micChannels),
            QStringLiteral("Each id counted once, the channels name %1 and the profiles %2:"
                           " as these are not as many, the settings come out empty.")
                .arg(QString::number(m_channelOfId.size()), QString::number(m_profileOfId.size())));
    } else if (systems != configurations) {
        findings.add(Finding::CONFIGURATION_COUNT_DIFFERS, placeOr(m_section.compatConfigs),
                     QStringLiteral("Each system counted once, the channels name %1 and the"
                                    " configurations %2: as these are not as many, the settings"
                                    " come out empty.")
                         .arg(QString::number(systems), QString::number(configurations)));
    }
}
