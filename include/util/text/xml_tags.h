/// @file
/// Writes and reads small XML-like fragments by plain search. There is no parser, and nothing
/// checks that a fragment is well formed.
///
/// Any thread may call these functions. A name ends at its first NUL, and so does a text that is
/// returned. An output may be the same object as an input.
#ifndef UTIL_TEXT_XML_TAGS_H
#define UTIL_TEXT_XML_TAGS_H

#include "util/export.h"
#include "util/text/byte_string.h"

/// Appends `"<tag>value</tag>"` to `document`, with `tag` and `value` escaped as by
/// `String::replaceXML`. Adds no indentation and no line end. Always returns 0. If out of memory,
/// raises `std::bad_alloc` and leaves `document` unchanged.
///
///     String document;
///     UTIL_addTag(document, "k", "1<2");   // document is <k>1&lt;2</k>
UTIL_API int UTIL_addTag(String& document, const String& tag, const String& value);

/// Stores the text of the first element `tag` in `value`, decoded as by `String::placeXML`, and
/// returns 0. Searches for `tag` escaped as by `String::replaceXML`. The text begins after the
/// first place where `">"` directly follows the escaped tag. It ends before the next `"<"`.
///
/// Returns -1, with `value` unchanged, if either is missing, if the text is a double quote alone,
/// or if out of memory. Raises nothing.
///
/// By design, the bytes before the tag are ignored, so `"</k>"` and `"<disk>"` also begin an
/// element `"k"`. By design, a start tag with attributes does not begin one, and nested elements
/// are not supported. Choose names so that no name ends with another.
///
///     UTIL_extractTag("<k>1&lt;2</k>", "k", value)   // 0, and value is 1<2
UTIL_API int UTIL_extractTag(const String& document, const String& tag, String& value);

UTIL_EXTERN_C_BEGIN

/// Finds `attribute`, the first `"="` after it, and the first two double quotes after that. Stores
/// the text between the quotes in `value`, without decoding it, and returns 0.
///
/// Returns -1, with `value` unchanged, if `"<tag"` or any of these is missing, if a pointer is
/// null, or if out of memory. Raises nothing.
///
/// By design, the search for the attribute begins at the start of the document. The element must
/// exist, but the attribute may belong to another one.
///
///     const String document("<a x=\"1\"/><b y=\"2\"/>"), tag("a"), attribute("y");
///     UTIL_XMLParserExtractTagValue(&document, &tag, &attribute, &value);   // 0, and value is "2"
UTIL_API int UTIL_XMLParserExtractTagValue(const String* document, const String* tag,
                                           const String* attribute, String* value);

/// Stores the text between the start tag, which may have attributes, and the first `"</tag>"` in
/// `content`, and returns 0. Markup and entities are unchanged. By design, white space at the start
/// is always removed, and white space at the end only if `trimTrailing` is true. A longer name that
/// begins with `tag` also counts as its start tag.
///
/// Returns -1, with `content` unchanged, if `"<tag"`, its `">"` or `"</tag>"` is missing or in
/// another order, if a pointer is null, or if out of memory. Raises nothing.
///
///     const String document("<a k=\"v\">  <b/>  </a>"), tag("a");
///     UTIL_XMLParserExtractTagXml(&document, &tag, &content, true);   // 0, and content is <b/>
UTIL_API int UTIL_XMLParserExtractTagXml(const String* document, const String* tag, String* content,
                                         bool trimTrailing);

UTIL_EXTERN_C_END

#endif
