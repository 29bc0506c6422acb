#include "creation_record.h"

#include "agent.h"
#include "errors.h"

namespace {

// "C:\" and what is below it. A path relative to a current directory means another one tomorrow.
bool is_full_directory(std::string_view path) {
    return path.size() >= 3 && path.substr(1, 2) == ":\\" && path.back() == '\\';
}

// Returns the size of the record in the file. By design, XrFile reads a text record that is cut
// short as far as it goes and reports no failure, so only the size shows the cut.
std::size_t recorded_size(const String& text) {
    const std::size_t size = text.size() + 1;
    return std::to_string(size).size() + 1 + size;
}

}  // namespace

std::vector<String> read_creation_record(const String& path) {
    XrFile file(path, "r");
    if (file.Error()) throw Trouble("cannot open '" + path + "': " + error_text(file));
    std::vector<String> directories;
    while (!file.Eof()) {
        const long begin = file.Tell();
        String directory;
        file >> directory;
        const auto size = static_cast<std::size_t>(file.Tell() - begin);
        if (file.Error() || size != recorded_size(directory) ||
            !is_full_directory(directory.view())) {
            throw Trouble(
                String::format("'%s' is damaged: no directory at byte %ld", path.c_str(), begin));
        }
        directories.push_back(directory);
    }
    if (file.Error()) throw Trouble("cannot read '" + path + "': " + error_text(file));
    return directories;
}
