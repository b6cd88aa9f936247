#pragma once

#include <QString>

/** What a login file of GNU Parallel's names: a machine a line, with "JOBS/" before it or without.
 */
struct LoginFile
{
    int machines = 0;        ///< this one among them, when it is named
    bool namesOther = false; ///< than this machine
    int jobsHere = 0;        ///< at the same time on this machine; 0 when that is not told

    /** @return one without machines when the file cannot be read. */
    static LoginFile read(const QString& file);
};
