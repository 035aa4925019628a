// Section heads of parameter files: both names as whole words behind the "*".
#include "design/section_head.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

TEST(SectionHeadTest, WholeNamesOnly) {
  const std::tuple<const char*, const char*, const char*, bool> cases[] = {
      {"*opamp $7ai1", "opamp", "$7ai1", true},
      {"* opamp $7ai1", "opamp", "$7ai1", true},
      {"*opamp\t$7ai1 section\r", "opamp", "$7ai1", true},
      {"*opamp $7ai10", "opamp", "$7ai1", false},  // another instance whose name begins alike
      {"*opamp $7ai10 $7ai1", "opamp", "$7ai1", true},
      {"*opamp2 $7ai1", "opamp", "$7ai1", false},
      {"*xopamp $7ai1", "opamp", "$7ai1", false},
      {"*opamp $7ai1", "opamp", "$7AI1", false},  // names come lower-cased; the match is exact
      {"opamp $7ai1", "opamp", "$7ai1", false},   // no "*": no head
      {"", "opamp", "$7ai1", false},
      {"*opamp", "opamp", "", true},  // an empty name is held by every head
      {"*end", "", "", true},
  };
  for (const auto& [line, model, instance, head] : cases)
    EXPECT_EQ(IsSectionHead(line, model, instance), head) << line << " / " << model << " / " << instance;
}

}  // namespace
