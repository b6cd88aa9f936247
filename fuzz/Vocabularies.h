#pragma once

struct Vocabulary;

/** That of the program's target; each target that reads documents defines it. */
const Vocabulary& vocabularyOfTarget();

/** Vocabularies of the documents that the project reads. */
namespace Vocabularies {

/** Its composite adds a system with channel, configuration and profile. */
const Vocabulary& workspace();
const Vocabulary& compatProfile();
const Vocabulary& tuningCapability();
const Vocabulary& sections();

} // namespace Vocabularies
