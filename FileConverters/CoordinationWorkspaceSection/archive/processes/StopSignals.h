#pragma once

/** Turns the signals that ask a program to end into a question that it can ask. */
namespace StopSignals {

/** Watches from here on for SIGINT, SIGTERM and SIGHUP, as far as they are not ignored. */
void watch();

/** Whether one has come. */
bool isStopping();

} // namespace StopSignals
