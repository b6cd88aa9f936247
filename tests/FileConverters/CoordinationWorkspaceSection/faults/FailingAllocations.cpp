// A library to preload into a program, so that it can be watched running out of memory.
//
//   FAIL_ALLOCATION=n    the n-th allocation of the process fails, counted from 1
//   FAIL_FROM_THEN_ON=1  and all that follow it, as when memory is gone for good
//   ALLOCATION_REPORT=f  at the end, a line with the number of allocations goes to the file f;
//                        a crash writes the place it happened at instead
//
// Only Linux with the GNU library: its own allocator is reached by the names it keeps for this.

#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

extern "C" {
// NOLINTBEGIN(bugprone-reserved-identifier): the names are the C library's own
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
// NOLINTEND(bugprone-reserved-identifier)
}

namespace {

constexpr int PLACES_SHOWN = 24;

std::atomic<long> allocations{0};
long failingAllocation = 0; // none
bool failsFromThenOn = false;
int report = -1;
alignas(16) std::array<char, 65536> signalStack;

// The library starts before the C library has its environment, so it is given it and looks itself.
const char* setting(char** environment, const char* name)
{
    const std::size_t length = std::strlen(name);
    for (; *environment != nullptr; ++environment) {
        if (std::strncmp(*environment, name, length) == 0 && (*environment)[length] == '=') {
            return *environment + length + 1;
        }
    }
    return nullptr;
}

bool fails()
{
    const long number = ++allocations;
    const bool hit = failingAllocation > 0 &&
                     (failsFromThenOn ? number >= failingAllocation : number == failingAllocation);
    if (hit) {
        errno = ENOMEM;
    }
    return hit;
}

void tellPlaceOfCrash(int signal)
{
    failingAllocation = 0;
    std::array<void*, PLACES_SHOWN> places{};
    const int count = backtrace(places.data(), PLACES_SHOWN);
    for (int i = 0; i < count; ++i) {
        Dl_info info{};
        const bool known = dladdr(places.at(static_cast<std::size_t>(i)), &info) != 0;
        dprintf(report, "%s %s\n", known ? info.dli_fname : "?",
                known && info.dli_sname != nullptr ? info.dli_sname : "?");
    }
    std::signal(signal, SIG_DFL);
    raise(signal);
}

void watchForCrashes()
{
    // The first call loads the unwinder, which could not be done while memory is out.
    std::array<void*, 1> place{};
    backtrace(place.data(), 1);

    // A stack of its own: the crash may be that of a stack that is used up.
    stack_t stack{};
    stack.ss_sp = signalStack.data();
    stack.ss_size = signalStack.size();
    sigaltstack(&stack, nullptr);
    struct sigaction action
    {
    };
    action.sa_handler = tellPlaceOfCrash;
    action.sa_flags = SA_ONSTACK;
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP}) {
        sigaction(signal, &action, nullptr);
    }
}

// Linked to run before every other library's start, so that their allocations fail in turn too.
[[gnu::constructor]] void start(int /*count*/, char** /*arguments*/, char** environment)
{
    if (const char* path = setting(environment, "ALLOCATION_REPORT")) {
        report = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        watchForCrashes();
    }
    if (const char* number = setting(environment, "FAIL_ALLOCATION")) {
        failingAllocation = atol(number);
    }
    failsFromThenOn = setting(environment, "FAIL_FROM_THEN_ON") != nullptr;
    allocations = 0;
}

[[gnu::destructor]] void end()
{
    if (report >= 0) {
        dprintf(report, "%ld\n", allocations.load());
    }
}

} // namespace

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the C library's are reserved
extern "C" {

void* malloc(std::size_t size)
{
    return fails() ? nullptr : __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size)
{
    return fails() ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* block, std::size_t size)
{
    return fails() ? nullptr : __libc_realloc(block, size);
}

void* memalign(std::size_t alignment, std::size_t size)
{
    return fails() ? nullptr : __libc_memalign(alignment, size);
}

void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return memalign(alignment, size);
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size)
{
    void* const result = memalign(alignment, size);
    if (result == nullptr) {
        return ENOMEM;
    }
    *block = result;
    return 0;
}

} // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
