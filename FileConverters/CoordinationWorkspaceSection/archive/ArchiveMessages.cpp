#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveMessages.h"

#include "FileConverters/CoordinationWorkspaceSection/Utf8Output.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/TextLayout.h"

#include <cerrno>
#include <cstring>
#include <iostream>

void ArchiveMessages::say(const QString& text)
{
    // Names of files are in it, and a name may hold what a terminal obeys.
    writeUtf8(
        QStringLiteral("coordworkspace-convert-archive: %1\n").arg(TextLayout::printable(text)),
        std::cerr);
}

ArchiveStatus ArchiveMessages::sayCannotWrite(const QString& what)
{
    say(QStringLiteral("%1 cannot be written: %2")
            .arg(what, QString::fromLocal8Bit(std::strerror(errno))));
    return ARCHIVE_NOT_WRITTEN;
}

ArchiveStatus ArchiveMessages::sayStopped()
{
    say(QStringLiteral("stopped; the next run goes on from here"));
    return ARCHIVE_STOPPED;
}
