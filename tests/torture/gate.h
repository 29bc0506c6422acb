// A gate replaces a function in an import table. Each call goes to the sweep. The sweep makes the
// call, makes it and reports a failure, or only reports a failure. No signature is needed, because
// the platform passes integers and pointers of every type alike.
#ifndef UTIL_TESTS_TORTURE_GATE_H
#define UTIL_TESTS_TORTURE_GATE_H

#include <array>
#include <cstdint>

namespace torture {

// No imported function has more arguments. None takes or returns a floating-point number.
using Arguments = std::array<std::uint64_t, 12>;

struct Gate {
    void* original;
    void* owner;      // the sweep's
    bool in_runtime;  // in the C++ runtime's table, which serves the test as well
    void** slot = nullptr;
};

// A gate's call, defined by the sweep. It leaves errno and the last error as they are, except as a
// failure.
std::uint64_t pass_gate(const Gate& gate, const Arguments& arguments);

// Calls the original, for pass_gate().
std::uint64_t call_original(const Gate& gate, const Arguments& arguments);

// Puts a gate into a slot of a table of functions. It stays until the process ends.
void guard(void** slot, const Gate& gate);

// Returns the place of the function that the gate in `slot` calls, or `slot` if it has no gate.
void** called_by_gate(void** slot);

// Returns whether the module called the running code. Code below a function of this program does
// not count.
bool called_from(const void* module);

// A number for the way on which the module came to the code that is running. Another line of a test
// that calls the module has another number.
std::uint64_t call_site(const void* module);

}  // namespace torture

#endif
