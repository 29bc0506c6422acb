// Formatting: String::format against the formatters of other libraries.
#include <fmt/compile.h>
#include <fmt/printf.h>

#include <algorithm>
#include <atomic>
#include <boost/format.hpp>
#include <cstdio>
#include <limits>
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

struct alignas(64) Counter {
    std::atomic<std::size_t> calls{0};
};

// Time per call and core while so many threads call: that of one thread, unless threads wait for
// each other. All threads run before the time is taken. The best of several times counts: for
// milliseconds the system may run two threads on one core, or another program on the other.
template <typename Call>
bench::Loop in_threads(unsigned count, Call call) {
    return [=](std::size_t times) {
        std::vector<Counter> counters(count);
        std::atomic<bool> done{false};
        const auto call_some = [&](Counter& counter) {
            constexpr int some = 50;
            for (int i = 0; i < some; ++i)
                call(i);
            counter.calls.fetch_add(some, std::memory_order_relaxed);
        };
        const auto calls_made = [&] {
            std::size_t sum = 0;
            for (const Counter& counter : counters)
                sum += counter.calls;
            return sum;
        };
        std::vector<std::thread> others;
        for (unsigned i = 1; i < count; ++i) {
            others.emplace_back([&, i] {
                while (!done)
                    call_some(counters[i]);
            });
        }
        const unsigned cores = std::min(count, std::max(1u, std::thread::hardware_concurrency()));
        double best = std::numeric_limits<double>::max();
        for (int i = 0; i < 20 * static_cast<int>(count); ++i) {
            const std::size_t wanted = counters[0].calls + times;
            const std::size_t before = calls_made();
            const auto start = bench::Clock::now();
            while (counters[0].calls < wanted)
                call_some(counters[0]);
            const double spent = bench::nanoseconds_since(start) * cores;
            best = std::min(best, spent / static_cast<double>(calls_made() - before));
        }
        done = true;
        for (std::thread& other : others)
            other.join();
        return best * static_cast<double>(times);
    };
}

void format_in_threads() {
    using bench::Role;
    const auto short_text = [](int i) { keep(String::format("%s-%d", "agent", 100000 + i)); };
    run(Operation("format in threads, 12 bytes")
            .variant(Role::library, "util", in_threads(1, short_text))
            .variant(Role::library, "util, two threads", in_threads(2, short_text))
            .variant(Role::library, "util, four threads", in_threads(4, short_text))
            .by_minimum());
    // Texts from 16 bytes on need the heap, which under Wine has one lock for all threads.
    const auto text = [](int i) { keep(String::format("%s-%d", "agent-replica", 100000 + i)); };
    const auto copy = [](int) { keep(std::string("agent-replica-100000")); };
    run(Operation("format in two threads, 20 bytes")
            .variant(Role::limit, "copy, in two threads", in_threads(2, copy))
            .variant(Role::library, "util", in_threads(2, text))
            .by_minimum());
}

const bench::Section section("1 Formatting", [] {
    for (const std::size_t size : {20, 200, 5000})
        format_text_and_number(size);
    text_of_an_int();
    format_by_the_runtime();
    format_in_threads();
});

}  // namespace
