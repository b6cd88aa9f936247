#pragma once

// A process of the address sanitizer takes more address space than any limit, and looks at memory
// through descriptors of its own.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool IS_SANITIZED = true;
#else
constexpr bool IS_SANITIZED = false;
#endif
