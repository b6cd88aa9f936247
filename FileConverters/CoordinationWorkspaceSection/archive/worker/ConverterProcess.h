#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/processes/ProcessLimits.h"

#include <QString>

/** One run of the converter on one document, within limits. */
namespace ConverterProcess {

enum Outcome {
    CONVERTED,   ///< the output is whole
    REFUSED,     ///< not one section; nothing is written
    UNREADABLE,  ///< the document was not read, or the output not written
    OUT_OF_TIME, ///< ended by us
    BROKE_OFF,   ///< out of memory, or a profile id that is no UUID
    NOT_STARTED, ///< no such program
};

/**
 * @param output  a file that exists; gets what the converter writes.
 * @throws std::system_error when the system makes no process.
 */
Outcome convert(const QString& converter, const QString& document, const QString& output,
                const ProcessLimits& limits);

} // namespace ConverterProcess
