#pragma once

#include <QString>
#include <QStringList>

/**
 * What a process sets up before it reads a document.
 *
 * The only place that knows one platform from another.
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
 * Keeps the places of standard streams that are closed: a file that is opened later would be given
 * one of them, and get what goes to that stream, or lose its own to it. They still cannot be read
 * or written. The caller must have opened nothing yet.
 */
void keepClosedStreamsClosed();

/**
 * Has freed memory merged at once instead of kept in small pieces.
 *
 * The conversion frees about half of a document in one go. Small pieces kept apart are merged again
 * and again meanwhile, which made a conversion of 10 000 systems take 1.5 times as long. Other
 * allocators than glibc's have no such pieces.
 */
void tuneAllocator();

/**
 * Makes the same document give the same bytes and the same silence everywhere, whatever the
 * environment says to Qt: no message of Qt's is shown or ends the run, hashes have a fixed seed,
 * and names and files are UTF-8.
 */
void shutOutTheEnvironment();

/** The arguments behind the program's own name, which are UTF-8 whatever the locale is. */
QStringList argumentsOf(int argc, char** argv);

/** Whether a person sees what goes to standard output. */
bool isOutputTerminal();

/** Whether a person sees what goes to standard error. */
bool isErrorTerminal();

/**
 * The file that a path leads to from the folder of this program's own file. Programs that belong
 * together find each other by it: they lie in the same way where they are built, where they are
 * installed, and where they are moved then.
 */
QString fromThisProgram(const char* path);

} // namespace ProcessSetup
