// Searching and replacing, and the XML-like escapes that are a kind of it.
#include <boost/algorithm/string/finder.hpp>
#include <boost/algorithm/string/iter_find.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#ifndef _WIN32
#include <absl/strings/str_replace.h>
#include <absl/strings/str_split.h>

#include <pugixml.hpp>
#endif

#include "bench/harness.h"
#include "util/text/text.h"

using bench::keep;
using bench::Operation;

namespace {

// No power of two: of two blocks that lie so far apart the processor takes every load from one to
// depend on the stores to the other.
constexpr std::size_t megabyte = 1000000;

// Words of letters, and one of the marks every so many bytes.
std::string text_with(const std::vector<std::string>& marks, std::size_t every, std::size_t size) {
    std::string text;
    unsigned seed = 1;
    const auto random = [&](std::size_t below) {
        seed = seed * 1103515245 + 12345;
        return (seed >> 16) % below;
    };
    while (text.size() < size) {
        const std::string& mark = marks[random(marks.size())];
        for (std::size_t n = mark.size(); n < every; ++n)
            text += "etaoin shrdlu cmfw ypvb"[random(23)];
        text += mark;
    }
    return text;
}

// What a member that changes its object and returns a copy has to do besides: the job of limits and
// peers as well as the library's.
template <typename Result>
void in_place(const std::string& subject, Result result) {
    std::string object(subject);
    object = result(object);
    keep(std::string(object));
}

void split_by_tag() {
    const std::string text = text_with({"<>"}, 45, megabyte);
    std::vector<std::string> known;
    boost::iter_split(known, text, boost::first_finder("<>"));
    const String subject(text), tag("<>");
    Operation operation("split_by_tag, 1 MB");
    operation
        .limit("known pieces",
               [&] {
                   std::vector<std::string> pieces;
                   pieces.reserve(known.size());
                   for (const std::string& piece : known)
                       pieces.emplace_back(piece.data(), piece.size());
                   keep(pieces);
               })
        .library([&] { keep(subject.split_by_tag(tag)); })
        .peer("boost::iter_split", [&] {
            std::vector<std::string> pieces;
            boost::iter_split(pieces, text, boost::first_finder("<>"));
            keep(pieces);
        });
#ifndef _WIN32
    operation.peer("absl::StrSplit",
                   [&] { keep(std::vector<std::string>(absl::StrSplit(text, "<>"))); });
#endif
    run(operation);
}

void replace_all(const char* name, std::size_t every) {
    const std::string text = text_with({"server"}, every, megabyte);
    const String subject(text);
    Operation operation(std::string("replace all, 1 MB, ") + name);
    operation.limit("copy", [&] { keep(std::string(text)); })
        .library([&] { keep(subject.replace("server", "replica")); })
        .peer("boost::replace_all_copy",
              [&] { keep(boost::replace_all_copy(text, "server", "replica")); });
#ifndef _WIN32
    operation.peer("absl::StrReplaceAll", [&] {
        keep(absl::StrReplaceAll(text, {{"server", "replica"}}));
    });
#endif
    run(operation);
}

// Texts as most are: a path, in which a directory is renamed.
void replace_short() {
    const std::string text = "\\\\server01\\share\\service\\bin";
    const String subject(text);
    Operation operation("replace, 26 bytes");
    operation.limit("copy", [&] { keep(std::string(text)); })
        .library([&] { keep(subject.replace("share", "volume")); })
        .peer("boost::replace_all_copy",
              [&] { keep(boost::replace_all_copy(text, "share", "volume")); });
#ifndef _WIN32
    operation.peer("absl::StrReplaceAll", [&] {
        keep(absl::StrReplaceAll(text, {{"share", "volume"}}));
    });
#endif
    run(operation);
}

std::string escaped_in_passes(std::string text) {
    for (const auto& [character, entity] :
         {std::pair{"&", "&amp;"}, {"<", "&lt;"}, {">", "&gt;"}, {"\"", "&quot;"}, {"'", "&apos;"}})
        boost::replace_all(text, character, entity);
    return text;
}

std::string decoded_in_passes(std::string text) {
    for (const auto& [character, entity] :
         {std::pair{"<", "&lt;"}, {">", "&gt;"}, {"\"", "&quot;"}, {"'", "&apos;"}, {"&", "&amp;"}})
        boost::replace_all(text, entity, character);
    return text;
}

#ifndef _WIN32
// The text of a node printed, which is escaped then.
class PugixmlWriter : pugi::xml_writer {
  public:
    explicit PugixmlWriter(const std::string& text) {
        m_document.append_child(pugi::node_pcdata).set_value(text.c_str());
    }
    std::string escaped() {
        m_text.clear();
        m_document.print(*this, "", pugi::format_raw | pugi::format_no_declaration);
        return m_text;
    }

