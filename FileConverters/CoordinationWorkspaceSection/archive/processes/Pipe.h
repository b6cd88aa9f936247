#pragma once

#include "FileConverters/CoordinationWorkspaceSection/archive/files/Descriptor.h"

/** A pipe, which no program that this process starts gets on its own. */
struct Pipe
{
    /** @throws std::system_error when the system makes none. */
    Pipe();

    Descriptor readEnd;
    Descriptor writeEnd;
};
