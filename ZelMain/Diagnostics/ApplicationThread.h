#pragma once

class QThread;

namespace PkLogger {

/**
 * Keeps track of the application object's thread from now on, for isApplicationThread().
 *
 * The application object itself cannot be asked by other threads: main destroys it while they run.
 */
void watchApplicationThread();

/** Whether @p thread is the thread of the application object; false while there is none. */
bool isApplicationThread(const QThread* thread);

} // namespace PkLogger
