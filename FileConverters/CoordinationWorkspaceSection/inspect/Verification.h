#pragma once

#include "FileConverters/CoordinationWorkspaceSection/inspect/DocumentPlaces.h"

#include <QString>

#include <optional>
#include <vector>

class DocumentText;
struct ReadError;

/** Something in a converted document that is not as the conversion makes it. */
struct Difference
{
    enum Kind {
        VERSION,   ///< the version of the section
        SETTINGS,  ///< the new element and what it holds
        CONTAINER, ///< a container of the old layout
        CONTENT,   ///< anything else, which a conversion leaves alone
    };

    Kind kind;
    Place place;  ///< in the converted document; of what is missing, where it should be
    QString text; ///< a sentence for people

    /** The kind's name in JSON. */
    static QString nameOf(Kind kind);
};

/** How a converted document compares with what the conversion makes of the document before. */
struct Verification
{
    std::vector<Difference> differences; ///< by line; none when the conversion is right
};

/**
 * Compares a converted document with the one before.
 *
 * What is right is worked out by a reading of its own, which shares nothing with the conversion, so
 * that a mistake of the one shows against the other. Layout and the order of attributes mean
 * nothing; all else has to be as Qt reads it after it has printed it.
 * @param before  as the converter read it.
 * @param error  told why there is no result.
 * @return none when a document is not well-formed, or the one before cannot be converted.
 */
std::optional<Verification> verifyConversion(const DocumentText& before, const DocumentText& after,
                                             ReadError& error);
