#include "torture/gate.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "util/internal/windows.h"

namespace torture {
namespace {

using Word = std::uint64_t;
using Function = Word(Word, Word, Word, Word, Word, Word, Word, Word, Word, Word, Word, Word);

constexpr std::size_t most_gates = 256;
std::array<Gate, most_gates> gates;

template <std::size_t i>
Word enter(Word a, Word b, Word c, Word d, Word e, Word f, Word g, Word h, Word j, Word k, Word l,
           Word m) {
    return pass_gate(gates[i], {a, b, c, d, e, f, g, h, j, k, l, m});
}

template <std::size_t... i>
Function* entry(std::size_t gate, std::index_sequence<i...>) {
    static constexpr Function* entries[] = {enter<i>...};
    return entries[gate];
}

// The memory of a loaded module.
struct Image {
    explicit Image(const void* module) : begin(static_cast<const char*>(module)) {
        const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(begin);
        const auto* const nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(begin + dos->e_lfanew);
        end = begin + nt->OptionalHeader.SizeOfImage;
    }
    bool contains(const void* address) const { return address >= begin && address < end; }
    const char *begin, *end;
};

// The return addresses on the stack, innermost first, up to the outermost call of the module; none
// when the module is not on the stack. Takes no memory, which may be what is failing.
struct Frames {
    explicit Frames(const void* module) {
        const Image image(module);
        depth = RtlCaptureStackBackTrace(0, 60, addresses, nullptr);
        for (int i = 0; i < depth; ++i) {
            if (image.contains(addresses[i])) count = std::min(i + 2, depth);
        }
    }
    void* addresses[60];
    int depth;
    int count = 0;
};

}  // namespace

Word call_original(const Gate& gate, const Arguments& arguments) {
    return std::apply(reinterpret_cast<Function*>(gate.original), arguments);
}

void guard(void** slot, const Gate& gate) {
    static std::size_t used = 0;
    gates.at(used) = gate;
    gates[used].slot = slot;
    DWORD before;
    VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before);
    *slot = reinterpret_cast<void*>(entry(used++, std::make_index_sequence<most_gates>()));
}

void** called_by_gate(void** slot) {
    for (Gate& gate : gates) {
        if (gate.slot == slot) return &gate.original;
    }
    return slot;
}

bool called_from(const void* module) {
    const Image image(module);
    static const Image program(GetModuleHandleA(nullptr));
    const Frames frames(module);
    int i = 0;
    while (i < frames.count && program.contains(frames.addresses[i]))
        ++i;  // the gate itself
    while (i < frames.count && !program.contains(frames.addresses[i])) {
        if (image.contains(frames.addresses[i++])) return true;
    }
    return false;
}

Word call_site(const void* module) {
    const Frames frames(module);
    // A module's function that ends in a jump is not on the stack.
    const int count = frames.count > 0 ? frames.count : frames.depth;
    Word site = 0;
    for (int i = 0; i < count; ++i)
        site = site * 31 + reinterpret_cast<std::uintptr_t>(frames.addresses[i]);
    return site;
}

}  // namespace torture
