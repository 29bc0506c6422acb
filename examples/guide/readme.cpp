#include <iostream>

#include "util/util.h"

int main() {
    XrFile inventory("agent.rec", "w");
    XrDirectory directory(Tools::find_location("", Tools::FileAttr::any));
    for (XrDirectoryEntry* entry : *directory.getDirectoryList(false, false))
        inventory << entry->getName() << entry->getSize();
    int code = 0;
    if (inventory.Error(code)) std::cerr << String::format("agent.rec: error %d", code) << '\n';
}
