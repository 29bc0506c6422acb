// The sample agent: what a program on top of util looks like. Each verb has its own file pair. A
// new verb needs a line in the table here.
#include <algorithm>
#include <exception>

#include "agent.h"
#include "cleanup.h"
#include "compare.h"
#include "errors.h"
#include "inventory.h"
#include "notify.h"
#include "output.h"
#include "prepare.h"
#include "report.h"
#include "versions.h"
#include "watch.h"

namespace {

const Verb* const verbs[] = {&inventory_verb, &compare_verb, &report_verb, &watch_verb,
                             &prepare_verb,   &cleanup_verb, &notify_verb};

const Verb* find_verb(const String& name) {
    for (const Verb* verb : verbs) {
        if (name == verb->name) return verb;
    }
    return nullptr;
}

// All texts for the user are printed line by line: what comes out in one piece is one line.
void print_lines(const String& text) {
    for (const String& line : text.split("\n", false))
        print(line);
}

String usage(const Verb& verb) {
    return String::format("usage: agent %s %s", verb.name, verb.words);
}

void print_help(const Verb& verb) {
    print(usage(verb));
    print(verb.purpose);
    print_lines(verb.help);
}

void print_help() {
    print("usage: agent VERB ARGUMENTS");
    for (const Verb* verb : verbs)
        print(String::format("  %-10s  %s", verb->name, verb->purpose));
    print_lines(
        "'agent VERB --help' shows the options of a verb. '--' ends them: all words after it are "
        "names.\n'agent --version' shows the versions of agent and util.dll.\n"
        "exit status: 0 all well, 1 differences, 2 trouble");
}

int run(const Verb& verb, const Arguments& arguments) {
    try {
        return verb.run(arguments);
    } catch (const HelpWanted&) {
        print_help(verb);
        return all_well;
    } catch (const UsageError& error) {
        warn(error.what());
        warn(usage(verb));
    } catch (const std::exception& error) {
        warn(error.what());
    }
    return trouble;
}

int run(const String& name, const Arguments& rest) {
    if (const Verb* const verb = find_verb(name)) return run(*verb, rest);
    if (name == "help" || name == "--help" || name == "-h") {
        const Verb* const verb = rest.empty() ? nullptr : find_verb(rest.front());
        if (verb) {
            print_help(*verb);
        } else {
            print_help();
        }
        return all_well;
    }
    if (name == "--version") {
        print_lines(versions());
        return all_well;
    }
    warn(name.empty() ? String("a verb is needed") : "unknown verb '" + name + "'");
    warn("'agent --help' lists the verbs");
    return trouble;
}

// The narrow main() gets its words in the ANSI code page, which cannot spell every name.
Arguments utf8_arguments(int argc, wchar_t** argv) {
    Arguments arguments(static_cast<std::size_t>(argc));
    for (std::size_t i = 0; i < arguments.size(); ++i)
        UTIL_WideCharToUtf8(argv[i], &arguments[i]);
    return arguments;
}

}  // namespace

extern "C" int wmain(int argc, wchar_t** argv) {
    const Output output;
    Arguments words = utf8_arguments(argc, argv);  // the first is the program's own name
    words.resize(std::max<std::size_t>(words.size(), 2));
    const String name = words[1];
    words.erase(words.begin(), words.begin() + 2);
    return run(name, words);
}
