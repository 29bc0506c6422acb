// A directory of a test's own, gone with everything in it when the test ends.
#ifndef UTIL_TESTS_SUPPORT_SCRATCH_DIRECTORY_H
#define UTIL_TESTS_SUPPORT_SCRATCH_DIRECTORY_H

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "util/internal/windows.h"

namespace util_test {

class ScratchDirectory {
  public:
    ScratchDirectory() {
        static int count = 0;
        m_path =
            std::filesystem::temp_directory_path() /
            ("util-test-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count));
        std::filesystem::create_directory(m_path);
    }
    ~ScratchDirectory() {
        std::error_code ignored;
        for (auto& entry : std::filesystem::recursive_directory_iterator(m_path, ignored)) {
            SetFileAttributesW(entry.path().c_str(),
                               FILE_ATTRIBUTE_NORMAL);  // read-only files stay
        }
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    // Absolute, UTF-8, backslashes, no trailing one.
    std::string path() const { return m_path.u8string(); }
    // The path of a UTF-8 name in here; nothing is created.
    std::string path(const std::string& name) const { return path() + "\\" + name; }

    // Creates the file with these bytes and returns its path.
    std::string write(const std::string& name, const std::string& bytes) const {
        std::ofstream file(std::filesystem::u8path(path(name)), std::ios::binary);
        file << bytes;
        if (!file.flush()) throw std::runtime_error("cannot write " + name);
        return path(name);
    }
    // Every byte of a file in here.
    std::string read(const std::string& name) const {
        std::ifstream file(std::filesystem::u8path(path(name)), std::ios::binary);
        if (!file) throw std::runtime_error("cannot read " + name);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    // Creates the directory and its parents and returns its path.
    std::string make_directory(const std::string& name) const {
        std::filesystem::create_directories(std::filesystem::u8path(path(name)));
        return path(name);
    }

  private:
    std::filesystem::path m_path;
};

}  // namespace util_test

#endif
