// Stands still with one of everything that the debuggers' display rules know.
#include "util/util.h"

namespace {

[[gnu::noinline]] void stop_here(const String& last) {
    last.trim("x").hash();
}

}  // namespace

int main() {
    String text("Data01");
    String bytes("a\0\"b\xFF", 5);
    XrFile file("debugged.rec", "w");
    XrFile missing("no such folder\\x", "r");
    XrDirectory::List listing;
    listing.insert(new XrDirectoryEntry("b", 0x8000, 5));
    listing.insert(new XrDirectoryEntry("a", 0x4000, 0));
    ksl_uint64_c number(5, 1);
    stop_here(text);
}
