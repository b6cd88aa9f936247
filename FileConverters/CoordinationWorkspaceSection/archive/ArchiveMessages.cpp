#include "FileConverters/CoordinationWorkspaceSection/archive/ArchiveMessages.h"

#include "FileConverters/CoordinationWorkspaceSection/Utf8Output.h"
#include "FileConverters/CoordinationWorkspaceSection/inspect/TextLayout.h"

#include <cerrno>
#include <cstring>
#include <iostream>

namespace {

ArchiveStatus sayCannot(const char* verb, const QString& what)
{
    const QString reason = QString::fromLocal8Bit(std::strerror(errno));
    ArchiveMessages::say(
        QStringLiteral("%1 cannot be %2: %3").arg(what, QLatin1String(verb), reason));
    return ARCHIVE_NOT_WRITTEN;
}

} // namespace

void ArchiveMessages::say(const QString& text)
{
    // Names of files are in it, and a name may hold what a terminal obeys.
    writeUtf8(
        QStringLiteral("coordworkspace-convert-archive: %1\n").arg(TextLayout::printable(text)),
        std::cerr);
}

ArchiveStatus ArchiveMessages::sayCannotRead(const QString& what)
{
    return sayCannot("read", what);
}

ArchiveStatus ArchiveMessages::sayCannotWrite(const QString& what)
{
    return sayCannot("written", what);
}

ArchiveStatus ArchiveMessages::sayStopped()
{
    say(QStringLiteral("stopped; the next run goes on from here"));
    return ARCHIVE_STOPPED;
}
