// A folder for the files of a benchmark, removed with them.
#ifndef UTIL_BENCH_FILES_SCRATCH_H
#define UTIL_BENCH_FILES_SCRATCH_H

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace bench {

// In memory where there is such a place (under Wine, Linux's), so that no disk is measured.
class Scratch {
  public:
    Scratch() {
        std::error_code none;
        const std::filesystem::path memory = "Z:\\dev\\shm";
        const bool in_memory = std::filesystem::is_directory(memory, none);
        m_path = (in_memory ? memory : std::filesystem::temp_directory_path()) / "util-bench";
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    ~Scratch() {
        std::error_code none;
        std::filesystem::remove_all(m_path, none);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    std::string operator/(const std::string& name) const { return (m_path / name).string(); }

    // A file with these bytes; its path.
    std::string file(const std::string& name, const std::string& bytes) const {
        std::ofstream(m_path / name, std::ios::binary) << bytes;
        return *this / name;
    }

  private:
    std::filesystem::path m_path;
};

// A folder with many files, or "". Whoever starts the program makes them: under Wine each new name
// is compared with all that are there.
inline std::string many_files() {
    const char* const folder = std::getenv("UTIL_BENCH_FILES");
    return folder ? folder : "";
}

}  // namespace bench

#endif
