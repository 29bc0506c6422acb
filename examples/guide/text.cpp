#include <iostream>
#include <stdexcept>

#include "util/text/text.h"

int main() {
    // A setting, taken apart.
    const String line("  hosts = alpha, beta ,gamma ");
    const std::vector<String> sides = line.split("=", true);
    for (const String& field : sides[1].split(",", true))
        std::cout << sides[0].trim(" ") << ": " << field.trim(" ") << '\n';

    // Values put into a text, a list kept in one, a value behind a tag.
    std::cout << String::format("%s-%03d", "disk", 7) << '\n';
    const String list = serializeStrArray({"alpha", "beta"});
    std::cout << list << ": " << deserializeStrArray(list).size() << " elements\n";
    String document;
    String value;
    UTIL_addTag(document, "limit", "a<b");
    UTIL_extractTag(document, "limit", value);
    std::cout << document << ": " << value << '\n';

    // Versions and dates in order.
    std::cout << std::boolalpha << String("7.10").isGreaterThanVersion("7.9") << '\n';
    std::cout << extstl::ExtDate(31, 2, 2010).text("%d.%m.%Y").c_str() << '\n';

    // A hash that may be stored: it never changes.
    std::cout << String("abcd").hash() << '\n';

    // A position that no text has is the caller's mistake, and raised.
    try {
        line.substr(1000);
    } catch (const std::out_of_range& error) {
        std::cout << error.what() << '\n';
    }
}
