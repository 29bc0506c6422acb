#include "util/host/snapshot_tool.h"

#include "util/files/path_lookup.h"

namespace {

String find_tool() {
    const String beside = Tools::find_location("", Tools::FileAttr::any);
    if (!beside.empty() && Tools::fileExists(beside + "tssnap.exe")) return beside + "tssnap.exe";
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
