#include "FileConverters/CoordinationWorkspaceSection/ConversionSteps.h"

#include "FileConverters/CoordinationWorkspaceSection/CoordWorkSpaceSectionConverter0_3.h"
#include "ZelMain/FrequencyCompatibility/QtPkCompatProfile.h"

#include <QDomDocument>

#include <algorithm>
#include <array>

namespace {

const QMap<QString, QString> ProfileNameConversionTable = {
    {QStringLiteral("robust"), QStringLiteral("Robust")},
    {QStringLiteral("median"), QStringLiteral("Standard")},
    {QStringLiteral("quantity"), QStringLiteral("More Frequencies")},
};

const CompatConfigFlags ALL_FLAGS =
    KEEP_CH_CH | KEEP_IMD_2T3O | KEEP_IMD_2T5O | KEEP_IMD_2T7O | KEEP_IMD_2T9O | KEEP_IMD_3T3O;

struct SpacingFlag
{
    CompatConfigFlag flag;
    char const* element; // that clears the flag
    int PkCompatProfile::*spacing;
};

// The channel-to-channel spacing has no element: every system needs it, so no document can switch
// it off.
constexpr std::array<SpacingFlag, 6> SPACING_FLAGS = {{
    {KEEP_CH_CH, nullptr, &PkCompatProfile::chCh},
    {KEEP_IMD_2T3O, "imd_2t3o", &PkCompatProfile::imd2t3o},
    {KEEP_IMD_2T5O, "imd_2t5o", &PkCompatProfile::imd2t5o},
    {KEEP_IMD_2T7O, "imd_2t7o", &PkCompatProfile::imd2t7o},
    {KEEP_IMD_2T9O, "imd_2t9o", &PkCompatProfile::imd2t9o},
    {KEEP_IMD_3T3O, "imd_3t3o", &PkCompatProfile::imd3t3o},
}};

// Finds the section's places in one walk, in document order, instead of a search for each name:
// the walk is a good part of what a conversion adds to reading and printing a document.
class PlaceFinder
{
public:
    void search(QDomNode const& parent, bool inSection)
    {
        for (QDomElement child = parent.firstChildElement(); !child.isNull();
             child = child.nextSiblingElement()) {
            const QString name = child.tagName();
            const bool isSection = name == QLatin1String("coordinated_data_root");
            if (isSection) {
                ++m_sections;
                m_found.root = child;
            } else if (inSection) {
                note(child, name);
            }
            search(child, inSection || isSection);
        }
    }

    std::optional<ConversionSteps::OldSection> found() const
    {
        return m_sections == 1 ? std::make_optional(m_found) : std::nullopt;
    }

private:
    void note(QDomElement const& element, QString const& name)
    {
        if (name == QLatin1String("compat_config")) {
            m_found.configurations.push_back(element);
        } else if (name == QLatin1String("compat_profile")) {
            m_found.profiles.push_back(element);
        } else if (name == QLatin1String("mic_channels")) {
            noteFirst(m_found.micChannels, element);
        } else if (name == QLatin1String("compat_profiles")) {
            noteFirst(m_found.compatProfiles, element);
        } else if (name == QLatin1String("compatibility_levels")) {
            noteFirst(m_found.compatLevels, element);
        } else if (name == QLatin1String("compat_configs")) {
            noteFirst(m_found.compatConfigs, element);
        }
    }

    static void noteFirst(QDomElement& place, QDomElement const& element)
    {
        if (place.isNull()) {
            place = element;
        }
    }

    ConversionSteps::OldSection m_found;
    int m_sections = 0;
};

void clearSwitchedOff(QDomElement const& compatFlags, CompatConfigFlags& flags)
{
    for (QDomElement child = compatFlags.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString name = child.tagName();
        for (SpacingFlag const& spacing : SPACING_FLAGS) {
            if (spacing.element != nullptr && name == QLatin1String(spacing.element) &&
                child.text().toInt() == 0) {
                flags &= ~CompatConfigFlags(spacing.flag);
            }
        }
    }
}

// The value of a key, a default one if the map does not have it. Keys must come in ascending order:
// the search goes on where the last one ended, which takes a tenth of the comparisons of 10 000
// separate searches.
template <typename KEY, typename VALUE>
class AscendingSearch
{
public:
    explicit AscendingSearch(QMap<KEY, VALUE> const& map) : m_next(map.begin()), m_end(map.end()) {}

