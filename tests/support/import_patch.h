// Rewrites one entry of a loaded module's import table, so that a test can count, replace or fail
// a call that the module makes; calls of the test itself stay real.
#ifndef UTIL_TESTS_SUPPORT_IMPORT_PATCH_H
#define UTIL_TESTS_SUPPORT_IMPORT_PATCH_H

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "util/internal/windows.h"

namespace util_test {

// Calls visit(library, name, slot) for each function that a loaded module (null: the program)
// imports by name.
template <typename Visit>
void for_each_import(const char* module, Visit visit) {
    auto* base = reinterpret_cast<char*>(GetModuleHandleA(module));
    if (!base) throw std::runtime_error(std::string("not loaded: ") + module);
    auto* dos = reinterpret_cast<IMAGE_DOS_HEADER*>(base);
    auto* nt = reinterpret_cast<IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    auto& table = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    auto* library = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + table.VirtualAddress);
    for (; library->Name; ++library) {
        auto* names = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
        auto* slots = reinterpret_cast<void**>(base + library->FirstThunk);
        for (; names->u1.AddressOfData; ++names, ++slots) {
            if (IMAGE_SNAP_BY_ORDINAL(names->u1.Ordinal)) continue;
            auto* entry = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + names->u1.AddressOfData);
            visit(base + library->Name, reinterpret_cast<const char*>(entry->Name), slots);
        }
    }
}

// The slot through which `module` calls the imported `name`; throws when it imports no such name.
inline void** import_slot(const char* module, const char* name) {
    void** found = nullptr;
    for_each_import(module, [&](const char*, const char* imported, void** slot) {
        if (!found && !std::strcmp(imported, name)) found = slot;
    });
    if (!found) throw std::runtime_error(std::string(module) + " does not import " + name);
    return found;
}

// Returns where a patch writes: the slot, or the function that a gate in the slot calls.
inline void** (*place_of_patch)(void** slot) = [](void** slot) { return slot; };

// Stands for any function that fails: gives the result and leaves the codes, 0 for none.
template <std::intptr_t result, DWORD last_error = 0, int error_number = 0>
std::intptr_t fails() {
    if (last_error != 0) SetLastError(last_error);
    if (error_number != 0) errno = error_number;
    return result;
}

// A function that calls the lambda of this type that was made last.
template <typename Lambda, typename Member = decltype(&Lambda::operator())>
struct Forward;
template <typename Lambda, typename R, typename... A>
struct Forward<Lambda, R (Lambda::*)(A...) const> {
    static inline const Lambda* current = nullptr;
    static R function(A... arguments) { return (*current)(arguments...); }
};

// While it lives, util.dll's calls of `name` go to the replacement: a function, or a lambda that
// may capture. Only one patch with the same lambda expression may live at a time. A replacement
// that takes fewer arguments than the real function is fine.
class ImportPatch {
  public:
    template <typename Lambda, typename = decltype(&Lambda::operator())>
    ImportPatch(const char* name, Lambda lambda, const char* module = "util.dll")
        : m_slot(place_of_patch(import_slot(module, name))),
          m_original(*m_slot),
          m_lambda(std::make_shared<const Lambda>(std::move(lambda))) {
        Forward<Lambda>::current = static_cast<const Lambda*>(m_lambda.get());
        write(reinterpret_cast<void*>(&Forward<Lambda>::function));
    }

    template <typename Function>
    ImportPatch(const char* name, Function* replacement)
        : ImportPatch("util.dll", name, replacement) {}

    template <typename Function>
    ImportPatch(const char* module, const char* name, Function* replacement)
        : m_slot(place_of_patch(import_slot(module, name))), m_original(*m_slot) {
        write(reinterpret_cast<void*>(replacement));
    }

    ~ImportPatch() { write(m_original); }
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

    // The real function, for a replacement that passes calls on.
    template <typename Function>
    Function* original() const {
        return reinterpret_cast<Function*>(m_original);
    }

  private:
    void write(void* function) {
        DWORD before;
        VirtualProtect(m_slot, sizeof *m_slot, PAGE_READWRITE, &before);
        *m_slot = function;
        VirtualProtect(m_slot, sizeof *m_slot, before, &before);
    }

    void** m_slot;
    void* m_original;
    std::shared_ptr<const void> m_lambda;
};

}  // namespace util_test

#endif
