#include <new>

#include "support/cases.h"
#include "util/text/byte_string.h"
#include "util/text/string_array.h"
#include "util/text/xml_tags.h"

using extstl::ExtString;
using namespace util_test;

namespace {

using Size = std::uint64_t;

const char* const no_memory = "raises std::bad_alloc";

// Operations change the object. One that runs out of memory leaves it as it was.
struct World : CaseWorld {
    std::optional<String> object{""};

    template <typename Change>
    Words changed(Change change) {
        String& s = *object;
        const std::string before = s.str();
        try {
            change(s);
        } catch (const std::bad_alloc&) {
            if (s.str() != before) return said("changed without memory", s);
            throw;
        }
        return said(s);
    }
    // The first occurrence replaced, then all of them.
    Words replace(const char* from, const char* to) {
        String& s = *object;
        String once(s);
        once.replace(from, to, String::SCOPE_FIRST);
        const String by_default = String(s).replace(from, to);
        s.replace(from, to, String::scopeType(-7));
        return by_default == s ? said(once, s) : said("another default", by_default);
    }
    Words add_tag(const char* tag, const char* value) {
        const int result = UTIL_addTag(*object, tag, value);
        return said(result, *object);
    }
    Words extract_tag(const String& tag) const {
        String value("untouched");
        const int result = UTIL_extractTag(*object, tag, value);
        return said(result, value);
    }
    Words xml_value(const String& tag, const String& attribute) const {
        String value("untouched");
        const int result = UTIL_XMLParserExtractTagValue(&*object, &tag, &attribute, &value);
        return said(result, value);
    }
    Words xml_text(const String& tag, bool trims) const {
        String value("untouched");
        const int result = UTIL_XMLParserExtractTagXml(&*object, &tag, &value, trims);
        return said(result, value);
    }
};

// A member that changes the object. Its result is the object.
template <typename Result, typename... Arguments>
Call changing(const char* name, Result (String::*change)(Arguments...)) {
    return call(name, no_memory, [change](World& w, std::decay_t<Arguments>... arguments) {
        return w.changed([&](String& s) { (s.*change)(arguments...); });
    });
}
// The overload of a member with that type.
template <typename Function>
constexpr auto as(Function String::*member) {
    return member;
}

// Without one of the pointers.
Words xml_nulls() {
    String s("<a b=\"c\"></a>");
    Words results;
    for (const int missing : {0, 1, 2, 3}) {
        String* p[] = {&s, &s, &s, &s};
        p[missing] = nullptr;
        say(results, said(UTIL_XMLParserExtractTagValue(p[0], p[1], p[2], p[3])));
        if (missing < 3) say(results, said(UTIL_XMLParserExtractTagXml(p[0], p[1], p[2], true)));
    }
    return results;
}

const Cases<World> cases(
    "text/text.cases",
    {
        call("text", [](World& w, const std::string& bytes) { w.object.emplace(bytes); }),
        call("to_int", &String::to_int),
        call("first",
             [](const String& s, const char* part, Size from) { return s.first(part, from); }),
        call("first_byte", [](const String& s, char c, Size from) { return s.first(c, from); }),
        call("last", &String::last),
        call("find", no_memory, &ExtString::find),
        call("substr", no_memory,
             [](const String& s, Size from, Size n) { return s.substr(from, n); }),
        call("rest", no_memory, [](const String& s, Size from) { return s.substr(from); }),
        call("ext_substr", no_memory,
             [](const ExtString& s, Size from, Size n) { return s.substr(from, n); }),
        call("upper", [](ExtString s) { return s.upper(), s; }),
        call("lower", [](ExtString s) { return s.lower(), s; }),
        call("to_upper", no_memory, &String::to_upper),
        call("to_lower", no_memory, &String::to_lower),
        call("trim", no_memory, &String::trim),
        call("split", no_memory, &String::split),
        call("split_by_tag", no_memory, &String::split_by_tag),
        call("serialized", no_memory,
             [](const String& s) {
                 return deserializeStrArray(serializeStrArray(s.split(" ", true)));
             }),

        changing("append", as<String&(const String&)>(&String::operator+=)),
        changing("append_text", as<String&(const char*)>(&String::operator+=)),
        changing("prepend", &String::prepend),
        call("prepend_itself", no_memory, [](World& w) { return w.object->prepend(*w.object); }),
        changing("replace_part", as<String&(Size, Size, const char*, Size)>(&String::replace)),
        changing("replace_rest", as<String&(Size, Size, const char*)>(&String::replace)),
        call("replace_by_itself", no_memory,
             [](World& w, Size at, Size n, Size most) {
                 return w.object->replace(at, n, *w.object, most);
             }),
        changing("squeeze", &String::squeeze_spaces),
        changing("escape", &String::replaceXML),
        changing("unescape", &String::placeXML),
        call("replace", no_memory, &World::replace),
        call("add_tag", no_memory, &World::add_tag),
        call("add_itself",
             [](World& w) {
                 const int result = UTIL_addTag(*w.object, *w.object, *w.object);
                 return said(result, *w.object);
             }),
        call("extract_tag", "-1 untouched", &World::extract_tag),
        call("xml_value", "-1 untouched", &World::xml_value),
        call("xml_text", "-1 untouched", &World::xml_text),
        call("xml_nulls", xml_nulls),
    });

}  // namespace
