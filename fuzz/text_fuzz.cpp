#include <new>
#include <vector>

#include "fuzz/fuzz.h"
#include "util/internal/ascii.h"
#include "util/text/text.h"

namespace util_fuzz {
namespace {

using Fields = std::vector<String>;

bool is_in(char c, const std::string& set) {
    return set.find(c) != std::string::npos;
}

std::string upper(std::string text) {
    for (char& c : text)
        c = util::to_upper(c);
    return text;
}

Fields model_split(const std::string& text, const std::string& separators, bool skip_empty) {
    Fields fields;
    std::string field;
    for (std::size_t i = 0; i <= text.size() && !text.empty(); ++i) {
        if (i < text.size() && !is_in(text[i], separators)) {
            field += text[i];
        } else {
            if (!field.empty() || !skip_empty) fields.emplace_back(field);
            field.clear();
        }
    }
    return fields;
}

std::string model_squeeze(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!util::is_space(text[i]) && !util::is_control(text[i])) {
            result += text[i];
        } else if (i > 0 && !util::is_space(text[i - 1])) {
            result += ' ';
        }
    }
    return result;
}

std::uint32_t model_hash(const std::string& text) {
    auto h = static_cast<std::uint32_t>(text.size());
    for (std::size_t i = 0; i < text.size(); i += 4) {
        const std::size_t n = std::min<std::size_t>(4, text.size() - i);
        std::uint32_t word = 0;
        for (std::size_t k = 0; k < n; ++k) {
            const auto byte = static_cast<signed char>(text[i + k]);
            if (n == 4) {
                word |= std::uint32_t{static_cast<unsigned char>(byte)} << (8 * k);
            } else {
                word = word << 8 | static_cast<std::uint32_t>(std::int32_t{byte});
            }
        }
        h = (h << 5 | h >> 27) ^ word;
    }
    return h;
}

void check_split(const std::string& bytes, const std::string& separators) {
    const String subject(bytes);
    const Fields filled = model_split(bytes, separators, true);
    const std::vector<String> split = subject.split(separators, true);
    require(split == filled, "split gives the filled fields");
    require(split.capacity() == filled.size(), "the list of split has room for its fields only");
    if (bytes.empty() || !filled.empty()) {
        const std::vector<String> all = subject.split(separators, false);
        require(all == model_split(bytes, separators, false), "split gives all fields");
        require(all.capacity() == all.size(), "the list of all fields has room for them only");
        return;
    }
    try {
        subject.split(separators, false);
        require(false, "only separators raise");
    } catch (const std::bad_alloc&) {
    }
}

void check_split_by_tag(const std::string& bytes, const std::string& tag) {
    Fields expected;
    std::size_t begin = 0;
    for (std::size_t end = 0; !tag.empty() && (end = bytes.find(tag, begin)) != std::string::npos;
         begin = end + tag.size()) {
        expected.emplace_back(bytes.substr(begin, end - begin));
    }
    if (begin < bytes.size()) expected.emplace_back(bytes.substr(begin));
    const std::vector<String> pieces = String(bytes).split_by_tag(tag);
    require(pieces == expected, "split_by_tag");
    require(pieces.capacity() <= expected.size() + 1, "the list of split_by_tag is allocated once");
}

// Every field up to its NUL, also empty ones and those with a "$".
void check_string_array(const Fields& fields) {
    std::string joined;
    for (const String& field : fields)
        joined += (&field == fields.data() ? "" : "$") + up_to_nul(field.str());
    require(serializeStrArray(fields) == joined, "serializeStrArray");
    require(deserializeStrArray(joined) == model_split(joined, "$", true), "deserializeStrArray");
}

void check_trim(const std::string& bytes, const std::string& set) {
    const std::string members = up_to_nul(set) + '\0';
    std::string expected = bytes;
    while (!expected.empty() && is_in(expected.back(), members))
        expected.pop_back();
    while (!expected.empty() && is_in(expected.front(), members))
        expected.erase(0, 1);
    require(String(bytes).trim(set.c_str()).str() == expected, "trim");
}

// The members that go byte by byte; some see the text up to its first NUL, others all of it.
void check_bytes(const std::string& bytes) {
    const String subject(bytes);
    std::string upper, lower;
    bool ascii = true;
    for (const char c : up_to_nul(bytes)) {
        upper += c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
        lower += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        ascii = ascii && static_cast<unsigned char>(c) < 0x80;
    }
    require(subject.to_upper().str() == upper, "to_upper");
    require(subject.to_lower().str() == lower, "to_lower");
    require(subject.isAscii() == ascii, "isAscii");
    bool unprintable = false;
    for (const char c : bytes)
        unprintable = unprintable || static_cast<signed char>(c) < 32;
    require(subject.hasUnprintable() == unprintable, "hasUnprintable");
}

}  // namespace

void text(std::string_view input) {
    Parameters parameters(input);
    const std::string few = parameters.short_text();
    const std::string bytes = parameters.rest();

    const std::string needle = up_to_nul(few);
    for (const std::size_t from : {std::size_t{0}, few.size()}) {
        require(String(bytes).first(needle.c_str(), from) == bytes.find(needle, from), "first");
        require(String(bytes).find(few, from, 1) == upper(bytes).find(upper(few), from),
                "find without regard to case");
    }
    check_bytes(bytes);
    check_split(bytes, few);
    check_split_by_tag(bytes, few);
    check_trim(bytes, few);
    require(String(bytes).hash() == model_hash(bytes), "hash");
    String squeezed(bytes);
    require(squeezed.squeeze_spaces() == model_squeeze(up_to_nul(bytes)), "squeeze_spaces");
    require(squeezed == model_squeeze(up_to_nul(bytes)), "squeeze_spaces in place");
    require(String::format("%s", bytes.c_str()) == bytes.c_str(), "format copies");

    check_string_array(model_split(bytes, "\n", false));
}

}  // namespace util_fuzz
