#pragma once

/**
 * What the process needs from its platform before it converts.
 *
 * The only place of the converter that knows one platform from another.
 */
namespace ProcessSetup {

/**
 * Lets the stack grow as far as the system allows.
 *
 * Documents are walked by recursion, so one of some hundred kilobytes that nests deeply needs more
 * than the usual 8 MB. Where stacks cannot be raised at run time the limit stays what it is.
 */
void raiseStackLimit();

/**
 * Makes a reader that went away and a file-size limit show as failed writes instead of ending the
 * process by a signal. Where there are no such signals they show that way already.
 */
void reportWriteFailuresAsErrors();

/**
 * Has freed memory merged at once instead of kept in small pieces.
 *
 * The conversion frees about half of a document in one go. Small pieces kept apart are merged again
 * and again meanwhile, which made a conversion of 10 000 systems take 1.5 times as long. Other
 * allocators than glibc's have no such pieces.
 */
void tuneAllocator();

} // namespace ProcessSetup
