// A user's program: everything that crosses the boundary of util.dll does so here once.
#include <cstdio>
#include <stdexcept>

#include "util/util.h"

namespace {

// A class of the program's own that the library calls.
struct Nobody : Poll::Callback {
    void ready(int, int) override {}
};

}  // namespace

int main(int argc, char** argv) {
    std::printf("version %s\n", UTIL_VERSION_STRING);

    String joined;
    for (const String& word : String("a,b,c").split(",", true))  // a vector made over there
        joined += word;
    std::printf("text %s\n", joined.c_str());

    try {
        joined.substr(9);
    } catch (const std::out_of_range& error) {
        std::printf("exception %s\n", error.what());
    }

    XrFile("consumer.rec", "w") << 7 << joined;
    int number = 0;
    XrFile("consumer.rec", "r") >> number >> joined;
    std::printf("record %d %s\n", number, joined.c_str());
    UTIL_delete("consumer.rec");

    XrDirectoryEntry entry("name", 0x4000, 0);
    const String& base = entry;  // the vtable and the base are the library's
    std::printf("entry %s %d\n", base.c_str(), entry.isDirectory());

    Nobody nobody;
    Poll poll;
    poll.append(-1, &nobody);
    poll.run(0);

    // The stamp in the DLL, by the library's own reading: the fourth number is the third times
    // 65536.
    char stamp[30] = "";
    if (argc > 1) UTIL_GetModuleVersion(argv[1], stamp);
    std::printf("stamp %s\n", stamp);
}
