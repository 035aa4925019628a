// Engineering notation of evaluated values.
#include "expr/engineering.h"

#include <gtest/gtest.h>

namespace {

TEST(FormatEngineeringTest, EachRowAndItsExclusiveLimit) {
  EXPECT_EQ(FormatEngineering(2e13), "20.000000T");
  EXPECT_EQ(FormatEngineering(1e12), "1000.000000G");
  EXPECT_EQ(FormatEngineering(3e9 + 1), "3.000000G");
  EXPECT_EQ(FormatEngineering(1e9), "1000.000000MEG");
  EXPECT_EQ(FormatEngineering(2e6), "2.000000MEG");
  EXPECT_EQ(FormatEngineering(1e6), "1000.000000K");
  EXPECT_EQ(FormatEngineering(1000.5), "1.000500K");
  EXPECT_EQ(FormatEngineering(1e4), "10.000000K");
  EXPECT_EQ(FormatEngineering(1000), "1000.000000");
  EXPECT_EQ(FormatEngineering(1), "1.000000");
  EXPECT_EQ(FormatEngineering(0.5), "500.000000M");
  EXPECT_EQ(FormatEngineering(1e-3), "1000.000000U");
  EXPECT_EQ(FormatEngineering(1e-6), "1000.000000N");
  EXPECT_EQ(FormatEngineering(2.5e-9), "2.500000N");
  EXPECT_EQ(FormatEngineering(1e-9), "1000.000000P");
  EXPECT_EQ(FormatEngineering(4e-12), "4.000000P");
  EXPECT_EQ(FormatEngineering(1e-12), "1000.000000F");
}

TEST(FormatEngineeringTest, ZeroAndNegativesInFemto) {
  EXPECT_EQ(FormatEngineering(0), "0.000000F");
  EXPECT_EQ(FormatEngineering(-5), "-5000000000000000.000000F");
  EXPECT_EQ(FormatEngineering(-1e-15), "-1.000000F");
}

TEST(FormatEngineeringTest, ExtremesDoNotOverflow) {
  EXPECT_EQ(FormatEngineering(1.7976931348623157e308).size(), 297u + 7u + 1u);
  EXPECT_EQ(FormatEngineering(-1e300), "-infF");
  EXPECT_EQ(FormatEngineering(1.0 / 0.0), "infT");
}

}  // namespace