  private:
    void write(const void* data, std::size_t size) override {
        m_text.append(static_cast<const char*>(data), size);
    }
    pugi::xml_document m_document;
    std::string m_text;
};

std::string decoded_by_pugixml(const std::string& text) {
    pugi::xml_document document;
    document.load_buffer(text.data(), text.size(), pugi::parse_fragment | pugi::parse_escapes);
    return document.text().get();
}

const std::vector<std::pair<absl::string_view, absl::string_view>> escapes = {
    {"&", "&amp;"}, {"<", "&lt;"}, {">", "&gt;"}, {"\"", "&quot;"}, {"'", "&apos;"}};
const std::vector<std::pair<absl::string_view, absl::string_view>> decodes = {
    {"&amp;", "&"}, {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}};
#endif

void escape(const char* name, const std::string& text) {
    const std::string result = escaped_in_passes(text);
    Operation operation(std::string("escape, ") + name);
    operation.limit("copies", [&] { in_place(text, [&](auto&) { return std::string(result); }); })
        .library([&] { keep(String(text).replaceXML()); })
        .peer("boost::replace_all, five passes",
              [&] { in_place(text, [](auto& object) { return escaped_in_passes(object); }); });
#ifndef _WIN32
    PugixmlWriter writer(text);
    operation.peer("pugixml", [&] { in_place(text, [&](auto&) { return writer.escaped(); }); })
        .peer("absl::StrReplaceAll", [&] {
            in_place(text, [](auto& object) { return absl::StrReplaceAll(object, escapes); });
        });
#endif
    run(operation);
}

void decode(const char* name, const std::string& text) {
    const std::string result = decoded_in_passes(text);
    Operation operation(std::string("decode, ") + name);
    operation.limit("copies", [&] { in_place(text, [&](auto&) { return std::string(result); }); })
        .library([&] { keep(String(text).placeXML()); })
        .peer("boost::replace_all, five passes",
              [&] { in_place(text, [](auto& object) { return decoded_in_passes(object); }); });
#ifndef _WIN32
    operation.peer("pugixml", [&] { in_place(text, decoded_by_pugixml); })
        .peer("absl::StrReplaceAll", [&] {
            in_place(text, [](auto& object) { return absl::StrReplaceAll(object, decodes); });
        });
#endif
    run(operation);
}

const bench::Section section("3 Searching, replacing and escaping", [] {
    split_by_tag();
    replace_all("every 100 KB", 100 << 10);
    replace_all("every 64 bytes", 64);
    replace_short();
    const std::vector<std::string> specials = {"&", "<", ">", "\"", "'"};
    const std::vector<std::string> entities = {"&amp;", "&lt;", "&gt;", "&quot;", "&apos;"};
    escape("40 bytes", "copy \"C:\\a & b\" to <server>'s own shares");
    escape("1 MB without any special byte", text_with({" "}, 64, megabyte));
    escape("1 MB, one in 100 bytes", text_with(specials, 100, megabyte));
    escape("1 MB, one in 10 bytes", text_with(specials, 10, megabyte));
    decode("54 bytes", "copy &quot;C:\\a &amp; b&quot; to &lt;server&gt;'s shares");
    decode("1 MB without any entity", text_with({" "}, 64, megabyte));
    decode("1 MB, one in 100 bytes", text_with(entities, 100, megabyte));
    decode("1 MB, one in 10 bytes", text_with(entities, 10, megabyte));
});

}  // namespace
