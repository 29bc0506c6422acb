#include "support/cases.h"

#include <regex>

namespace util_test {
namespace {

// The words of a line as they are written, ";" and "=>" among them, without its comment.
Words tokens(const std::string& line) {
    static const std::regex token(
        R"re((^#.*| {2,}# .*)| +|;|(?:[^ ;"{}]|"[^"]*"|\{[^}]*\})+|(.))re");
    Words result;
    for (std::sregex_iterator at(line.begin(), line.end(), token), end; at != end; ++at) {
        if ((*at)[1].matched) break;
        if ((*at)[2].matched) throw CaseError("an open quote or brace");
        if (at->str()[0] != ' ') result.push_back(at->str());
    }
    return result;
}

// What stands between two semicolons.
std::vector<Words> parts(Words::const_iterator begin, Words::const_iterator end) {
    std::vector<Words> result(1);
    for (; begin != end; ++begin) {
        if (*begin == ";") {
            result.emplace_back();
        } else {
            result.back().push_back(*begin);
        }
    }
    return result;
}

Block::Line parsed(const std::string& text, int number, const std::vector<Call>& known) {
    Block::Line line = {number, {}, {}};
    const Words all = tokens(text);
    const auto arrow = std::find(all.begin(), all.end(), "=>");
    std::size_t results = 0;
    for (const Words& words : parts(all.begin(), arrow)) {
        if (words.empty()) throw CaseError("a call without a name");
        const auto call = std::find_if(known.begin(), known.end(),
                                       [&](const Call& one) { return one.name == words[0]; });
        if (call == known.end()) throw CaseError("no such call: " + words[0]);
        if (words.size() - 1 != call->arguments) {
            throw CaseError(words[0] + " takes " + std::to_string(call->arguments) + " words");
        }
        line.calls.emplace_back(&*call, Words(words.begin() + 1, words.end()));
        results += call->has_result;
    }
    if (arrow != all.end()) line.results = parts(arrow + 1, all.end());
    const bool missing = std::any_of(line.results.begin(), line.results.end(),
                                     [](const Words& words) { return words.empty(); });
    if (!missing && line.results.size() == results) return line;
    if (!rewriting()) throw CaseError(std::to_string(results) + " results belong here");
    line.results.assign(results, {});
    return line;
}

// Takes "[plain]" and "[windows]" from the end of the title.
void read_tags(Block& block) {
    std::string& title = block.title;
    while (!title.empty() && title.back() == ']') {
        const std::size_t begin = std::min(title.rfind(" ["), title.size());
        const std::string tag = title.substr(begin);
        if (tag != " [plain]" && tag != " [windows]") throw CaseError("no such tag:" + tag);
        (tag == " [plain]" ? block.plain : block.windows_only) = true;
        title.resize(begin);
    }
}

