#pragma once

#include <cstddef>
#include <cstring>

/**
 * The place of a virtual operation in the table of its class, counted from 0; -1 for an operation
 * that is not virtual.
 *
 * Read from the pointer to the operation as the Itanium C++ ABI and its ARM variant lay it out. A
 * destructor takes two places and has no such pointer: it shows as a gap between its neighbours.
 */
template <typename OPERATION>
int virtualSlot(OPERATION operation)
{
    struct
    {
        std::ptrdiff_t pointer; // the operation itself, or its offset in the table
        std::ptrdiff_t adjustment;
    } parts = {};
    static_assert(sizeof(parts) == sizeof(operation));
    std::memcpy(&parts, &operation, sizeof(parts));
#if defined(__arm__) || defined(__aarch64__)
    const bool isVirtual = parts.adjustment % 2 != 0;
    const std::ptrdiff_t offset = parts.pointer;
#else
    const bool isVirtual = parts.pointer % 2 != 0;
    const std::ptrdiff_t offset = parts.pointer - 1;
#endif
    return isVirtual ? static_cast<int>(offset / std::ptrdiff_t{sizeof(void*)}) : -1;
}
