#include "FileConverters/CoordinationWorkspaceSection/archive/machines/MachineRecord.h"

#include <QStringList>

namespace {

bool isOneOf(const QString& reason, const QStringList& reasons)
{
    return reasons.contains(reason);
}

// What is written loses something exactly when the outcome says so, and is verified when asked for.
bool mayBeWritten(const DocumentRecord& told, const PlannedDocument& document,
                  const ArchiveSettings& settings)
{
    const bool isLossy = told.outcome == DocumentRecord::LOSSY;
    const bool isCurrent = told.outcome == DocumentRecord::CURRENT;
    return told.target && told.reason.isEmpty() && !document.isBlocked &&
           told.losses.empty() != isLossy && told.isVerified == (settings.verifies && !isCurrent) &&
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
    const bool isWritten = told.outcome == DocumentRecord::CONVERTED ||
                           told.outcome == DocumentRecord::CURRENT ||
                           (told.outcome == DocumentRecord::LOSSY && !settings.onlyClean);
    if (!told.source) {
        return false;
    }
    return isWritten ? mayBeWritten(told, document, settings)
                     : !told.target && !told.isVerified && mayBeLeftAlone(told, document, settings);
}
