#include "bench/harness.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <set>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace bench {
namespace {

struct Settings {
    int rounds = 11;             // at least, and more of them
    double seconds = 1;          // until so much time has gone into an operation
    double milliseconds = 0.3;   // at least, for one variant of one round
    std::set<std::string> bars;  // the operations that get `seconds`; others get a fifth of it
    std::string filter;          // sections whose name contains it
    Section::Cores cores = Section::Cores::any;
    std::FILE* output = stdout;
};

Settings settings;
std::string current_section;

struct NamedSection {
    std::string name;
    std::function<void()> body;
    Section::Cores cores;
};

std::vector<NamedSection>& sections() {
    static std::vector<NamedSection> all;
    return all;
}

// How often a variant must run to fill its time in a round; warms it up meanwhile.
std::size_t calibrate(const Operation& operation, const Variant& variant) {
    const double wanted = settings.milliseconds * 1e6;
    std::size_t times = 1;
    for (;;) {
        operation.prepare();
        const double spent = variant.loop(times);
        if (spent >= wanted) return times;
        const double factor = spent > 0 ? 1.1 * wanted / spent : 100;
        times = static_cast<std::size_t>(static_cast<double>(times) *
                                         std::min(100.0, std::max(1.5, factor))) +
                1;
    }
}

struct Spread {
    double low, median, high;  // quartiles
};

Spread spread_of(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    const std::size_t last = values.size() - 1;
    return {values[last / 4], values[last / 2], values[last - last / 4]};
}

// The rounds' times of each variant, in nanoseconds for one operation.
using Times = std::vector<std::vector<double>>;

// The names of the operations in bars.tsv: the second of its tab-separated columns.
std::set<std::string> operations_with_bars(const char* path) {
    std::set<std::string> names;
    std::ifstream file(path);
    std::string platform, name, rest;
    while (std::getline(file, platform, '\t') && std::getline(file, name, '\t') &&
           std::getline(file, rest))
        names.insert(name);
    return names;
}

double seconds_for(const Operation& operation) {
    const bool all = settings.bars.empty();
    return settings.seconds * (all || settings.bars.count(operation.name()) != 0 ? 1 : 0.2);
}

Times measure(const Operation& operation) {
    const std::vector<Variant>& variants = operation.variants();
    std::vector<std::size_t> repeats;
    for (const Variant& variant : variants)
        repeats.push_back(calibrate(operation, variant));
    Times times(variants.size());
    const auto enough = Clock::now() + std::chrono::duration<double>(seconds_for(operation));
    for (int round = 0; round < settings.rounds || Clock::now() < enough; ++round) {
        for (std::size_t turn = 0; turn < variants.size(); ++turn) {
            const std::size_t i = (static_cast<std::size_t>(round) + turn) % variants.size();
            operation.prepare();
            times[i].push_back(variants[i].loop(repeats[i]) /
                               (static_cast<double>(repeats[i]) * operation.operations_per_body()));
        }
    }
    return times;
}

Spread ratio_of(const std::vector<double>& subject, const std::vector<double>& against,
                bool by_minimum) {
    if (by_minimum) {
        const double ratio = *std::min_element(subject.begin(), subject.end()) /
                             *std::min_element(against.begin(), against.end());
        return {ratio, ratio, ratio};
    }
    std::vector<double> ratios;
    std::transform(subject.begin(), subject.end(), against.begin(), std::back_inserter(ratios),
                   [](double a, double b) { return a / b; });
    return spread_of(std::move(ratios));
}

const char* role_name(Role role) {
    switch (role) {
        case Role::limit:
            return "limit";
        case Role::library:
            return "library";
        case Role::peer:
            return "peer";
        case Role::described:
            break;
    }
    return "described";
}

std::size_t index_of(const Operation& operation, const std::string& name) {
    const std::vector<Variant>& variants = operation.variants();
    const auto found = std::find_if(variants.begin(), variants.end(),
                                    [&](const Variant& variant) { return variant.name == name; });
    if (found == variants.end()) {
        std::fprintf(stderr, "%s: no variant '%s'\n", operation.name().c_str(), name.c_str());
        std::exit(2);
    }
    return static_cast<std::size_t>(found - variants.begin());
}

}  // namespace

