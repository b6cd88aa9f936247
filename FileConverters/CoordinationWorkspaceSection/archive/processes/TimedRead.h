#pragma once

#include <cstddef>

#include <sys/types.h>

class QDeadlineTimer;

/**
 * Reads what there is, as read() of POSIX.1-2017 does, and waits no longer for it than the
 * deadline.
 *
 * Signals neither end the wait nor make it longer.
 * @return how many bytes it was; 0 at the end; -1 with errno when it failed, ETIMEDOUT when the
 * time was up.
 */
ssize_t readBefore(const QDeadlineTimer& deadline, int descriptor, char* bytes, std::size_t size);
