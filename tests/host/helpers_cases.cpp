#include "util/host/helpers.h"

#include "support/cases.h"
#include "util/host/util_getopt.h"

using namespace util_test;

namespace {

// Null, or a copy without a byte to spare: the sanitizers see every byte beyond.
std::unique_ptr<char[]> exact(const std::string& bytes) {
    if (bytes == "$null") return nullptr;
    auto copy = std::make_unique<char[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), copy.get());
    return copy;
}

// The result, and the name that is written with just the room that the header asks for.
Words base_name(const char* path) {
    std::string name(6000, '#');
    const int result = UTIL_basename(name.data(), path);
    name.resize(name.find('\0'));
    for (auto* function : {UTIL_basename, UTIL_CDPbasename}) {
        const auto out = exact(name + '#');
        EXPECT_EQ(function(out.get(), path), result);
        EXPECT_EQ(out.get(), name);
    }
    std::string in_place = path ? path : "";
    if (path) UTIL_basename(in_place.data(), in_place.data());
    EXPECT_EQ(in_place.c_str(), name);
    return said(result, name);
}

// The option, its argument and the index of each call. Arguments are separated by commas.
Words options(const char* letters, const std::string& arguments) {
    std::vector<std::string> texts;
    std::istringstream list(arguments);
    for (std::string one; std::getline(list, one, ',');)
        texts.push_back(one);
    std::vector<const char*> args = {"agent"};
    for (const std::string& one : texts)
        args.push_back(one == "$null" ? nullptr : one.c_str());
    const int count = static_cast<int>(args.size());
    args.push_back(nullptr);
    Words words;
    int index = 1, option;
    char* argument;  // of either type, as of main's arguments
    while ((option = UTIL_getopt(count, args.data(), letters, &index, &argument)) != -1)
        say(words, said(option, argument, index));
    return words;
}

Words refused_options() {
    const char* args[] = {"-a", nullptr};
    const char* argument;
    int index = 0, negative = -1;
    return said(UTIL_getopt(1, args, "a", &negative, &argument),
                UTIL_getopt(1, nullptr, "a", &index, &argument),
                UTIL_getopt(1, args, nullptr, &index, &argument),
                UTIL_getopt(1, args, "a", nullptr, &argument),
                UTIL_getopt(1, args, "a", &index, nullptr));
}

const Cases<CaseWorld> cases(
    "host/helpers.cases",
    {
        call("base_name", base_name),
        call("base_name_nowhere", [](const char* path) { return UTIL_basename(nullptr, path); }),
        call("equal",
             [](const std::string& a, const std::string& b, int count) {
                 return UTIL_IsBinaryEqual(exact(a).get(), exact(b).get(), count);
             }),
        call("is_device", UTIL_isBKDevice),
        call("is_serialized", [] { return g_bCloneSyncSerialized; }),
        call("options", options),
        call("refused_options", refused_options),
    });

}  // namespace
