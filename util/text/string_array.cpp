#include "util/text/string_array.h"

String serializeStrArray(const std::vector<String>& list) {
    String text;
    for (const String& element : list) {
        if (&element != &list.front()) text += '$';
        text += element;
    }
    return text;
}

std::vector<String> deserializeStrArray(const String& text) {
    return text.split("$", true);
}
