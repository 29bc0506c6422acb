#include "util/internal/scoped_handle.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

namespace {

using Closed = std::vector<int>;
Closed closed;

struct LoggingTraits {
    using Handle = int;
    static int invalid() { return -1; }
    static void close(int handle) {
        closed.push_back(handle);
        errno = 88;
        SetLastError(88);
    }
};
using Scoped = util::ScopedHandle<LoggingTraits>;

TEST(ScopedHandleTest, ClosesWhatItHoldsOnceAndKeepsBothErrors) {
    closed.clear();
    errno = 77;
    SetLastError(77);
    {
        Scoped zero(0);  // 0 is a handle like any other here
        Scoped none;
        Scoped a(1);
        EXPECT_TRUE(zero);
        EXPECT_FALSE(none);
        a.reset(2);
        EXPECT_EQ(a.release(), 2);
        EXPECT_FALSE(a);
    }
    EXPECT_EQ(closed, (Closed{1, 0}));
    EXPECT_EQ(errno, 77);
    EXPECT_EQ(GetLastError(), 77u);
}

TEST(ScopedHandleTest, MovingHandsOverAndClosesWhatWasHeld) {
    closed.clear();
    Scoped a(1);
    Scoped b(std::move(a));
    EXPECT_FALSE(a);
    Scoped c(2);
    c = std::move(b);
    EXPECT_FALSE(b);
    EXPECT_EQ(closed, Closed{2});
    Scoped& same = c;
    c = std::move(same);
    EXPECT_EQ(c.get(), 1) << "moved onto itself";
    EXPECT_EQ(closed, Closed{2});
}

}  // namespace
