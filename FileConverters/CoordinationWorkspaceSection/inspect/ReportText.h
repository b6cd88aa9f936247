#pragma once

#include <QString>

struct DocumentReport;
struct VerificationReport;

/** Reports for people, in lines that end with a line feed. */
namespace ReportText {

/** @param isColoured  with colours, as escape sequences of ECMA-48. */
QString of(const DocumentReport& report, bool isColoured);
QString of(const VerificationReport& report, bool isColoured);

} // namespace ReportText
