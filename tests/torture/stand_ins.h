// What stands in for parts of the machine that are not there, or take long, while no fault says
// otherwise. Every run begins with these settings anew.
#ifndef UTIL_TESTS_TORTURE_STAND_INS_H
#define UTIL_TESTS_TORTURE_STAND_INS_H

#include <string>

namespace torture {

struct StandIns {
    bool refuses_version = false;  // WSAStartup grants another
};
extern StandIns stand_ins;

// The function for an imported name. Null if the real one serves.
void* stand_in(const std::string& name);

}  // namespace torture

#endif
