// The sample agent: what a program on top of util looks like. Each verb has its own file pair; a
// new one needs nothing here but a line in the table.
#include <exception>

#include "agent.h"
#include "cleanup.h"
#include "compare.h"
#include "inventory.h"
#include "notify.h"
#include "output.h"
#include "prepare.h"
#include "report.h"
#include "watch.h"

namespace {

struct Verb {
    const char* name;
    const char* arguments;
    const char* purpose;
    int (*run)(const Arguments&);
};

const Verb verbs[] = {
    {"inventory", "[--skip NAME]... DIR FILE", "list the tree DIR into the inventory FILE",
     inventory},
    {"compare", "OLD NEW", "show what changed between two inventory files", compare},
    {"report", "[--xml]", "check the configuration of this machine", report},
    {"watch", "PORT", "answer status lines on a port of this machine (0: any free one)", watch},
    {"prepare", "DIR RECORD", "create the directory DIR, and note in RECORD what was missing",
     prepare},
    {"cleanup", "[--dry-run] RECORD", "remove the directories that RECORD names", cleanup},
    {"notify", "PICKUP-DIR FROM TO SUBJECT BODY", "drop a mail into a pickup directory", notify},
};

String usage(const Verb& verb) {
    return String::format("agent %s %s", verb.name, verb.arguments);
}

String usage() {
    String text = "usage: agent VERB ARGUMENTS\n\n";
    for (const Verb& verb : verbs) {
        text += "  " + usage(verb) + "\n      " + verb.purpose + "\n";
    }
    return text + "\nexit status: 0 all well, 1 differences, 2 trouble";
}

int run(const Verb& verb, const Arguments& arguments) {
    try {
        return verb.run(arguments);
    } catch (const UsageError& error) {
        warn(error.what() + ("\nusage: " + usage(verb)));
    } catch (const std::exception& error) {
        warn(error.what());
    }
    return trouble;
}

// The narrow main() gets its words in the ANSI code page, which cannot spell every name.
Arguments utf8_arguments(int argc, wchar_t** argv) {
    Arguments arguments(static_cast<std::size_t>(argc));
    for (std::size_t i = 0; i < arguments.size(); ++i)
        UTIL_WideCharToUtf8(argv[i], &arguments[i]);
    arguments.erase(arguments.begin());  // the program's own name
    return arguments;
}

}  // namespace

extern "C" int wmain(int argc, wchar_t** argv) {
    const Output output;
    Arguments arguments = utf8_arguments(argc, argv);
    if (arguments.empty()) arguments.push_back("");
    const String name = arguments.front();
    arguments.erase(arguments.begin());
    if (name == "help" || name == "--help") {
        print(usage());
        return all_well;
    }
    for (const Verb& verb : verbs) {
        if (name == verb.name) return run(verb, arguments);
    }
    warn((name.empty() ? "a verb is needed" : "unknown verb '" + name + "'") + "\n" + usage());
    return trouble;
}
