// The run-time part of -fstack-protector-strong and _FORTIFY_SOURCE: the guard value between a
// function's locals and its return address, and the end of a process whose buffer has overflowed.
//
// The compiler has a library for this (libssp). As a DLL it would be one more to ship. As a static
// library it loads a cryptographic provider while util.dll is loaded, under the loader lock, which
// takes 4 ms under Wine. Its checked functions (__memcpy_chk and others) are used.
#include <cstdint>

#include "internal/windows.h"  // found beside it: programs do not see private headers
// after the platform's header
#include <ntsecapi.h>

extern "C" {

// The compiler fixes the names in quotes.
extern std::uintptr_t stack_guard __asm__("__stack_chk_guard");
[[noreturn]] void guard_has_changed() __asm__("__stack_chk_fail");
[[noreturn]] void call_would_overflow() __asm__("__chk_fail");

std::uintptr_t stack_guard = 0;

}  // extern "C"

namespace {

// Ends the process with 0xC0000409. No handler and no clean-up runs, as memory is damaged.
[[noreturn]] void end_process(unsigned int reason) {
    __asm__ volatile("int $0x29" : : "c"(reason));
    __builtin_unreachable();
}

// Must not run inside a protected function. Only the start-up code calls it, which is not
// protected. The lowest byte stays 0, so that a C string cannot overwrite the guard with its own
// value.
__attribute__((constructor, no_stack_protector)) void choose_guard() {
    std::uintptr_t random;
    if (!RtlGenRandom(&random, sizeof random)) random = __builtin_ia32_rdtsc() * 0x9E3779B97F4A7C15;
    stack_guard = random & ~std::uintptr_t{0xFF};
}

}  // namespace

// The reasons are the platform's numbers for a damaged stack guard and a failed range check.
void guard_has_changed() {
    end_process(2);
}

void call_would_overflow() {
    end_process(8);
}
