#pragma once

#include "ZelMain/FrequencyCompatibility/shared/CompatKey.h"
#include "ZelMain/FrequencyCompatibility/shared/PkCompatProfile.h"

#include <QDomElement>
#include <QFlags>
#include <QMap>
#include <QString>

#include <optional>
#include <vector>

/** Which of a profile's spacings a compatibility configuration keeps. */
enum CompatConfigFlag {
    KEEP_CH_CH = 2, ///< no document can clear it
    KEEP_IMD_2T3O = 4,
    KEEP_IMD_2T5O = 8,
    KEEP_IMD_2T7O = 16,
    KEEP_IMD_2T9O = 32,
    KEEP_IMD_3T3O = 64,
};
Q_DECLARE_FLAGS(CompatConfigFlags, CompatConfigFlag)
Q_DECLARE_OPERATORS_FOR_FLAGS(CompatConfigFlags)

/**
 * The steps of the conversion, on values: they show what a conversion does without doing it.
 *
 * None of them changes a document. The order of use is findOldSection(), the three readers, the
 * two joins.
 */
namespace ConversionSteps {

using KeysByProfileId = QMap<QString, CompatSystemUniqueKey>;
using FlagsByKey = QMap<CompatSystemUniqueKey, CompatConfigFlags>;
using ProfilesById = QMap<QString, PkCompatProfile>;
using ProfilesByKey = QMap<CompatSystemUniqueKey, PkCompatProfile>;

/** Where an older document keeps its compatibility data. An absent place is a null element. */
struct OldSection
{
    QDomElement root;

    // The first of its name below the root, at any depth.
    QDomElement micChannels;
    QDomElement compatProfiles;
    QDomElement compatLevels;
    QDomElement compatConfigs;

    // All of the name below the root in document order, wherever they stand.
    std::vector<QDomElement> configurations;
    std::vector<QDomElement> profiles;
};

/** What one child element of "mic_channels" says; the profile id is null when it says none. */
struct Channel
{
    QString profileId;
    CompatSystemUniqueKey key;
};

/** What one "compat_config" element says. */
struct Configuration
{
    CompatSystemUniqueKey key;
    CompatConfigFlags flags;
};

/** The places of the document's section; none when there is not exactly one section. */
std::optional<OldSection> findOldSection(QDomDocument const& document);

/** Of repeated elements the last one counts, key field by key field. */
Channel readChannel(QDomElement const& channel);

/** Key fields as in readChannel(); a flag that is 0 anywhere is switched off. */
Configuration readConfiguration(QDomElement const& configuration);

/** Whether an element of this name in "compat_flags" is read. */
bool isFlag(QString const& name);

/**
 * The profile with its new name.
 *
 * @throws std::runtime_error when the "id" is missing or no UUID.
 */
PkCompatProfile readProfile(QDomElement const& profile);

/**
 * The system key that each profile id of the channels stands for.
 *
 * A channel without profile id counts under the null id; of channels with the same id the last one
 * counts.
 */
KeysByProfileId readChannels(QDomElement const& micChannels);

/** The flags of each system; of configurations with keys of the same rank the last one counts. */
FlagsByKey readConfigurations(std::vector<QDomElement> const& configurations);

/**
 * The profiles under the text of their "id", with their new names; of equal ids the last counts.
 *
 * @throws std::runtime_error when an "id" is missing or no UUID.
 */
ProfilesById readProfiles(std::vector<QDomElement> const& profiles);

/** The new name of a profile: empty unless @p oldName is one of the old names (case counts). */
QString newProfileName(QString const& oldName);

/**
 * The profile of each system. Empty unless there are as many ids as profiles.
 *
 * An id without a profile gets a default profile; of ids with keys of the same rank the greatest
 * counts.
 */
ProfilesByKey joinByProfileId(KeysByProfileId const& keys, ProfilesById const& profiles);

/**
 * The profile of each configured system, with the spacings that its flags do not keep set to 0.
 * Empty unless there are as many configurations as profiles.
 *
 * A configuration without a profile gets a default profile.
 */
ProfilesByKey applyFlags(FlagsByKey const& flags, ProfilesByKey const& profiles);

} // namespace ConversionSteps
