// A small benchmark harness that compares, in one process, the library with a limit and with peers.
//
// The method. An operation has several variants: the limit (the least that any implementation must
// do), the library, its peers, and the algorithm as described. A round runs every variant once, for
// 0.3 ms each, and starts with another variant than the round before. There are eleven rounds at
// least, and as many as a second allows, or a fifth of that without a bar. The rounds are short so
// that a neighbour's work interrupts few of them. A slower clock slows all variants of a round. The
// reported ratio is the median, over all rounds, of the quotients of two times of one round. Times
// depend on the machine. Ratios hardly do.
#ifndef UTIL_BENCH_HARNESS_H
#define UTIL_BENCH_HARNESS_H

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace bench {

// Makes the compiler believe that the value is looked at, and that any memory may have changed.
template <class T>
inline void keep(const T& value) {
    asm volatile("" : : "m"(value) : "memory");
}

enum class Role { limit, library, peer, described };

using Clock = std::chrono::steady_clock;

inline double nanoseconds_since(Clock::time_point start) {
    return std::chrono::duration<double, std::nano>(Clock::now() - start).count();
}

// What one variant does; called with the number of times to do it. Returns the nanoseconds taken.
using Loop = std::function<double(std::size_t times)>;

struct Variant {
    Role role;
    std::string name;
    Loop loop;
};

// One row of the report, described by chained calls:
//
//     run(Operation("format \"%s-%d\", 20 bytes")
//             .limit("copy", [&] { keep(std::string(text)); })
//             .library([&] { keep(String::format("%s-%d", name, 7)); })
//             .peer("fmt::sprintf", [&] { keep(fmt::sprintf("%s-%d", name, 7)); }));
//
// A body does the operation once, or `per(n)` times: figures are per single one.
class Operation {
  public:
    explicit Operation(std::string name) : m_name(std::move(name)) {}

    template <class Body>
    Operation& limit(std::string name, Body body) {
        return add(Role::limit, std::move(name), std::move(body));
    }
    template <class Body>
    Operation& library(Body body) {
        return add(Role::library, "util", std::move(body));
    }
    template <class Body>
    Operation& peer(std::string name, Body body) {
        return add(Role::peer, std::move(name), std::move(body));
    }
    template <class Body>
    Operation& described(std::string name, Body body) {
        return add(Role::described, std::move(name), std::move(body));
    }
    // The library in another setting, such as on twice the input or in two threads. Its time is
    // also divided by that of the library itself.
    template <class Body>
    Operation& library(std::string setting, Body body) {
        return add(Role::library, "util, " + std::move(setting), std::move(body));
    }
    // Any of these, by a loop that measures its own time.
    Operation& variant(Role role, std::string name, Loop loop) {
        m_variants.push_back({role, std::move(name), std::move(loop)});
        return *this;
    }
    Operation& per(double operations) {
        m_per = operations;
        return *this;
    }
    // Done, outside the measured time, before each variant of each round.
    Operation& before(std::function<void()> prepare) {
        m_prepare = std::move(prepare);
        return *this;
    }
    // Compares the fastest rounds instead: for long operations whose disturbances only add.
    Operation& by_minimum() {
        m_by_minimum = true;
        return *this;
    }

    const std::string& name() const { return m_name; }
    const std::vector<Variant>& variants() const { return m_variants; }
    double operations_per_body() const { return m_per; }
    bool compares_minimum() const { return m_by_minimum; }
    void prepare() const {
        if (m_prepare) m_prepare();
    }

  private:
    template <class Body>
    Operation& add(Role role, std::string name, Body body) {
        // The loop stands inside, so that the call through std::function is not measured.
        return variant(role, std::move(name), [body](std::size_t times) mutable {
            const auto start = Clock::now();
            for (std::size_t i = 0; i < times; ++i)
                body();
            return nanoseconds_since(start);
        });
    }

    std::string m_name;
    std::vector<Variant> m_variants;
    std::function<void()> m_prepare;
    double m_per = 1;
    bool m_by_minimum = false;
};

// Measures the operation and writes its figures and ratios to the report's data.
void run(const Operation& operation);

// A group of operations. Each benchmark file has one, at namespace scope:
//
//     const bench::Section section("Formatting", [] { run(...); run(...); });
class Section {
  public:
    // Sections for one core are left out but for --cores one: the caller then pins the process and
    // the Wine server to one core, since a dialogue between two cores costs whatever waking one
    // does.
    enum class Cores { any, one };

    Section(std::string name, std::function<void()> body, Cores cores = Cores::any);
};

}  // namespace bench

#endif
