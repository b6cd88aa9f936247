#pragma once

#include <QByteArray>

#include <functional>
#include <optional>

struct ProcessLimits;

/**
 * Runs @p work in a process of its own, forked from the caller, within limits.
 *
 * What the work takes, breaks or changes stays in its process; only its result comes back. Starting
 * it costs a tenth of starting a program. The caller must have one thread only.
 * @return none when the work met a limit, threw or crashed.
 * @throws std::system_error when the system makes no process.
 */
std::optional<QByteArray> callWithinLimits(const ProcessLimits& limits,
                                           const std::function<QByteArray()>& work);
