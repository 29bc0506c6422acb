#include "util/text/string_array.h"

String serializeStrArray(const std::vector<String>& list) {
    String text;
    bool first = true;
    for (const String& element : list) {
        if (!first) text += '$';
        text += element;
        first = false;
    }
    return text;
}

std::vector<String> deserializeStrArray(const String& text) {
    return text.split("$", true);
}
