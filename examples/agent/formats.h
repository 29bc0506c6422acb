// Output for other programs: JSON, CSV and XML, all in UTF-8.
#ifndef AGENT_FORMATS_H
#define AGENT_FORMATS_H

#include <cstdint>
#include <utility>
#include <vector>

#include "options.h"
#include "util/util.h"

enum class Format { text, json, csv, xml };

// The format that the options name. Raises UsageError when they name more than one.
Format format_of(const Options& options);

// A JSON string: json("a\"b") is "\"a\\\"b\"". Bytes that are no UTF-8 become U+FFFD.
String json(const String& text);
String json(std::uint64_t number);

// A JSON object on one line. The values are JSON: {"path": "a", "size": 5}.
using JsonMembers = std::vector<std::pair<const char*, String>>;
String json_object(const JsonMembers& members);

// A JSON object that is printed while it grows, one member or list element on each line.
class JsonDocument {
  public:
    JsonDocument();
    void member(const char* name, const String& value);
    void list(const char* name);  // lasts until the next member, the next list or end()
    void element(const String& value);
    void end();

  private:
    void add(const String& line);
    void end_list();

    String m_pending;  // the last line: whether a comma follows shows with the next one
    bool m_in_list = false;
};

// One line of a CSV table. A field with a comma, a quote or a line end is quoted.
String csv_row(const std::vector<String>& fields);

// <tag>text</tag> with the text escaped. Characters that XML forbids become U+FFFD.
String xml_element(const String& tag, const String& text);

// UTC as "2010-03-07T14:05:09Z". "" for a time that has no such text.
String utc_text(std::int64_t time);

#endif
