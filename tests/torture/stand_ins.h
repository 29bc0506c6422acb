// What stands in for parts of the machine that are not there, or take long, while no fault says
// otherwise. Every run begins with these settings anew.
#ifndef UTIL_TESTS_TORTURE_STAND_INS_H
#define UTIL_TESTS_TORTURE_STAND_INS_H

#include <string>

#include "support/private_registry.h"

namespace torture {

struct StandIns {
    DWORD connect = 0;             // WNetAddConnection2W's result
    DWORD disconnect = 0;          // WNetCancelConnection2W's
    bool refuses_version = false;  // WSAStartup grants another
    bool is_old = false;           // GetVersionExA says 5.2
    long switches = 0;             // calls that switched the redirection
};
extern StandIns stand_ins;

// The function for an imported name; null where the real one serves. first is the real one.
void* stand_in(const std::string& name, void* real);

// The process's own HKEY_LOCAL_MACHINE.
util_test::PrivateRegistry& registry();

}  // namespace torture

#endif
