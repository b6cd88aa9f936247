#pragma once

#include "FileConverters/CoordinationWorkspaceSection/ConversionSteps.h"

#include <QDomElement>
#include <QString>

#include <optional>
#include <vector>

class FindingList;

/**
 * What gets lost when channels, configurations and profiles are joined into systems.
 *
 * Each of the three is read by the conversion's own step, element by element. What the joins make
 * of them is looked at without joining, so that the reasons are told also when nothing is joined.
 */
class JoinInspection
{
public:
    /** @param section  must outlive this. */
    explicit JoinInspection(const ConversionSteps::OldSection& section);

    /** Adds all that is lost, the names of profiles included. */
    void inspect(FindingList& findings) const;

    int channelCount() const { return static_cast<int>(m_channels.size()); }

    /** Whether a profile has an id that ends the conversion. */
    bool breaksOff() const;

    /**
     * The old name of the profile that the system gets; empty when defaults take its place.
     */
    QString oldNameOf(const CompatSystemUniqueKey& system) const;

    /**
     * What the conversion's readers of channels, configurations and profiles give for the section.
     *
     * Profiles of an id that ends the conversion are left out.
     */
    ConversionSteps::KeysByProfileId keysByProfileId() const;
    ConversionSteps::FlagsByKey flagsByKey() const;
    ConversionSteps::ProfilesById profilesById() const;

private:
    struct ChannelElement
    {
        QDomElement element;
        ConversionSteps::Channel channel;
    };
    struct ConfigurationElement
    {
        QDomElement element;
        ConversionSteps::Configuration configuration;
    };
    struct ProfileElement
    {
        QDomElement element;
        QString id;
        QString name;
        std::optional<PkCompatProfile> profile; ///< none when the id is no UUID
        QString writtenId;                      ///< empty then
    };

    void readAll();
    void inspectChannels(FindingList& findings) const;
    void inspectIds(FindingList& findings) const;
    void inspectConfigurations(FindingList& findings) const;
    void inspectSystems(FindingList& findings) const;
    void inspectProfiles(FindingList& findings) const;
    void inspectCounts(FindingList& findings) const;
    QString otherSpelling(const QString& id, FindingList& findings) const;

    const ConversionSteps::OldSection& m_section;
    std::vector<ChannelElement> m_channels;
    std::vector<ConfigurationElement> m_configurations;
    std::vector<ProfileElement> m_profiles;

    // The last element of each counts; systems are told apart as the conversion does.
    QMap<QString, const ChannelElement*> m_channelOfId;
    QMap<QString, const ProfileElement*> m_profileOfId;
    QMap<QString, const ProfileElement*> m_profileOfUuid; // by the written id
    QMap<CompatSystemUniqueKey, const ChannelElement*> m_channelOfSystem;
    QMap<CompatSystemUniqueKey, const ConfigurationElement*> m_configurationOfSystem;
};
