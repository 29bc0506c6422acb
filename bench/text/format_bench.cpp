// Formatting: String::format against the formatters of other libraries.
#include <fmt/compile.h>
#include <fmt/printf.h>

#include <algorithm>
#include <boost/format.hpp>
#include <cstdio>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

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
#ifndef _WIN32
    operation.peer("absl::StrCat", [&] { keep(absl::StrCat(chars, "-", number)); })
        .peer("absl::StrFormat", [&] { keep(absl::StrFormat("%s-%d", chars, number)); });
#endif
    run(operation);
}

// As formatting is described: the runtime's formatter into one shared buffer under one lock, and a
// copy up to the NUL.
template <typename... Arguments>
std::string format_as_described(const char* format, Arguments... arguments) {
    static std::mutex lock;
    static char buffer[8192];
    const std::lock_guard<std::mutex> guard(lock);
    std::snprintf(buffer, sizeof buffer, format, arguments...);
    return buffer;
}

// The runtime's formatter into a buffer that is there, and a copy: no lock.
template <typename... Arguments>
std::string format_and_copy(const char* format, Arguments... arguments) {
    char buffer[512];
    const int length = std::snprintf(buffer, sizeof buffer, format, arguments...);
    return std::string(buffer, static_cast<std::size_t>(length));
}

void text_of_an_int() {
    int number = 12345;
    Operation operation("String(int)");
    operation.limit("std::to_string", [&] { keep(std::to_string(number)); })
        .library([&] { keep(String(number)); })
        .peer("fmt::format_int", [&] { keep(fmt::format_int(number).str()); })
        .described("formatter, lock, copy", [&] { keep(format_as_described("%d", number)); });
    run(operation);
}

// Formats that the runtime converts.
void format_by_the_runtime() {
    run(Operation("String(double)")
            .limit("formatter into a buffer, copy", [] { keep(format_and_copy("%f", 1.5)); })
            .library([] { keep(String(1.5)); })
            .peer("fmt::sprintf", [] { keep(fmt::sprintf("%f", 1.5)); }));
    const char* const name = "replica";
    run(Operation("format \"%-8s|%5d\"")
            .limit("formatter into a buffer, copy",
                   [&] { keep(format_and_copy("%-8s|%5d", name, 12345)); })
            .library([&] { keep(String::format("%-8s|%5d", name, 12345)); })
            .peer("fmt::sprintf", [&] { keep(fmt::sprintf("%-8s|%5d", name, 12345)); }));
}

// Time per call and core: while threads do not wait for each other, any number of them takes as
// long as one. There are so many calls that starting the threads costs next to nothing.
constexpr unsigned calls_of_a_core = 400000;

auto in_threads(unsigned count, const char* text) {
    const unsigned cores = std::min(count, std::max(1u, std::thread::hardware_concurrency()));
    return [=] {
        const auto share = [=] {
            for (unsigned i = 0; i < calls_of_a_core * cores / count; ++i)
                keep(String::format("%s-%d", text, 100000 + static_cast<int>(i)));
        };
        std::vector<std::thread> others;
        for (unsigned i = 1; i < count; ++i)
            others.emplace_back(share);
        share();
        for (std::thread& other : others)
            other.join();
    };
}

// A text of up to 15 bytes needs no heap, whose lock under Wine is one for the whole process.
void format_in_threads(const char* name, const char* text) {
    run(Operation(std::string("format in threads, ") + name)
            .library(in_threads(1, text))
            .library("two threads", in_threads(2, text))
            .library("four threads", in_threads(4, text))
            .by_minimum()
            .per(calls_of_a_core));
}

const bench::Section section("1 Formatting", [] {
    for (const std::size_t size : {20, 200, 5000})
        format_text_and_number(size);
    text_of_an_int();
    format_by_the_runtime();
    format_in_threads("12 bytes", "agent");
    format_in_threads("20 bytes", "agent-replica");
});

}  // namespace
