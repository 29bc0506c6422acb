// Small XML-like fragments, written and read by plain search: there is no parser, and nothing
// checks that a fragment is well formed.
#ifndef UTIL_TEXT_XML_TAGS_H
#define UTIL_TEXT_XML_TAGS_H

#include "util/export.h"
#include "util/text/byte_string.h"

// All four may be called from any thread. Names are taken up to their first NUL, and so is a text
// that is handed back. An output may be the same object as an input.

// Appends "<tag>value</tag>" to document, with tag and value escaped as by String::replaceXML, and
// nothing before, between or after. Always returns 0; raises std::bad_alloc, with document
// unchanged, when memory runs out.
//
//     String document;
//     UTIL_addTag(document, "k", "1<2");   // document is <k>1&lt;2</k>
UTIL_API int UTIL_addTag(String& document, const String& tag, const String& value);

// Stores the text of the first element called tag in value, decoded as by String::placeXML, and
// returns 0: what lies between the escaped tag with ">" right behind it and the next "<". Returns
// -1, with value unchanged, when either is missing or the text is a double quote alone, and when
// memory runs out; nothing is raised.
//
// Meant as it is: what stands before the tag is not looked at, so "</k>" and "<disk>" also begin an
// element "k"; a start tag with attributes does not; and nested elements are not supported. Choose
// names of which none ends another.
//
//     UTIL_extractTag("<k>1&lt;2</k>", "k", value)   // 0, and value is 1<2
UTIL_API int UTIL_extractTag(const String& document, const String& tag, String& value);

UTIL_EXTERN_C_BEGIN

// Stores what stands between the first two double quotes after the first "=" after attribute in
// value, without decoding it, and returns 0. Returns -1, with value unchanged, when "<tag" or any
// of these is missing, a pointer is null or memory runs out; nothing is raised.
//
// Meant as it is: the attribute is searched from the start of the whole document. The element only
// has to be there; the attribute may belong to another one.
//
//     const String document("<a x=\"1\"/><b y=\"2\"/>"), tag("a"), attribute("y");
//     UTIL_XMLParserExtractTagValue(&document, &tag, &attribute, &value);   // 0, and value is "2"
UTIL_API int UTIL_XMLParserExtractTagValue(const String* document, const String* tag,
                                           const String* attribute, String* value);

// Stores what stands between the start tag, which may have attributes, and the first "</tag>" in
// content, markup and entities as they are, and returns 0. White space at its start is always left
// out; at its end only when trimTrailing is true. The difference is meant. Returns -1, with content
// unchanged, when "<tag", its ">" or "</tag>" is missing or they stand in another order, a pointer
// is null or memory runs out; nothing is raised. A longer name that begins with tag also counts as
// its start tag.
//
//     const String document("<a k=\"v\">  <b/>  </a>"), tag("a");
//     UTIL_XMLParserExtractTagXml(&document, &tag, &content, true);   // 0, and content is <b/>
UTIL_API int UTIL_XMLParserExtractTagXml(const String* document, const String* tag, String* content,
                                         bool trimTrailing);

UTIL_EXTERN_C_END

#endif