// The bytes that a word stands for.
std::string meaning(const std::string& word, const CaseWorld& world) {
    static const std::regex part(
        R"re(\{((?:[0-9A-F]{2})+)\}|\{([^}]+)\*([0-9]+)\}|\$([A-Za-z0-9]+)|(\{)|"|[^{"$]+)re");
    std::string result;
    for (std::sregex_iterator at(word.begin(), word.end(), part), end; at != end; ++at) {
        const auto group = [&](int number) { return (*at)[std::size_t(number)].str(); };
        if (group(5) == "{") throw CaseError("not bytes: " + word);
        for (std::size_t i = 0; i < group(1).size(); i += 2)
            result += static_cast<char>(std::stoi(group(1).substr(i, 2), nullptr, 16));
        for (int n = group(2).empty() ? 0 : std::stoi(group(3)); n > 0; --n)
            result += group(2);
        if (group(4) == "null") {
            result += "$null";
        } else if (!group(4).empty()) {
            const auto value = world.values.find(group(4));
            if (value == world.values.end()) throw CaseError("no such value: $" + group(4));
            result += value->second;
        } else if (group(1).empty() && group(2).empty() && at->str() != "\"") {
            result += at->str();
        }
    }
    return result;
}

// The length of the UTF-8 character there; 0 if there is none that can be shown.
std::size_t shown_character(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80) return first >= 0x20 && first != 0x7F && !std::strchr("{}\"$", first);
    const std::size_t size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 0;
    if (first > 0xF4 || size == 0 || text.size() < size) return 0;
    for (std::size_t i = 1; i < size; ++i) {
        if ((text[i] & 0xC0) != 0x80) return 0;
    }
    return size;
}

std::string written(const std::string& word, const CaseWorld& world) {
    if (word.empty()) return "\"\"";
    if (word == "$null") return word;
    constexpr std::size_t shortest_run = 20;
    std::string result;
    bool bytes_before = false;
    for (std::size_t i = 0; i < word.size();) {
        const std::string_view rest = std::string_view(word).substr(i);
        const std::pair<const std::string, std::string>* value = nullptr;
        for (const auto& one : world.values) {
            const bool longer = one.second.size() > (value ? value->second.size() : 3);
            if (longer && rest.substr(0, one.second.size()) == one.second) value = &one;
        }
        if (value) {
            result += "$" + value->first;
            bytes_before = false;
            i += value->second.size();
            continue;
        }
        const std::size_t run = std::min(rest.find_first_not_of(rest[0]), rest.size());
        std::size_t size = shown_character(rest);
        const bool after_bytes = std::exchange(bytes_before, size == 0);
        if (size == 1 && run >= shortest_run) {
            result += std::string("{") + rest[0] + "*" + std::to_string(run) + "}";
            size = run;
        } else if (size == 0) {
            char byte[8];
            std::snprintf(byte, sizeof byte, "{%02X}", static_cast<unsigned char>(rest[0]));
            if (after_bytes) result.pop_back();
            result += after_bytes ? byte + 1 : byte;
            size = 1;
        } else {
            result += rest.substr(0, size);
        }
        i += size;
    }
    const bool quoted =
        result.find_first_of(" ;") != std::string::npos || result[0] == '#' || result == "=>";
    return quoted ? '"' + result + '"' : result;
}

}  // namespace

std::string written(const Words& words, const CaseWorld& world) {
    std::string result;
    for (const std::string& word : words)
        result += (result.empty() ? "" : " ") + written(word, world);
    return result;
}

bool rewriting() {
    return std::getenv("UTIL_REWRITE_CASES") != nullptr;
}

Words Step::make() const {
    try {
        return call.make(world, arguments);
    } catch (const CaseError&) {
        throw;
    } catch (const std::exception& error) {
        return {"raises", error.what()};
    }
}

void Block::play(const Player& player) const {
    if (!error.empty()) throw CaseError(error);
    const std::unique_ptr<CaseWorld> world = file->new_world();
    const auto meanings = [&](const Words& words) {
        Words result;
        for (const std::string& word : words)
            result.push_back(meaning(word, *world));
        return result;
    };
    for (const Line& one : lines) {
        try {
            auto result = one.results.begin();
            for (const auto& [call, arguments] : one.calls) {
                const Words expected = call->has_result ? meanings(*result++) : Words();
                if (!player({*call, *world, meanings(arguments), expected, one.number})) return;
            }
        } catch (const CaseError& mistake) {
            throw CaseError(std::to_string(one.number) + ": " + mistake.what());
        }
    }
}

CaseFile::CaseFile(const std::string& name, std::vector<Call> known, NewWorld make)
    : path(std::filesystem::absolute(std::string(UTIL_TESTS) + name).string()),
      stem(std::filesystem::path(name).stem().string()),
      calls(std::move(known)),
      new_world(std::move(make)) {
    std::ifstream in(path, std::ios::binary);
    if (!in) blocks.push_back({this, "file", 0, false, false, {}, "cannot be opened"});
    int number = 0;
    for (std::string text; std::getline(in, text);) {
        ++number;
        try {
            if (text.rfind("== ", 0) == 0) {
                blocks.push_back({this, text.substr(3), number, false, false, {}, ""});
                read_tags(blocks.back());
            } else if (!tokens(text).empty()) {
                if (blocks.empty()) throw CaseError("a call before the first title");
                blocks.back().lines.push_back(parsed(text, number, calls));
            }
        } catch (const std::exception& error) {
            if (blocks.empty()) blocks.push_back({this, "file", number, false, false, {}, ""});
            std::string& errors = blocks.back().error;
            errors += std::to_string(number) + ": " + error.what() + "\n";
        }
    }
}

}  // namespace util_test
