// Splitting: String::split against the splitters of other libraries.
#include <algorithm>
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <string>
#include <vector>

#ifndef _WIN32
#include <absl/strings/str_split.h>
#endif

#include "bench/harness.h"
#include "util/text/text.h"

using bench::keep;
using bench::Operation;

namespace {

constexpr std::size_t megabyte = 1000000;

// As the algorithm is described: a search for each end of a field, a copy cut out for it, and a
// list that grows.
std::vector<std::string> split_by_search(const std::string& text, const char* separators) {
    std::vector<std::string> fields;
    for (std::size_t end = 0;;) {
        const std::size_t begin = text.find_first_not_of(separators, end);
        if (begin == std::string::npos) return fields;
        end = std::min(text.find_first_of(separators, begin), text.size());
        const std::string field = text.substr(begin, end - begin);
        fields.push_back(field);
    }
}

void split(const char* name, const std::string& text, const char* separators) {
    const std::vector<std::string> known = split_by_search(text, separators);
    const String subject(text), set(separators);
    Operation operation(name);
    operation
        .limit("known fields",
               [&] {
                   std::vector<std::string> fields;
                   fields.reserve(known.size());
                   for (const std::string& field : known)
                       fields.emplace_back(field.data(), field.size());
                   keep(fields);
               })
        .library([&] { keep(subject.split(set, true)); })
        .peer("boost::split",
              [&] {
                  std::vector<std::string> fields;
                  boost::split(fields, text, boost::is_any_of(separators),
                               boost::token_compress_on);
                  keep(fields);
              })
        .described("find_first_of, substr, push_back",
                   [&] { keep(split_by_search(text, separators)); });
#ifndef _WIN32
    operation.peer("absl::StrSplit", [&] {
        keep(std::vector<std::string>(
            absl::StrSplit(text, absl::ByAnyChar(separators), absl::SkipEmpty())));
    });
#endif
    run(operation);
}

std::string search_path() {
    std::string path;
    for (int i = 0; i < 40; ++i)
        path += "C:\\Program Files\\Vendor " + std::to_string(i * 37 % 100) + "\\bin;";
    return path;
}

// A megabyte of fields of 1 to 20 bytes, each ended by a separator of the two in turn.
std::string table_of_values(const char* separators) {
    std::string text;
    for (unsigned seed = 1; text.size() < megabyte;) {
        seed = seed * 1103515245 + 12345;
        text.append(1 + (seed >> 16) % 20, 'v');
        text += separators[(seed >> 24) % 8 == 0];
    }
    return text;
}

const bench::Section section("2 Splitting", [] {
    split("split \"7.1.2\"", "7.1.2", ".");
    split("split a date", "2010/05/17 12:30:45", " /:");
    split("split 3 addresses", "ann@example.test;bob@example.test;eve@example.test", ";");
    split("split a search path of 40", search_path(), ";");
    split("split 1 MB at \",\"", table_of_values(",,"), ",");
    split("split 1 MB at \",\" and line feed", table_of_values(",\n"), ",\n");
});

}  // namespace
