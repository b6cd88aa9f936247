#pragma once

#include "FileConverters/CoordinationWorkspaceSection/inspect/Inspection.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/Verification.h"

#include <QString>

#include <variant>

/** What is told about one document. */
struct DocumentReport
{
    QString document; ///< as named on the command line; "-" for standard input
    std::variant<ReadError, Inspection> result;
};

/** What is told about a document and its conversion. */
struct VerificationReport
{
    QString before;
    QString after;
    std::variant<ReadError, Verification> result;
};

/** Nothing is lost, or the conversion is right. */
constexpr int STATUS_GOOD = 0;
/** Something cannot be read or converted. */
constexpr int STATUS_IMPOSSIBLE = 1;
/** Something is lost, or the conversion is wrong. */
constexpr int STATUS_LOSS = 2;
/** Wrong usage, as EX_USAGE of sysexits.h. */
constexpr int STATUS_USAGE = 64;

int statusOf(const DocumentReport& report);
int statusOf(const VerificationReport& report);

/** The worse of two: impossible over loss over good. */
int worseStatus(int one, int other);
