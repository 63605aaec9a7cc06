// The line that tells how far a conversion is.
#include "tools/orv/Progress.h"

#include <gtest/gtest.h>

namespace {

using orv::tool::ProgressText;

TEST(Progress, TheLineTellsShareRateAndRemainingTime) {
  EXPECT_EQ(ProgressText(25, 100, 3000000, 2.0),
            "orv: [#####               ]  25 %, 1.5 million points/s, 6 s left");
  EXPECT_EQ(ProgressText(100, 100, 3000000, 2.0),
            "orv: [####################] 100 %, 1.5 million points/s, 0 s left");
  EXPECT_EQ(ProgressText(1, 100, 1200000, 10.0),
            "orv: [                    ]   1 %, 0.1 million points/s, 16:30 min left");
  EXPECT_EQ(ProgressText(1, 1000, 1200000, 10.0),
            "orv: [                    ]   0 %, 0.1 million points/s, 2:46 h left");
  EXPECT_EQ(ProgressText(2500000, 0, 200000, 2.0), "orv: 2.5 MB, 0.1 million points/s");
}

}  // namespace
