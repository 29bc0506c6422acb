// Formatting: String::format against the formatters of other libraries.
#include <fmt/compile.h>
#include <fmt/printf.h>

#include <boost/format.hpp>
#include <cstdio>
#include <string>

#ifndef _WIN32
#include <absl/strings/str_cat.h>
#include <absl/strings/str_format.h>
#endif

#include "bench/harness.h"
#include "util/text/text.h"

using bench::keep;
using bench::Operation;

namespace {

// The size and the text, each by a call of the runtime.
std::string format_twice(const char* text, int number) {
    std::string result(static_cast<std::size_t>(std::snprintf(nullptr, 0, "%s-%d", text, number)),
                       '\0');
    std::snprintf(&result[0], result.size() + 1, "%s-%d", text, number);
    return result;
}

void format_text_and_number(std::size_t size) {
    const int number = 12345;
    const std::string text(size - 6, 'x');
    const char* const chars = text.c_str();
    const std::string whole = text + "-12345";
    Operation operation("format \"%s-%d\", " + std::to_string(size) + " bytes");
    operation.limit("copy", [&] { keep(std::string(whole)); })
        .library([&] { keep(String::format("%s-%d", chars, number)); })
        .peer("fmt::sprintf", [&] { keep(fmt::sprintf("%s-%d", chars, number)); })
        .peer("fmt::format, compiled",
              [&] { keep(fmt::format(FMT_COMPILE("{}-{}"), chars, number)); })
        .peer("boost::format", [&] { keep((boost::format("%s-%d") % chars % number).str()); })
        .peer("vsnprintf twice", [&] { keep(format_twice(chars, number)); });
#ifdef _WIN32
    operation.bar("fmt::sprintf", size < 100 ? 0.80 : size < 1000 ? 0.5 : 0.15);
#else
    operation.peer("absl::StrCat", [&] { keep(absl::StrCat(chars, "-", number)); })
        .peer("absl::StrFormat", [&] { keep(absl::StrFormat("%s-%d", chars, number)); });
    if (size < 1000) {
        operation.bar("fmt::sprintf", 0.60).bar("absl::StrCat", 1.05);
    } else {
        operation.bar("absl::StrFormat", 1.1);
    }
#endif
    run(operation);
}

const bench::Section section("1 Formatting", [] {
    for (const std::size_t size : {20, 200, 5000})
        format_text_and_number(size);
});

}  // namespace
