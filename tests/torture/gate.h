// A gate in front of every function of an import table: each call is shown to the sweep, which
// passes it on, fails it, or lets it do its work and then calls it failed. No signature is needed.
#ifndef UTIL_TESTS_TORTURE_GATE_H
#define UTIL_TESTS_TORTURE_GATE_H

#include <cstdint>

namespace torture {

struct Gate {
    void* original;    // where a call that is passed on goes; the assembler code knows it is first
    const char* name;  // of the function
    int index;         // the owner's
};

enum Decision : int {
    pass,     // to the original, which returns to the caller
    replace,  // not to the original: after(gate, 0) gives the result
    watch,    // to the original, which takes six arguments at most; after(gate, result) gives it
};

// What the gates call. Neither may change errno or the last error unless a failure is meant to.
extern Decision (*decide)(Gate& gate);
extern std::uint64_t (*after)(Gate& gate, std::uint64_t result);

// Puts a gate into a slot of a table of functions. It stays until the process ends.
Gate& guard(void** slot, const char* name, int index);

// Whether the code that is running was called, at whatever distance, by the module.
bool called_from(const void* module);

// A number for the way on which the module came to the code that is running. It is another for
// another line of a test that calls the module.
std::uint64_t call_site(const void* module);

}  // namespace torture

#endif
