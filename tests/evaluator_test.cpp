// The expression evaluator: suffixes, the mil constant, the inserted zero, precedence, integer
// rows, statuses; and the engineering notation of its values with each row's exclusive limit.
#include "expr/evaluator.h"

#include <gtest/gtest.h>

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "expr/engineering.h"

namespace {

TEST(EvaluateExpressionTest, Values) {
  const std::pair<const char*, double> cases[] = {
      // Suffixes, upper or lower case, also behind a blank or a parenthesis; alone on a zero.
      {"10K", 10000},
      {"10k", 10000},
      {"10Meg", 1e7},
      {"2MEG", 2e6},
      {"2M", 2 * 1e-3},
      {"10 K", 10000},
      {"3F", 3 * 1e-15},
      {"3p", 3 * 1e-12},
      {"3n", 3 * 1e-9},
      {"3u", 3 * 1e-6},
      {"3g", 3 * 1e9},
      {"3t", 3 * 1e12},
      {"2 + 1K", 1002},
      {"K", 0},
      {"(2)K", 2000},
      {"1mil", 25.4 * 1e-6},
      {"2MIL", 2 * (25.4 * 1e-6)},
      // A sign works on an inserted zero: "2 * -3" is (2 * 0) - 3, and "- -3" is (0 - 0) - 3.
      {"-3", -3},
      {"+3", 3},
      {"2 * -3", -3},
      {"2 * (-3)", -6},
      {"- -3", -3},
      // Precedence.
      {"1 + 2 * 3", 7},
      {"(1 + 2) * 3", 9},
      {"8 / 2 / 2", 2},
      {"2 * 3 % 4", 2},
      {"8 % 3 * 2", 2},
      {"1 + 2 == 3", 1},
      {"1 < 2 && 3 < 4", 1},
      {"0 < 2 && 0", 0},  // (0 < (2 && 0)) is 0 < 0
      {"1 << 2 + 1", 5},  // the shifts bind tighter than "+"
      {"6 & 3 == 2", 1},  // comparisons bind loosest
      {"1 | 2 ^ 4", 7},
      // Integer rows, shifts, comparisons and logic.
      {"7 \\ 2", 3},
      {"-7 \\ 2", -3},
      {"7 / 2", 3.5},
      {"7.9 % 3", 1},
      {"(0-7) % 3", -1},
      {"7 % (0-3)", 1},
      {"6 ^ 3", 5},
      {"6 & 3", 2},
      {"6 | 3", 7},
      {"6 !| 3", -8},
      {"3 !& 1", -2},
      {"2.9 & 3.9", 2},
      {"1 << 4", 16},
      {"1 << 33", 2},
      {"1 << 31", -2147483648.0},
      {"(0-16) >> 2", -4},
      {"16 >> 2", 4},
      {"1 != 2", 1},
      {"2 != 2", 0},
      {"2 >= 2", 1},
      {"2 <= 1", 0},
      {"2 > 1", 1},
      {"0.5 && 2", 1},
      {"0 || 0", 0},
      {"0 || 0.1", 1},
      // Out-of-range integer operands do not crash.
      {"(0-2147483647-1) % (0-1)", 0},
      {"1000000000000 & 1", 0},
      {"7 \\ 0", -2147483648.0},
      {"1000000000000 << 1", 0},
      {"(0 - 2147483647 - 1) << 1", 0},
  };
  for (const auto& [text, expected] : cases) {
    double value = -12345.0;
    EXPECT_EQ(EvaluateExpression(text, value), 0) << text;
    EXPECT_EQ(value, expected) << text;
  }
  // The mil is the double product of 25.4 and 1e-6, to the last bit.
  double mil = 0;
  EXPECT_EQ(EvaluateExpression("1MIL", mil), 0);
  uint64_t bits;
  std::memcpy(&bits, &mil, sizeof bits);
  EXPECT_EQ(bits, 0x3EFAA242B58735E9ULL);
}

// Plain numbers take a short way; they must come out as the postfix run gives them,
// status and value, near that form as well.
TEST(EvaluateExpressionTest, PlainNumbersAsThePostfixRunGivesThem) {
  // clang-format off
  const std::string texts[] = {
      "1K", "1k", "2.2u", "10MEG", "10meg", "3mil", "3MIL", "1", "007", "1.5", ".5", "5.", ".",
      "1.2.3", "1.2.3K", "1e", "1E3", "1kk", "1 K", " 1K", "1K ", "1Q", "1MILS", "1ME", "1T", "4G",
      "7F", "8P", "9N", "2M", "1e400", std::string("1K\0", 3), "1e-400", "0.0001",
      "123456789012345678901234567890"};
  // clang-format on
  for (const std::string& text : texts) {
    std::string postfix;
    double expected = 0;
    int expectedStatus = InfixToPostfix(text, postfix);
    if (expectedStatus == kEvaluationOk) expectedStatus = EvaluatePostfix(postfix, expected);
    double value = 0;
    EXPECT_EQ(EvaluateExpression(text, value), expectedStatus) << text;
    if (expectedStatus == kEvaluationOk) {
      EXPECT_EQ(value, expected) << text;
    }
  }
}

TEST(EvaluateExpressionTest, StatusOfBadTexts) {
  const std::pair<const char*, int> cases[] = {
      {"1E3", 3},    {"10UF", 3},     {"2*-3", 3}, {"1+-2", 3}, {"A+1", 3}, {"1.2.3", 3}, {".", 3},
      {"1K + 2", 4}, {"(1K) + 2", 4}, {"2 3", 4},  {"2 +", 1},  {"(2", 1},  {"2)", 1},
  };
  for (const auto& [text, status] : cases) {
    double value = 0;
    EXPECT_EQ(EvaluateExpression(text, value), status) << text;
  }
  double value = 42;  // a failure of the first stage leaves the result untouched
  EXPECT_EQ(EvaluateExpression("(2", value), 1);
  EXPECT_EQ(value, 42);
  for (const char* text : {"", "   ", "()", "5 % 0", "5 % 0.5"}) {
    EXPECT_NE(EvaluateExpression(text, value), 0) << text;
  }
}

TEST(FormatEngineeringTest, EachRowAndItsExclusiveLimit) {
  const std::pair<double, const char*> cases[] = {
      {2e13, "20.000000T"},
      {1e12, "1000.000000G"},
      {3e9 + 1, "3.000000G"},
      {1e9, "1000.000000MEG"},
      {2e6, "2.000000MEG"},
      {1e6, "1000.000000K"},
      {1000.5, "1.000500K"},
      {1e4, "10.000000K"},
      {1000, "1000.000000"},
      {1, "1.000000"},
      {0.5, "500.000000M"},
      {1e-3, "1000.000000U"},
      {1e-6, "1000.000000N"},
      {2.5e-9, "2.500000N"},
      {1e-9, "1000.000000P"},
      {4e-12, "4.000000P"},
      {1e-12, "1000.000000F"},
      {1e-16, "0.100000F"},
      // Zero has no suffix; a negative number takes the suffix of its magnitude.
      {0, "0.000000"},
      {-0.0, "0.000000"},
      {-5, "-5.000000"},
      {-1, "-1.000000"},
      {-2500, "-2.500000K"},
      {-1e3, "-1000.000000"},
      {-0.5, "-500.000000M"},
      {-4e-12, "-4.000000P"},
      {-1e-15, "-1.000000F"},
      {-3e13, "-30.000000T"},
      {1.0 / 0.0, "infT"},
      {-1.0 / 0.0, "-infT"},
  };
  for (const auto& [value, text] : cases) EXPECT_EQ(FormatEngineering(value), text) << value;
  EXPECT_EQ(FormatEngineering(1.7976931348623157e308).size(), 297u + 7u + 1u);
}

// Whole numbers take a short way; it must print what the fixed notation prints.
TEST(FormatEngineeringTest, WholeNumbersAsTheFixedNotationPrintsThem) {
  // clang-format off
  const double values[] = {
      1, 7, 999, 1000, -1000, 123456, -999999, 1e14, 999999999999999.0 * 1e12, 1e15 * 1e12,
      4503599627370497.0 * 1e12, -2e27, 0.001, 0.000001, 2.5, -7.25, 1e-15, 3e-15};
  // clang-format on
  for (double value : values) {
    const std::string text = FormatEngineering(value);
    // The scale is the suffix; the number in front reads back as value / scale.
    const size_t end = text.find_first_not_of("-0123456789.");
    const std::string number = text.substr(0, end);
    char buffer[400];
    const double scaled = std::strtod(number.c_str(), nullptr);
    std::to_chars_result written =
        std::to_chars(buffer, buffer + sizeof buffer, scaled, std::chars_format::fixed, 6);
    EXPECT_EQ(number, std::string(buffer, written.ptr)) << value;
  }
}

}  // namespace
