#include "tests/support/BlockedFolder.h"

#include <dirent.h>
#include <dlfcn.h>

/** Stands in for the C library's in the whole program. */
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name): that name is reserved.
extern "C" __attribute__((visibility("default"))) DIR* opendir(const char* path)
{
    BlockedFolder::visit(path);
    static const auto open = reinterpret_cast<DIR* (*)(const char*)>(dlsym(RTLD_NEXT, "opendir"));
    return open(path);
}
