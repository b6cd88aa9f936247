#pragma once

#include "FileConverters/CoordinationWorkspaceSection/inspect/FindingList.h"
#include "ZelMain/FrequencyCompatibility/shared/CompatKey.h"
#include "ZelMain/FrequencyCompatibility/shared/PkCompatProfile.h"
#include "ZelMain/ImportExport/XmlVersions.h"

#include <QString>

#include <optional>
#include <vector>

class DocumentText;

/** One system that will stand in the new element. */
struct InspectedSystem
{
    CompatSystemUniqueKey key;
    QString oldName;        ///< of the profile; empty when defaults take its place
    PkCompatProfile before; ///< as it is in the document, with its new name
    PkCompatProfile after;  ///< with the spacings that are switched off at 0
};

/** What the conversion of one document would do. */
struct Inspection
{
    /** What to do about the document; the numbers rank them. */
    enum Advice {
        CONVERT,    ///< nothing is lost
        REVIEW,     ///< it converts, and something is lost
        TOO_OLD,    ///< older than what is convertible
        CURRENT,    ///< converting it again would destroy its settings
        TOO_NEW,    ///< newer than this software knows
        IMPOSSIBLE, ///< the converter refuses it, or breaks off
    };

    Advice advice = IMPOSSIBLE;
    QString version; ///< the text of the section's attribute; null when it has none
    std::optional<XmlVersions::XmlValidState> verdict; ///< none when there is not one section
    int channels = 0;
    int configurations = 0;
    int profiles = 0;
    std::vector<InspectedSystem> systems; ///< in the order of the new element
    Findings losses;                      ///< by line
    Findings notes;                       ///< what goes or stays by design, where wanted; by line
};

/** Why a document could not be inspected, or a conversion not be verified. */
struct ReadError
{
    QString kind; ///< "not-readable", "not-well-formed" or "not-convertible"
    QString text; ///< for people
    int line = 0; ///< where the parser stopped; 0 when it did not start
};

/**
 * Tells what a conversion of the document would do, by the conversion's own steps.
 *
 * @param error   told why there is no result.
 * @param wanted  whether the notes are looked for as well.
 * @return none when the text is not well-formed.
 */
std::optional<Inspection>
inspectDocument(const DocumentText& text, ReadError& error,
                FindingList::Wanted wanted = FindingList::LOSSES_AND_NOTES);
