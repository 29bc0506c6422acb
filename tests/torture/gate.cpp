#include "torture/gate.h"

#include <algorithm>
#include <cstring>

#include "util/internal/windows.h"

// The way through a gate, with unwind information, so that exceptions and stack walks pass it. It
// is entered with the gate in r11 and everything else as the caller has left it.
extern "C" void torture_gate();
asm(R"(
    .text  # whatever section the compiler is in
    .globl torture_gate
    .seh_proc torture_gate
torture_gate:
    subq $0xB8, %rsp
    .seh_stackalloc 0xB8
    .seh_endprologue
    movq %rcx, 0x40(%rsp)
    movq %rdx, 0x48(%rsp)
    movq %r8, 0x50(%rsp)
    movq %r9, 0x58(%rsp)
    movups %xmm0, 0x60(%rsp)
    movups %xmm1, 0x70(%rsp)
    movups %xmm2, 0x80(%rsp)
    movups %xmm3, 0x90(%rsp)
    movq %r11, 0xA0(%rsp)
    movq %r11, %rcx
    call torture_decide
    movq 0x40(%rsp), %rcx
    movq 0x48(%rsp), %rdx
    movq 0x50(%rsp), %r8
    movq 0x58(%rsp), %r9
    movups 0x60(%rsp), %xmm0
    movups 0x70(%rsp), %xmm1
    movups 0x80(%rsp), %xmm2
    movups 0x90(%rsp), %xmm3
    movq 0xA0(%rsp), %r11
    cmpl $1, %eax
    je 1f
    ja 2f
    addq $0xB8, %rsp
    jmp *(%r11)
1:  xorl %eax, %eax
    jmp 3f
2:  movq 0xE0(%rsp), %rax   # the fifth and sixth argument, if there are any
    movq %rax, 0x20(%rsp)
    movq 0xE8(%rsp), %rax
    movq %rax, 0x28(%rsp)
    call *(%r11)
3:  movq 0xA0(%rsp), %rcx
    movq %rax, %rdx
    call torture_after
    addq $0xB8, %rsp
    ret
    .seh_endproc
)");

namespace torture {

Decision (*decide)(Gate& gate) = [](Gate&) { return pass; };
std::uint64_t (*after)(Gate& gate, std::uint64_t result) = [](Gate&, std::uint64_t result) {
    return result;
};

extern "C" int torture_decide(Gate* gate) {
    return decide(*gate);
}
extern "C" std::uint64_t torture_after(Gate* gate, std::uint64_t result) {
    return after(*gate, result);
}

namespace {

// Room for code that loads a gate's address and jumps; it calls nothing, so that it is never on the
// stack and needs no unwind information.
unsigned char* entry_code(Gate* gate) {
    constexpr std::size_t size = 32;
    constexpr std::size_t room = 1 << 16;
    static unsigned char* free_code = nullptr;
    static std::size_t left = 0;
    if (left < size) {
        free_code = static_cast<unsigned char*>(
            VirtualAlloc(nullptr, room, MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE));
        left = room;
    }
    unsigned char* const code = free_code;
    free_code += size;
    left -= size;
    const unsigned char instructions[] = {0x49, 0xBB, 0,   0, 0, 0, 0, 0, 0, 0,  // mov r11, gate
                                          0x49, 0xBA, 0,   0, 0, 0, 0, 0, 0, 0,  // mov r10, way
                                          0x41, 0xFF, 0xE2};                     // jmp r10
    void (*const way)() = torture_gate;
    std::memcpy(code, instructions, sizeof instructions);
    std::memcpy(code + 2, &gate, sizeof gate);
    std::memcpy(code + 12, &way, sizeof way);
    return code;
}

}  // namespace

Gate& guard(void** slot, const char* name, int index) {
    auto* const gate = new Gate{*slot, name, index};
    DWORD before;
    VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before);
    *slot = entry_code(gate);
    VirtualProtect(slot, sizeof *slot, before, &before);
    return *gate;
}

namespace {

// The return addresses on the stack, innermost first, up to the outermost call of the module; none
// when the module is not on the stack. Takes no memory, which may be what is failing.
struct Frames {
    explicit Frames(const void* module) {
        const auto* const base = static_cast<const char*>(module);
        const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
        const auto* const nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
        const char* const end = base + nt->OptionalHeader.SizeOfImage;
        depth = RtlCaptureStackBackTrace(0, 60, addresses, nullptr);
        for (int i = 0; i < depth; ++i) {
            if (addresses[i] >= base && addresses[i] < end) count = std::min(i + 2, depth);
        }
    }
    void* addresses[60];
    int depth;
    int count = 0;
};

}  // namespace

bool called_from(const void* module) {
    return Frames(module).count > 0;
}

std::uint64_t call_site(const void* module) {
    const Frames frames(module);
    // A module's function that ends in a jump is not on the stack.
    const int count = frames.count > 0 ? frames.count : frames.depth;
    std::uint64_t site = 0;
    for (int i = 0; i < count; ++i)
        site = site * 31 + reinterpret_cast<std::uintptr_t>(frames.addresses[i]);
    return site;
}

}  // namespace torture
