#include <iostream>
#include <stdexcept>

#include "util/text/text.h"

int main() {
    // Split a setting.
    const String line("  hosts = alpha, beta ,gamma ");
    const std::vector<String> sides = line.split("=", true);
    for (const String& field : sides[1].split(",", true))
        std::cout << sides[0].trim(" ") << ": " << field.trim(" ") << '\n';

    // Format values. Keep a list in one text, and a value under a tag.
    std::cout << String::format("%s-%03d", "disk", 7) << '\n';
    const String list = serializeStrArray({"alpha", "beta"});
    std::cout << list << ": " << deserializeStrArray(list).size() << " elements\n";
    String document;
    String value;
    UTIL_addTag(document, "limit", "a<b");
    UTIL_extractTag(document, "limit", value);
    std::cout << document << ": " << value << '\n';

    // Compare versions. A day beyond the month carries over.
    std::cout << std::boolalpha << String("7.10").isGreaterThanVersion("7.9") << '\n';
    std::cout << extstl::ExtDate(31, 2, 2010).text("%d.%m.%Y").c_str() << '\n';

    // The hash of a text never changes, so it may be stored.
    std::cout << String("abcd").hash() << '\n';

    // A position beyond the end is the caller's mistake and raises.
    try {
        line.substr(1000);
    } catch (const std::out_of_range& error) {
        std::cout << error.what() << '\n';
    }
}
