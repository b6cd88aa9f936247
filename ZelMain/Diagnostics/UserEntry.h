#pragma once

#include "ZelMain/Diagnostics/LogServiceInterface.h"
#include "ZelMain/Diagnostics/TimeText.h"

#include <QIODevice>
#include <QSharedPointer>
#include <QString>

namespace PkLogger {

/** One log user. Its place in the table is its number. */
struct UserEntry
{
    QSharedPointer<LoggerImpl> logger;
    QString name;
    QSharedPointer<QIODevice> device; ///< a private one; null for ordinary users
    LogService::OutFormatOptions options;
    bool needsExactTime = false; ///< see TimeText::needsExactMoments()
    TimeText timeText;           ///< for the lines on the private device; the writer's own
};

} // namespace PkLogger