// Lines of tab-separated values:
//   time  SECTION  OPERATION  ROLE  VARIANT  LOW  MEDIAN  HIGH
//   ratio SECTION  OPERATION  SUBJECT  AGAINST  LOW  MEDIAN  HIGH
void run(const Operation& operation) {
    std::fprintf(stderr, "  %s\n", operation.name().c_str());
    const Times times = measure(operation);
    const std::string row = current_section + '\t' + operation.name();
    const std::vector<Variant>& variants = operation.variants();
    const auto print_ratio = [&](std::size_t subject, std::size_t against) {
        const Spread ratio = ratio_of(times[subject], times[against], operation.compares_minimum());
        std::fprintf(settings.output, "ratio\t%s\t%s\t%s\t%.4g\t%.4g\t%.4g\n", row.c_str(),
                     variants[subject].name.c_str(), variants[against].name.c_str(), ratio.low,
                     ratio.median, ratio.high);
    };
    for (std::size_t i = 0; i < variants.size(); ++i) {
        const Spread time = spread_of(times[i]);
        std::fprintf(settings.output, "time\t%s\t%s\t%s\t%.5g\t%.5g\t%.5g\n", row.c_str(),
                     role_name(variants[i].role), variants[i].name.c_str(), time.low, time.median,
                     time.high);
        const std::size_t library = index_of(operation, "util");
        if (variants[i].role != Role::library) {
            print_ratio(library, i);
        } else if (i != library) {
            print_ratio(i, library);
        }
    }
    std::fflush(settings.output);
}

Section::Section(std::string name, std::function<void()> body, Cores cores) {
    sections().push_back({std::move(name), std::move(body), cores});
}

}  // namespace bench

// usage: bench [--rounds N] [--seconds N] [--milliseconds N] [--bars FILE] [--section TEXT]
//              [--cores any|one] [--output FILE]
int main(int argc, char** argv) {
    using namespace bench;
#ifdef __GLIBC__
    // The heap keeps what it has, as in a process that has run for long: whether a variant gives
    // its pages back to the system depends on what the variants before it have left there.
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
#endif
    for (int i = 1; i < argc; i += 2) {
        const std::string option = argv[i];
        if (i + 1 == argc) {
            std::fprintf(stderr, "'%s' stands without a value\n", argv[i]);
            return 2;
        }
        const char* const value = argv[i + 1];
        if (option == "--rounds") {
            settings.rounds = std::max(1, std::atoi(value));
        } else if (option == "--seconds") {
            settings.seconds = std::atof(value);
        } else if (option == "--milliseconds") {
            settings.milliseconds = std::atof(value);
        } else if (option == "--section") {
            settings.filter = value;
        } else if (option == "--bars") {
            settings.bars = operations_with_bars(value);
        } else if (option == "--cores") {
            settings.cores =
                value == std::string("one") ? Section::Cores::one : Section::Cores::any;
        } else if (option == "--output") {
            settings.output = std::fopen(value, "wb");
        } else {
            std::fprintf(stderr, "unknown option '%s'\n", argv[i]);
            return 2;
        }
    }
    if (!settings.output) {
        std::perror("cannot write the output");
        return 2;
    }
    std::sort(sections().begin(), sections().end(),
              [](const NamedSection& a, const NamedSection& b) { return a.name < b.name; });
    for (const NamedSection& section : sections()) {
        if (section.cores != settings.cores) continue;
        if (section.name.find(settings.filter) == std::string::npos) continue;
        std::fprintf(stderr, "%s\n", section.name.c_str());
        current_section = section.name;
        section.body();
    }
    return std::fclose(settings.output) == 0 ? 0 : 2;
}