    VALUE value(KEY const& key)
    {
        while (m_next != m_end && m_next.key() < key) {
            ++m_next;
        }
        const bool isFound = m_next != m_end && !(key < m_next.key());
        return isFound ? m_next.value() : VALUE();
    }

private:
    typename QMap<KEY, VALUE>::const_iterator m_next;
    const typename QMap<KEY, VALUE>::const_iterator m_end;
};

} // namespace

std::optional<ConversionSteps::OldSection>
ConversionSteps::findOldSection(QDomDocument const& document)
{
    PlaceFinder finder;
    finder.search(document, false);
    return finder.found();
}

ConversionSteps::Channel ConversionSteps::readChannel(QDomElement const& channel)
{
    Channel read;
    for (QDomElement child = channel.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString name = child.tagName();
        if (name == QLatin1String("compat_key")) {
            CoordWorkSpaceSectionConverter0_3::CompatKeyParser(child, read.key);
        } else if (name == QLatin1String("compat_prof_id")) {
            read.profileId = child.text();
        }
    }
    return read;
}

ConversionSteps::KeysByProfileId ConversionSteps::readChannels(QDomElement const& micChannels)
{
    KeysByProfileId keys;
    for (QDomElement element = micChannels.firstChildElement(); !element.isNull();
         element = element.nextSiblingElement()) {
        const Channel channel = readChannel(element);
        keys.insert(channel.profileId, channel.key);
    }
    return keys;
}

ConversionSteps::Configuration ConversionSteps::readConfiguration(QDomElement const& configuration)
{
    Configuration read{CompatSystemUniqueKey(), ALL_FLAGS};
    for (QDomElement child = configuration.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        const QString name = child.tagName();
        if (name == QLatin1String("profile")) {
            CoordWorkSpaceSectionConverter0_3::CompatKeyParser(child, read.key);
        } else if (name == QLatin1String("compat_flags")) {
            clearSwitchedOff(child, read.flags);
        }
    }
    return read;
}

ConversionSteps::FlagsByKey
ConversionSteps::readConfigurations(std::vector<QDomElement> const& configurations)
{
    FlagsByKey flagsByKey;
    for (QDomElement const& element : configurations) {
        const Configuration configuration = readConfiguration(element);
        flagsByKey.insert(configuration.key, configuration.flags);
    }
    return flagsByKey;
}

PkCompatProfile ConversionSteps::readProfile(QDomElement const& profile)
{
    QtPkCompatProfile read;
    read.Import(profile);
    read.name = newProfileName(profile.attribute(QStringLiteral("name"))).toStdString();
    return read;
}

ConversionSteps::ProfilesById
ConversionSteps::readProfiles(std::vector<QDomElement> const& profiles)
{
    ProfilesById profilesById;
    for (QDomElement const& element : profiles) {
        profilesById.insert(element.attribute(QStringLiteral("id")), readProfile(element));
    }
    return profilesById;
}

bool ConversionSteps::isFlag(QString const& name)
{
    return std::any_of(SPACING_FLAGS.begin(), SPACING_FLAGS.end(), [&](SpacingFlag const& spacing) {
        return spacing.element != nullptr && name == QLatin1String(spacing.element);
    });
}

QString ConversionSteps::newProfileName(QString const& oldName)
{
    return ProfileNameConversionTable.value(oldName);
}

ConversionSteps::ProfilesByKey ConversionSteps::joinByProfileId(KeysByProfileId const& keys,
                                                                ProfilesById const& profiles)
{
    ProfilesByKey joined;
    if (keys.size() == profiles.size()) {
        AscendingSearch search(profiles);
        for (auto entry = keys.begin(); entry != keys.end(); ++entry) {
            joined.insert(entry.value(), search.value(entry.key()));
        }
    }
    return joined;
}

ConversionSteps::ProfilesByKey ConversionSteps::applyFlags(FlagsByKey const& flags,
                                                           ProfilesByKey const& profiles)
{
    ProfilesByKey applied;
    if (flags.size() == profiles.size()) {
        AscendingSearch search(profiles);
        for (auto entry = flags.begin(); entry != flags.end(); ++entry) {
            PkCompatProfile profile = search.value(entry.key());
            for (SpacingFlag const& spacing : SPACING_FLAGS) {
                if (!entry.value().testFlag(spacing.flag)) {
                    profile.*spacing.spacing = 0;
                }
            }
            applied.insert(applied.cend(), entry.key(), profile);
        }
    }
    return applied;
}
