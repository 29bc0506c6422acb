#include "support/cases.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string_view>
#include <utility>

namespace util_test {
namespace {

// The words of a line as they are written, ";" and "=>" among them, without its comment.
Words tokens(const std::string& line) {
    Words result;
    std::string token;
    bool quoted = false, braced = false;
    const auto finish = [&] {
        if (!token.empty()) result.push_back(token);
        token.clear();
    };
    for (const char c : line) {
        const bool inside = quoted || braced;
        if (!inside && token.empty() && c == '#') break;
        if (!inside && (c == ' ' || c == ';')) {
            finish();
            if (c == ';') result.push_back(";");
            continue;
        }
        token += c;
        if (c == '"' && !braced) quoted = !quoted;
        if (c == '{' || c == '}') braced = c == '{';
    }
    if (quoted || braced) throw CaseError("an open quote or brace");
    finish();
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
    std::string result;
    for (std::size_t i = 0; i < word.size(); ++i) {
        if (word[i] == '{') {
            const std::size_t end = word.find('}', i);
            const std::string inside = word.substr(i + 1, end - i - 1);
            const std::size_t star = inside.rfind('*');
            if (star != std::string::npos) {
                for (int n = std::stoi(inside.substr(star + 1)); n > 0; --n)
                    result += inside.substr(0, star);
            } else if (inside.empty() || inside.size() % 2 != 0 ||
                       inside.find_first_not_of("0123456789ABCDEF") != std::string::npos) {
                throw CaseError("no bytes: " + word);
            }
            for (std::size_t n = 0; star == std::string::npos && n < inside.size(); n += 2)
                result += static_cast<char>(std::stoi(inside.substr(n, 2), nullptr, 16));
            i = end;
        } else if (word[i] == '$') {
            std::size_t end = i + 1;
            while (end < word.size() && (std::isalnum(static_cast<unsigned char>(word[end])) != 0))
                ++end;
            const std::string name = word.substr(i + 1, end - i - 1);
            const auto value = world.values.find(name);
            if (name != "null" && value == world.values.end())
                throw CaseError("no such value: $" + name);
            result += name == "null" ? "$null" : value->second;
            i = end - 1;
        } else if (word[i] != '"') {
            result += word[i];
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
