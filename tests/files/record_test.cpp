#include "util/files/record.h"

#include "support/test.h"

// A step over the end of the buffer would not show in the bytes.
TEST(TextRecordTest, RecordOfUpTo256Bytes_IsInTheObject) {
    const std::string text(260, 'x');
    for (std::size_t size = 245; size < text.size(); ++size) {
        const util::TextRecord record(text.data(), size);
        const auto offset = record.data() - reinterpret_cast<const char*>(&record);
        const bool inside = offset >= 0 && offset < std::ptrdiff_t{sizeof record};
        EXPECT_EQ(inside, record.size() <= 256) << size;
    }
}
