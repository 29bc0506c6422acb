#include "util/host/util_getopt.h"

#include <cstring>

int UTIL_getopt(int count, const char* const* args, const char* letters, int* index,
                const char** argument) {
    if (!args || !letters || !index || !argument) return -1;
    if (*index < 0 || *index >= count || !args[*index]) return -1;
    const char* taken = args[(*index)++];
    const char option = taken[0] != '\0' ? taken[1] : '\0';
    *argument = nullptr;
    const char* letter = option != '\0' ? std::strchr(letters, option) : nullptr;
    if (letter && letter[1] == ':') *argument = args[(*index)++];
    return static_cast<unsigned char>(option);
}
