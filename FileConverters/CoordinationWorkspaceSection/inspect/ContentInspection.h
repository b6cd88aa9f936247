#pragma once

class FindingList;
class QDomElement;

/**
 * What a conversion drops inside single elements of the old layout, because no rule reads it or
 * because something else takes its place.
 */
namespace ContentInspection {

/** A child of "mic_channels". It stays as it is; only what is read twice is found. */
void inspectChannel(const QDomElement& channel, FindingList& findings);

/** A "compat_config" element. */
void inspectConfiguration(const QDomElement& configuration, FindingList& findings);

/** A "compat_profile" element, its name and id apart. */
void inspectProfile(const QDomElement& profile, FindingList& findings);

/** What stands in a container of configurations or profiles and is none of them. */
void inspectContainer(const QDomElement& container, FindingList& findings);

} // namespace ContentInspection
