#pragma once

#include <QByteArray>
#include <QString>

struct DocumentReport;
struct VerificationReport;

/**
 * Reports for programs: one JSON object (RFC 8259), in UTF-8, on one line that ends with a line
 * feed.
 *
 * The shape is a contract that the schema describes. Numbers never follow the locale.
 */
namespace ReportJson {

/** Changes only when a program that knows the number before could misread a report. */
constexpr int FORMAT = 1;

QByteArray of(const DocumentReport& report);
QByteArray of(const VerificationReport& report);

/** What is told about wrong usage. */
QByteArray ofUsageError(const QString& text);

} // namespace ReportJson
