// The block dictionary's internal net names: only under -v or a PROBE=ALL component, which no
// whole-deck test places. The dictionary's form and ground warning are pinned by the deck tests.
#include <gtest/gtest.h>

#include "gen/spice_gen.h"
#include "tests/gen_test_support.h"

namespace {

TEST(Dictionary, InternalNetNamesOnlyWhenVerboseOrProbingAll) {
  CSpiceGen gen;
  gentest::Ready(gen);
  gen.AddDictionaryLine("* $12N3 = 4");
  EXPECT_TRUE(gen.dictionaryLines.Empty());
  gen.verbose = true;
  gen.AddDictionaryLine("* $12N3 = 4");
  gen.verbose = false;
  gen.probeAll = true;
  gen.AddDictionaryLine("* $12N4 = 5");
  EXPECT_EQ(gen.dictionaryLines.Size(), 2u);
}

}  // namespace
