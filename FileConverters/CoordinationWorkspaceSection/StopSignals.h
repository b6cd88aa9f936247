#pragma once

/** Turns the signals that ask a program to end into a question that it can ask. */
namespace StopSignals {

/** Watches for SIGINT, SIGTERM and SIGHUP from here on. */
void watch();

/** Whether one has come. */
bool isStopping();

} // namespace StopSignals
