#include "util/files/creation_record.h"

#include "util/internal/encoding.h"
#include "util/internal/windows.h"

namespace util {

bool CreationRecord::open(const String& path) {
    m_file.reset(CreateFileW(wide_path(path).c_str(), GENERIC_WRITE,
                             FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL, nullptr));
    return static_cast<bool>(m_file);
}

void CreationRecord::append(const TextRecord& directory) {
    constexpr DWORD pause_ms = 10;
    if (!m_file || m_torn) return;
    while (!try_to_append(directory) && m_pauses_left > 0) {
        --m_pauses_left;
        Sleep(pause_ms);
    }
}

// Returns false if nothing was written because another process holds a lock.
bool CreationRecord::try_to_append(const TextRecord& directory) {
    OVERLAPPED turn = {};
    turn.Offset = MAXDWORD;
    turn.OffsetHigh = MAXLONG;
    const bool has_turn =
        LockFileEx(m_file.get(), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                   &turn) != 0;
    // A file system without locks gives another code. Then a record without a turn is best.
    if (!has_turn && GetLastError() == ERROR_LOCK_VIOLATION && m_pauses_left > 0) return false;
    OVERLAPPED end = {};
    end.Offset = end.OffsetHigh = MAXDWORD;
    DWORD moved = 0;
    const bool succeeded = WriteFile(m_file.get(), directory.data(),
                                     static_cast<DWORD>(directory.size()), &moved, &end) != 0;
    const bool is_locked = !succeeded && GetLastError() == ERROR_LOCK_VIOLATION;
    if (has_turn) UnlockFileEx(m_file.get(), 0, 1, 0, &turn);
    // A reader would take what follows half a record for the rest of it.
    m_torn = moved != 0 && moved != directory.size();
    return moved != 0 || !is_locked;
}

}  // namespace util
