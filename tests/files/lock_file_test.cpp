#include "util/files/lock_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <random>

#include "support/handle_count.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "support/second_process.h"
#include "util/files/xr_file.h"

using util_test::handle_count;
using util_test::ImportPatch;
using util_test::SecondProcess;
using util_test::Signal;

namespace {

std::vector<DWORD> pauses;
void WINAPI recorded_pause(DWORD ms) {
    pauses.push_back(ms);
}

int locks_to_fail;
BOOL WINAPI failing_lock(HANDLE file, DWORD flags, DWORD, DWORD low, DWORD high, OVERLAPPED* at) {
    const OVERLAPPED zero = {};
    EXPECT_EQ(flags, DWORD(LOCKFILE_EXCLUSIVE_LOCK)) << "waits";
    EXPECT_TRUE(low == 1 && high == 0 && std::memcmp(at, &zero, sizeof zero) == 0);
    at->Offset = 5;  // to be cleared for the next attempt
    return --locks_to_fail < 0 && (at->Offset = 0, LockFileEx(file, flags, 0, low, high, at));
}

class LockFileTest : public testing::Test {
  protected:
    bool lock() { return UTIL_LockFilePrivate(m_scratch.path(), &m_handle, &m_record); }
    bool unlock() { return UTIL_UnLockFilePrivate(m_handle, &m_record); }

    util_test::ScratchDirectory m_scratch;
    HANDLE m_handle = nullptr;
    OVERLAPPED m_record;
    const long m_handles = handle_count();
};

TEST_F(LockFileTest, CreatesTheFileAndGivesTheHandleBack) {
    for (int round = 0; round < 2; ++round) {
        std::memset(&m_record, 0xAA, sizeof m_record);
        EXPECT_TRUE(lock());
        EXPECT_EQ(m_scratch.read("lockfile.lck"), "") << "others may open it";
        EXPECT_EQ(handle_count(), m_handles + 1);
        EXPECT_TRUE(unlock());
        EXPECT_EQ(handle_count(), m_handles);
    }
    EXPECT_EQ(m_scratch.read("lockfile.lck"), "") << "stays";
    EXPECT_TRUE(UTIL_UnLockFilePrivate(INVALID_HANDLE_VALUE, nullptr));
    EXPECT_FALSE(UTIL_UnLockFilePrivate(nullptr, &m_record));
    EXPECT_FALSE(UTIL_LockFilePrivate(m_scratch.path(), nullptr, &m_record));
    EXPECT_FALSE(UTIL_LockFilePrivate(m_scratch.path(), &m_handle, nullptr));
    EXPECT_EQ(m_handle, INVALID_HANDLE_VALUE);
}

TEST_F(LockFileTest, FiveAttemptsWithFourPauses) {
    const ImportPatch pause("Sleep", recorded_pause);
    EXPECT_FALSE(UTIL_LockFilePrivate(m_scratch / "missing", &m_handle, &m_record));
    EXPECT_EQ(pauses, std::vector<DWORD>(4, 1000000));
    EXPECT_EQ(m_handle, INVALID_HANDLE_VALUE);

    const ImportPatch patch("LockFileEx", failing_lock);
    for (int failures = 0; failures <= 5; ++failures) {
        pauses.clear();
        locks_to_fail = failures;
        EXPECT_EQ(lock(), failures < 5) << failures;
        EXPECT_EQ(pauses.size(), static_cast<size_t>(std::min(failures, 4)));
        EXPECT_EQ(m_handle == INVALID_HANDLE_VALUE, failures == 5);
        EXPECT_TRUE(unlock());
        EXPECT_EQ(handle_count(), m_handles);
    }
}

TEST_F(LockFileTest, TheSecondProcessWaitsForTheFirstToReleaseOrDie) {
    for (const bool dies : {false, true}) {
        Signal release, at_once;
        at_once.set();
        SecondProcess holder("lock", m_scratch.path(), release);
        ASSERT_TRUE(holder.ready.wait());
        SecondProcess waiter("lock", m_scratch.path(), at_once);
        EXPECT_FALSE(waiter.ready.wait(200)) << "the lock is taken";
        if (dies) holder.kill();
        release.set();
        EXPECT_TRUE(waiter.ready.wait());
        EXPECT_EQ(waiter.wait(), 0u);
        EXPECT_EQ(holder.wait(), dies ? 99u : 0u);
    }
}

int number_in(const std::string& path) {
    int number = -1;  // stays when there is none
    XrFile(path.c_str(), "r") >> number;
    return number;
}

TEST_F(LockFileTest, KilledHoldersLeaveTheLockToTheNextAtOnce) {
    constexpr int rounds = 30;
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    int while_held = 0, losses = 0;
    ULONGLONG longest = 0;
    for (int round = 0; round < rounds; ++round) {
        const std::string file = m_scratch.file("n", std::string(1, '\0'));
        Signal go;
        SecondProcess victim("count", m_scratch.path() + " " + file + " 1000000000", go);
        ASSERT_TRUE(victim.ready.wait());
        go.set();
        Sleep(random() % 20);
        victim.kill();
        if (number_in(file) % 2 != 0) ++while_held;

        const ULONGLONG asked = GetTickCount64();
        const bool locked = lock();
        const ULONGLONG wait = GetTickCount64() - asked;
        longest = std::max(longest, wait);
        if (!locked || wait > 1000) ++losses;
        EXPECT_TRUE(unlock());
    }
    std::printf("kill test, locking: %d rounds, %d hit a holder, longest wait %llu ms, %d losses\n",
                rounds, while_held, longest, losses);
    EXPECT_EQ(losses, 0);
    EXPECT_GE(while_held, rounds / 10);
}

}  // namespace
