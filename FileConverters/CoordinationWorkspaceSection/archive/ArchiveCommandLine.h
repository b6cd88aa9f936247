#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/jobs/ArchiveSettings.h"

#include <QStringList>

/** What coordworkspace-convert-archive is asked to do. */
struct ArchiveCommandLine
{
    enum Task { CONVERT, SHOW_HELP, SHOW_VERSION, SHOW_SCHEMA };

    Task task = CONVERT;
    ArchiveSettings settings;
    bool forces = false;       ///< replaces what stands in a target's place
    bool isTrial = false;      ///< writes nothing but a page
    bool failsIfLossy = false; ///< sets the status for lossy documents
    QString page;              ///< a file for the report as a page, absolute; empty for none
    int jobs = 0;              ///< at the same time; 0 for as many as is usual where they run
    QString machines;          ///< the login file, absolute; empty for this machine only

    /**
     * Reads the arguments, the program's own name not among them.
     *
     * @return what is wrong with them; empty when nothing is.
     */
    QString parse(const QStringList& arguments);

    /** What --help shows. */
    static QString helpText();
};
