#include "options.h"

#include <algorithm>

Options::Options(const Arguments& words, std::initializer_list<std::string> known) {
    const auto is_known = [&](const std::string& name) {
        return std::find(known.begin(), known.end(), name) != known.end();
    };
    bool options_ended = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const String& word = words[i];
        if (options_ended || word.size() < 2 || word.first("-", 0) != 0) {
            m_operands.push_back(word);
            continue;
        }
        options_ended = word == "--";
        if (options_ended) continue;
        if (word == "-h" || word == "--help") throw HelpWanted();
        const std::uint64_t sign = word.first("=", 0);
        const std::string name = word.substr(0, sign).str();
        if (sign == String::npos && is_known(name)) {
            m_options.emplace_back(name, "");
        } else if (!is_known(name + "=")) {
            throw UsageError("unknown option '" + word + "'");
        } else if (sign != String::npos) {
            m_options.emplace_back(name, word.substr(sign + 1));
        } else if (++i < words.size()) {
            m_options.emplace_back(name, words[i]);
        } else {
            throw UsageError(name + " needs a value");
        }
    }
}

bool Options::has(const std::string& name) const {
    return std::any_of(m_options.begin(), m_options.end(),
                       [&](const auto& option) { return option.first == name; });
}

std::vector<String> Options::values(const std::string& name) const {
    std::vector<String> found;
    for (const auto& [option, value] : m_options) {
        if (option == name) found.push_back(value);
    }
    return found;
}
