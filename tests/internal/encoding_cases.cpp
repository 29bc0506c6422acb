#include "util/internal/encoding.h"

#include "support/cases.h"
#include "support/import_patch.h"
#include "support/units.h"

using namespace util_test;

namespace {

// The conversions are compiled into this program, so that its own view of the page is replaced.
struct World : CaseWorld {
    ~World() override { SetFileApisToANSI(); }

    static Words to_ansi(const char* utf8) {
        std::string out = "kept";
        const bool done = util::utf8_to_ansi(utf8, out);
        return said(done, out);
    }
    static Words to_utf8(const char* ansi, const std::string& twin) {
        std::string out = "kept";
        const bool done = util::ansi_to_utf8(ansi, units_of(twin).c_str(), out);
        return said(done, out);
    }
    // There and back; what the page cannot hold exactly is refused.
    static Words exact(const char* utf8) {
        std::string ansi = "kept", back;
        if (!util::utf8_to_ansi(utf8, ansi)) return said("refused", ansi);
        EXPECT_TRUE(util::ansi_to_utf8(ansi.c_str(), L"another text", back));
        EXPECT_EQ(back, utf8);
        return said(ansi);
    }
    static Words of_file(const char* utf8, const char* ansi, const std::string& twin) {
        std::string there, back;
        const bool done = util::utf8_to_ansi(utf8, there, util::Page::files) &&
                          util::ansi_to_utf8(ansi, units_of(twin).c_str(), back, util::Page::files);
        return said(done, there, back);
    }

    UINT ansi_page = 1252;
    const ImportPatch patch{"GetACP", [this] { return ansi_page; }, nullptr};
};

const Cases<World> cases("internal/encoding.cases",
                         {
                             call("page", [](World& w, UINT page) { w.ansi_page = page; }),
                             call("use_oem_page", SetFileApisToOEM),
                             call("exact", World::exact),
                             call("fits", [](const char* utf8) { return World::to_ansi(utf8)[0]; }),
                             call("to_utf8", World::to_utf8),
                             call("of_file", World::of_file),
                             call("words",
                                  [](const char* ansi) { return util::words_to_utf8(ansi); }),
                         });

}  // namespace
