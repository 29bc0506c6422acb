// The format, in XrFile's binary records:
//
//     "util agent inventory", version          what it is
//     root, taken, number of entries
//     path, mode, size, modified               once for each entry
//     checksum                                 over everything before it
//
// A number that may need more than 32 bits is stored as text: the operators for numbers are 32-bit.
#include "inventory_file.h"

#include <cstdlib>

#include "agent.h"
#include "errors.h"

namespace {

const char* const format_name = "util agent inventory";
constexpr int format_version = 1;

String failed(const char* what, const String& path, const XrFile& file) {
    return String::format("cannot %s '%s': ", what, path.c_str()) + error_text(file);
}

class Checksum {
  public:
    void add(const String& text) { m_value = m_value * 31 + text.hash(); }
    int value() const { return static_cast<int>(m_value); }

  private:
    unsigned int m_value = 0;
};

class RecordWriter {
  public:
    explicit RecordWriter(const String& path) : m_path(path), m_file(path, "w") {
        if (m_file.Error()) throw Trouble(failed("create", m_path, m_file));
    }

    void put(const String& text) {
        m_file << text;
        m_checksum.add(text);
    }
    void put(int number) {
        m_file << number;
        m_checksum.add(number);
    }
    void put(std::uint64_t number) { put(String(std::to_string(number))); }
    void put(std::int64_t number) { put(String(std::to_string(number))); }

    // XrFile keeps a failure until here, so the records need no test of their own.
    void finish() {
        m_file << m_checksum.value();
        if (m_file.Error() || !m_file.Close()) throw Trouble(failed("write", m_path, m_file));
    }

  private:
    String m_path;
    XrFile m_file;
    Checksum m_checksum;
};

class RecordReader {
  public:
    explicit RecordReader(const String& path) : m_path(path), m_file(path, "r") {
        if (m_file.Error()) throw Trouble(failed("open", m_path, m_file));
    }

    // "" or 0 when nothing can be read. check() raises that as Trouble.
    String text() {
        String value;
        m_file >> value;
        m_checksum.add(value);
        return value;
    }
    int number() {
        int value = 0;
        m_file >> value;
        m_checksum.add(value);
        return value;
    }
    std::int64_t long_number() { return std::strtoll(text(), nullptr, 10); }

    void check() const {
        if (m_file.Error()) fail("is damaged: it breaks off");
    }

    void finish() {
        const int expected = m_checksum.value();
        const int stored = number();
        check();
        if (stored != expected || !m_file.Eof()) fail("is damaged: its checksum does not match");
    }

    [[noreturn]] void fail(const String& reason) const {
        throw Trouble("'" + m_path + "' " + reason);
    }

  private:
    String m_path;
    XrFile m_file;
    Checksum m_checksum;
};

}  // namespace

bool is_same(const Entry& a, const Entry& b) {
    return a.mode == b.mode && a.size == b.size && (a.is_directory() || a.modified == b.modified);
}

JsonMembers json_status(const Entry& entry) {
    const String modified = utc_text(entry.modified);
    return {{"type", json(String(entry.is_directory() ? "directory" : "file"))},
            {"size", entry.is_directory() ? "null" : json(entry.size)},
            {"modified", modified.empty() ? "null" : json(modified)}};
}

std::vector<String> csv_status(const Entry& entry) {
    if (entry.is_directory()) return {"directory", "", utc_text(entry.modified)};
    return {"file", std::to_string(entry.size), utc_text(entry.modified)};
}

void write_inventory(const String& path, const Inventory& inventory) {
    RecordWriter out(path);
    out.put(format_name);
    out.put(format_version);
    out.put(inventory.root);
    out.put(inventory.taken);
    out.put(static_cast<std::uint64_t>(inventory.entries.size()));
    for (const Entry& entry : inventory.entries) {
        out.put(entry.path);
        out.put(entry.mode);
        out.put(entry.size);
        out.put(entry.modified);
    }
    out.finish();
}

Inventory read_inventory(const String& path) {
    RecordReader in(path);
    if (in.text() != format_name) in.fail("is not an inventory");
    const int version = in.number();
    if (version != format_version) {
        in.fail(String::format("has format version %d; this program reads %d", version,
                               format_version));
    }
    Inventory inventory;
    inventory.root = in.text();
    inventory.taken = in.long_number();
    const std::int64_t count = in.long_number();
    in.check();
    for (std::int64_t i = 0; i < count; ++i) {
        Entry entry;
        entry.path = in.text();
        entry.mode = in.number();
        entry.size = static_cast<std::uint64_t>(in.long_number());
        entry.modified = in.long_number();
        in.check();
        inventory.entries.push_back(std::move(entry));
    }
    in.finish();
    return inventory;
}
