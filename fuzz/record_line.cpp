// Hunts lines that are read as the record of a document and then told otherwise. What another
// machine prints is read so.
//
// The input is the line.

#include "fuzz/FuzzTarget.h"

#include "FileConverters/CoordinationWorkspaceSection/archive/report/DocumentRecord.h"

#include <QJsonDocument>
#include <QJsonObject>

using FuzzTarget::require;
using FuzzTarget::requireEqual;

// Qt's reader loses a few hundred bytes with a text that goes on behind its end, again and again.
// The name is the sanitizer's.
extern "C" const char* __asan_default_options() // NOLINT(bugprone-reserved-identifier)
{
    return "detect_leaks=0";
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzTarget::setUp();
    const QByteArray line(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const auto record = DocumentRecord::fromLine(line);
    if (!record) {
        return 0;
    }
    const QByteArray told = record->toLine();
    require(told.count('\n') == 1 && told.endsWith('\n'), "a record stands on one line");
    const auto again = DocumentRecord::fromLine(told);
    require(again.has_value(), "what is told is a record");
    requireEqual(again->toLine(), told, "a record that is read again is the same");
    const QJsonObject object = QJsonDocument::fromJson(told).object();
    requireEqual(object["outcome"].toString(), DocumentRecord::nameOf(record->outcome),
                 "another reader of JSON finds the outcome");
    requireEqual(object["path"].toString(), record->path, "another reader of JSON finds the path");
    return 0;
}
