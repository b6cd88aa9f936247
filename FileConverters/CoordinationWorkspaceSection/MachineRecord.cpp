#include "FileConverters/CoordinationWorkspaceSection/MachineRecord.h"

#include <QStringList>

namespace {

bool isOneOf(const QString& reason, const QStringList& reasons)
{
    return reasons.contains(reason);
}

bool mayBeWritten(const DocumentRecord& told, const PlannedDocument& document)
{
    const bool isCurrent = told.outcome == DocumentRecord::CURRENT;
    return told.reason.isEmpty() && told.target && !document.isBlocked &&
           (!isCurrent || told.target == told.source);
}

// For a reason that is the document's own.
bool mayBeLeftAlone(const DocumentRecord& told, const PlannedDocument& document,
                    const ArchiveSettings& settings)
{
    switch (told.outcome) {
    case DocumentRecord::LOSSY:
        return settings.onlyClean && told.reason == QLatin1String("not-clean");
    case DocumentRecord::REFUSED:
        return isOneOf(told.reason, {QStringLiteral("too-new"), QStringLiteral("no-workspace"),
                                     QStringLiteral("several-sections")}) ||
               (document.isBlocked && told.reason == QLatin1String("target-exists"));
    case DocumentRecord::FAILED:
        return isOneOf(told.reason,
                       {QStringLiteral("not-well-formed"), QStringLiteral("invalid-profile-id")});
    case DocumentRecord::CONVERTED:
    case DocumentRecord::CURRENT:
    case DocumentRecord::LIMIT:
        break;
    }
    return false;
}

} // namespace

bool MachineRecord::isAnswer(const DocumentRecord& told, const PlannedDocument& document,
                             const ArchiveSettings& settings)
{
    const bool isLossy = told.outcome == DocumentRecord::LOSSY;
    const bool isConverted = told.outcome == DocumentRecord::CONVERTED || isLossy;
    const bool isWritten =
        isLossy ? !settings.onlyClean : isConverted || told.outcome == DocumentRecord::CURRENT;
    const bool isVerified = isWritten && isConverted && settings.verifies;
    if (!told.source || told.isVerified != isVerified || told.losses.empty() == isLossy) {
        return false;
    }
    return isWritten ? mayBeWritten(told, document)
                     : !told.target && mayBeLeftAlone(told, document, settings);
}
