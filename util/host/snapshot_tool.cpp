#include "util/host/snapshot_tool.h"

#include "util/files/path_lookup.h"

namespace {

// The tool in this program's own directory; "" when it is not there or cannot be asked for.
String find_beside_program() {
    try {
        const String directory = Tools::find_location("", Tools::FileAttr::any);
        if (directory.empty()) return {};
        String candidate = directory + "tssnap.exe";
        return Tools::fileExists(candidate) ? candidate : String();
    } catch (...) {  // the other places are still to be looked at
        return {};
    }
}

String find_tool() {
    String beside = find_beside_program();
    if (!beside.empty()) return beside;
    for (const char* installed :
         {"C:\\Program Files\\Vorn\\Halcyra Vexsnap\\vexsnap.exe",
          "C:\\Program Files\\Vorn\\Halcyra Vexsnap for Win2K\\vexsnap.exe"}) {
        if (Tools::fileExists(installed)) return installed;
    }
    return Tools::absolute_pathname("vexsnap.exe", Tools::FileAttr::any);
}

}  // namespace

int UTIL_GetHalcVexsnapFileName(String& out) try {
    out = String();
    out = find_tool();
    return out.empty() ? -1 : 0;
} catch (...) {
    return -1;
}
