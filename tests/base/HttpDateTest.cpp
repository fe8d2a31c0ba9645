#include "base/HttpDate.h"

#include <gtest/gtest.h>

namespace zenka::test {

namespace {

TEST(HttpDate, readsTheOneFormThatServersSend) {
    EXPECT_EQ(base::httpDate("Wed, 12 Aug 2026 17:30:00 GMT"), base::Instant{1786555800});
    for (const char* text :
         {"", "Wed, 12 Aug 2026 17:30:00", "12 Aug 2026 17:30:00 GMT", "Wed, 32 Aug 2026 17:30:00 GMT",
          "Wed, 12 Aug 2026 25:30:00 GMT", "Wed, 12 Aug 2026 17:30:00 GMT and more", "infinite-future"})
        EXPECT_FALSE(base::httpDate(text)) << text;
}

} // namespace

} // namespace zenka::test
