#include "util/internal/scoped_handle.h"
#include "support/test.h"

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
    errno = 77;
    SetLastError(77);
    {
        Scoped none, zero(0), a(1);  // 0 is a handle like any other here
        a.reset(2);
        EXPECT_EQ(a.release(), 2);
        EXPECT_FALSE(a);
        Scoped b(3), c(std::move(b)), d(4);
        EXPECT_FALSE(b);
        *b.receive() = 5;
        *b.receive() = 6;
        d = std::move(c);
        Scoped& same = d;
        d = std::move(same);
        EXPECT_EQ(d.get(), 3) << "moved onto itself";
    }
    EXPECT_EQ(closed, (Closed{1, 5, 4, 3, 6, 0}));
    EXPECT_EQ(errno, 77);
    EXPECT_EQ(GetLastError(), 77u);
}

}  // namespace
