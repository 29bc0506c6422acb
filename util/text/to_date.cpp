#include "util/internal/ascii.h"
#include "util/internal/guarded.h"
#include "util/text/byte_string.h"
#include "util/text/date.h"

namespace {

extstl::ExtTime read_time(const String& text) {
    const std::vector<String> fields = text.split(" /:", true);
    if (fields.size() < 5) return extstl::ExtTime();

    const bool has_seconds = fields.size() > 5 && util::is_digit(fields[5].c_str()[0]);
    std::string label;
    if (fields.size() > (has_seconds ? 6u : 5u)) {
        const std::vector<String> words = text.split(" ", true);
        if (words.size() == 3) label = words[2].str();
    }
    const extstl::ExtDate date(fields[2].to_int(), fields[1].to_int(), fields[0].to_int());
    return extstl::ExtTime(date, fields[3].to_int(), fields[4].to_int(),
                           has_seconds ? fields[5].to_int() : 0, label);
}

}  // namespace

extstl::ExtTime String::toDate() const {
    return util::guarded([] { return extstl::ExtTime(); }, [&] { return read_time(*this); });
}
