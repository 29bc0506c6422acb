#include "util/files/lock_file.h"

#include "support/handle_count.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "support/second_process.h"
#include "support/test.h"
#include "util/files/xr_file.h"

using namespace util_test;

namespace {

class LockFileTest : public testing::Test {
  protected:
    bool lock() { return UTIL_LockFilePrivate(m_scratch.path(), &m_handle, &m_record); }
    bool unlock() { return UTIL_UnLockFilePrivate(m_handle, &m_record); }

    ScratchDirectory m_scratch;
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
    EXPECT_TRUE(lock());
    EXPECT_FALSE(UTIL_UnLockFilePrivate(m_handle, nullptr)) << "the record is missing";
    EXPECT_EQ(handle_count(), m_handles) << "closed all the same";
    EXPECT_TRUE(UTIL_UnLockFilePrivate(INVALID_HANDLE_VALUE, nullptr));
    EXPECT_FALSE(UTIL_UnLockFilePrivate(nullptr, &m_record));
    EXPECT_FALSE(UTIL_LockFilePrivate(m_scratch.path(), nullptr, &m_record));
    EXPECT_FALSE(UTIL_LockFilePrivate(m_scratch.path(), &m_handle, nullptr));
    EXPECT_EQ(m_handle, INVALID_HANDLE_VALUE);
}

TEST_F(LockFileTest, FiveAttemptsWithFourPauses) {
    std::vector<DWORD> pauses;
    const ImportPatch pause("Sleep", [&](DWORD ms) { pauses.push_back(ms); });
    EXPECT_FALSE(UTIL_LockFilePrivate(m_scratch / "missing", &m_handle, &m_record));
    EXPECT_EQ(pauses, std::vector<DWORD>(4, 1000000));
    EXPECT_EQ(m_handle, INVALID_HANDLE_VALUE);

    int left_to_fail = 0;
    const ImportPatch patch(
        "LockFileEx", [&](HANDLE file, DWORD flags, DWORD, DWORD low, DWORD high, OVERLAPPED* at) {
            const OVERLAPPED zero = {};
            EXPECT_EQ(flags, DWORD(LOCKFILE_EXCLUSIVE_LOCK)) << "waits";
            EXPECT_EQ(low, 1u);
            EXPECT_EQ(high, 0u);
            EXPECT_EQ(std::memcmp(at, &zero, sizeof zero), 0) << "cleared for each attempt";
            if (left_to_fail-- == 0) return LockFileEx(file, flags, 0, low, high, at);
            at->Offset = 5;
            return FALSE;
        });
    for (int failures = 0; failures <= 5; ++failures) {
        pauses.clear();
        left_to_fail = failures;
        EXPECT_EQ(lock(), failures < 5) << failures;
        EXPECT_EQ(pauses.size(), static_cast<size_t>(std::min(failures, 4)));
        EXPECT_EQ(m_handle == INVALID_HANDLE_VALUE, failures == 5);
        EXPECT_TRUE(unlock());
        EXPECT_EQ(handle_count(), m_handles);
    }
}

TEST_F(LockFileTest, SecondProcess_WaitsForTheRelease) {
    EXPECT_TRUE(lock());
    SecondProcess waiter("count", m_scratch.path() + " " + m_scratch.file("n") + " 1");
    ASSERT_TRUE(waiter.ready.wait());
    waiter.go.set();
    EXPECT_EQ(waiter.wait(100), DWORD{STILL_ACTIVE}) << "the lock is taken";
    EXPECT_EQ(m_scratch.read("n"), "");
    EXPECT_TRUE(unlock());
    EXPECT_EQ(waiter.wait(), 0u);
    EXPECT_NE(m_scratch.read("n"), "");
}

TEST_F(LockFileTest, KilledHolders_LeaveTheLockToTheNextAtOnce) {
    int while_held = 0, losses = 0;
    ULONGLONG longest = 0;
    Kills kills = {"count", 20};
    kills.arguments = [&](int round) {
        const std::string number = std::to_string(round);
        return m_scratch.path() + " " + m_scratch.file(number, std::string(1, '\0')) + " -1";
    };
    kills.check = [&](int round) {
        int number = -1;  // stays when there is none
        XrFile((m_scratch / std::to_string(round)).c_str(), "r") >> number;
        if (number % 2 != 0) ++while_held;
        const ULONGLONG asked = GetTickCount64();
        const bool locked = lock();
        const ULONGLONG wait = GetTickCount64() - asked;
        longest = std::max(longest, wait);
        if (!locked || wait > 1000) ++losses;
        EXPECT_TRUE(unlock());
    };
    kills.run();
    std::printf("kill test, locking: %d rounds, %d hit a holder, longest wait %llu ms, %d losses\n",
                kills.rounds, while_held, longest, losses);
    EXPECT_EQ(losses, 0) << "seed " << kills.seed;
    EXPECT_GT(while_held, 0) << "no kill hit";
}

}  // namespace
