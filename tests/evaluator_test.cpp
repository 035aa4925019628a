// The expression evaluator: tokens, suffixes, the inserted zero, precedence, statuses.
#include "expr/evaluator.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>

namespace {

// The status of `text`, and its value in `value` when the status is 0.
int Eval(const std::string& text, double& value) { return EvaluateExpression(text, value); }

double ValueOf(const std::string& text) {
  double value = -12345.0;
  EXPECT_EQ(EvaluateExpression(text, value), 0) << "for " << text;
  return value;
}

int StatusOf(const std::string& text) {
  double value = 0;
  return EvaluateExpression(text, value);
}

std::string Postfix(const std::string& text) {
  std::string postfix;
  EXPECT_EQ(InfixToPostfix(text, postfix), 0) << "for " << text;
  return postfix;
}

uint64_t BitsOf(double value) {
  uint64_t bits;
  std::memcpy(&bits, &value, sizeof bits);
  return bits;
}

TEST(FindOperatorTokenTest, WholeRunMustBeOneToken) {
  EXPECT_EQ(FindOperatorToken("MEG"), 8);
  EXPECT_EQ(FindOperatorToken("M3"), 6);
  EXPECT_EQ(FindOperatorToken("MIL)"), 5);
  EXPECT_EQ(FindOperatorToken("<=2"), 31);
  EXPECT_EQ(FindOperatorToken("!|"), 22);
  EXPECT_EQ(FindOperatorToken("*-"), -1);
  EXPECT_EQ(FindOperatorToken("K*"), -1);
  EXPECT_EQ(FindOperatorToken("UF"), -1);
  EXPECT_EQ(FindOperatorToken("k"), -1);  // case sensitive
  EXPECT_EQ(FindOperatorToken("12"), -1);
  EXPECT_EQ(FindOperatorToken(""), -1);
  EXPECT_EQ(FindOperatorToken("E"), -1);
}

TEST(NumberLengthTest, CountsDigitsAndPoints) {
  EXPECT_EQ(NumberLength("12.5K"), 4);
  EXPECT_EQ(NumberLength("1.2.3"), 5);
  EXPECT_EQ(NumberLength("1E3"), 1);
  EXPECT_EQ(NumberLength("-1"), 0);
  EXPECT_EQ(NumberLength(""), 0);
}

TEST(InfixToPostfixTest, BlankBeforeEveryTokenAndZeroForSigns) {
  EXPECT_EQ(Postfix("2 * -3"), " 2 0 * 3 -");
  EXPECT_EQ(Postfix("-3"), " 0 3 -");
  EXPECT_EQ(Postfix("1k + 2"), " 1 0 K 2 +");
  EXPECT_EQ(Postfix("(1+2)*3"), " 1 2 + 3 *");
  EXPECT_EQ(Postfix("1 - 2 - 3"), " 1 2 - 3 -");
  EXPECT_EQ(Postfix("K"), " 0 K");
}

TEST(InfixToPostfixTest, ParenthesesMustBalance) {
  std::string postfix;
  EXPECT_EQ(InfixToPostfix("(2", postfix), 1);
  EXPECT_EQ(InfixToPostfix("2)", postfix), 1);
  EXPECT_EQ(InfixToPostfix("A", postfix), 3);
}

TEST(EvaluatePostfixTest, RunsTheStack) {
  double value = 0;
  EXPECT_EQ(EvaluatePostfix(" 2 0 * 3 -", value), 0);
  EXPECT_EQ(value, -3);
  EXPECT_EQ(EvaluatePostfix(" 1.2.3", value), 3);
  EXPECT_EQ(EvaluatePostfix(" .", value), 3);
  EXPECT_EQ(EvaluatePostfix(" +", value), 1);
  EXPECT_EQ(EvaluatePostfix(" 1 +", value), 1);
  EXPECT_EQ(EvaluatePostfix(" 1 2", value), 4);
  EXPECT_EQ(EvaluatePostfix(" Q", value), 3);
}

TEST(EvaluateExpressionTest, Suffixes) {
  EXPECT_EQ(ValueOf("10K"), 10000);
  EXPECT_EQ(ValueOf("10k"), 10000);
  EXPECT_EQ(ValueOf("10Meg"), 1e7);
  EXPECT_EQ(ValueOf("2MEG"), 2e6);
  EXPECT_EQ(ValueOf("2M"), 2 * 1e-3);
  EXPECT_EQ(ValueOf("10 K"), 10000);
  EXPECT_EQ(ValueOf("3F"), 3 * 1e-15);
  EXPECT_EQ(ValueOf("3p"), 3 * 1e-12);
  EXPECT_EQ(ValueOf("3n"), 3 * 1e-9);
  EXPECT_EQ(ValueOf("3u"), 3 * 1e-6);
  EXPECT_EQ(ValueOf("3g"), 3 * 1e9);
  EXPECT_EQ(ValueOf("3t"), 3 * 1e12);
  EXPECT_EQ(ValueOf("2 + 1K"), 1002);
  EXPECT_EQ(ValueOf("K"), 0);
  EXPECT_EQ(ValueOf("(2)K"), 2000);
}

TEST(EvaluateExpressionTest, MilIsTheDoubleProduct) {
  EXPECT_EQ(BitsOf(ValueOf("1MIL")), 0x3EFAA242B58735E9ULL);
  EXPECT_EQ(ValueOf("1mil"), 25.4 * 1e-6);
  EXPECT_EQ(ValueOf("2MIL"), 2 * (25.4 * 1e-6));
}

TEST(EvaluateExpressionTest, SignsWorkOnAnInsertedZero) {
  EXPECT_EQ(ValueOf("-3"), -3);
  EXPECT_EQ(ValueOf("+3"), 3);
  EXPECT_EQ(ValueOf("2 * -3"), -3);
  EXPECT_EQ(ValueOf("2 * (-3)"), -6);
  EXPECT_EQ(ValueOf("- -3"), -3);  // (0 - 0) - 3: a sign is a left-associative operator
}

TEST(EvaluateExpressionTest, Precedence) {
  EXPECT_EQ(ValueOf("1 + 2 * 3"), 7);
  EXPECT_EQ(ValueOf("(1 + 2) * 3"), 9);
  EXPECT_EQ(ValueOf("8 / 2 / 2"), 2);
  EXPECT_EQ(ValueOf("2 * 3 % 4"), 2);
  EXPECT_EQ(ValueOf("8 % 3 * 2"), 2);
  EXPECT_EQ(ValueOf("1 + 2 == 3"), 1);
  EXPECT_EQ(ValueOf("1 < 2 && 3 < 4"), 1);
  EXPECT_EQ(ValueOf("0 < 2 && 0"), 0);  // (0 < (2 && 0)) is 0 < 0
  EXPECT_EQ(ValueOf("1 << 2 + 1"), 5);  // the shifts bind tighter than "+"
  EXPECT_EQ(ValueOf("6 & 3 == 2"), 1);  // comparisons bind loosest
  EXPECT_EQ(ValueOf("1 | 2 ^ 4"), 7);
}

TEST(EvaluateExpressionTest, DivisionAndIntegerRows) {
  EXPECT_EQ(ValueOf("7 \\ 2"), 3);
  EXPECT_EQ(ValueOf("-7 \\ 2"), -3);
  EXPECT_EQ(ValueOf("7 / 2"), 3.5);
  EXPECT_EQ(ValueOf("7.9 % 3"), 1);
  EXPECT_EQ(ValueOf("(0-7) % 3"), -1);
  EXPECT_EQ(ValueOf("7 % (0-3)"), 1);
  EXPECT_EQ(ValueOf("6 ^ 3"), 5);
  EXPECT_EQ(ValueOf("6 & 3"), 2);
  EXPECT_EQ(ValueOf("6 | 3"), 7);
  EXPECT_EQ(ValueOf("6 !| 3"), -8);
  EXPECT_EQ(ValueOf("3 !& 1"), -2);
  EXPECT_EQ(ValueOf("2.9 & 3.9"), 2);
}

TEST(EvaluateExpressionTest, Shifts) {
  EXPECT_EQ(ValueOf("1 << 4"), 16);
  EXPECT_EQ(ValueOf("1 << 33"), 2);
  EXPECT_EQ(ValueOf("1 << 31"), -2147483648.0);
  EXPECT_EQ(ValueOf("(0-16) >> 2"), -4);
  EXPECT_EQ(ValueOf("16 >> 2"), 4);
}

TEST(EvaluateExpressionTest, ComparisonsAndLogic) {
  EXPECT_EQ(ValueOf("1 != 2"), 1);
  EXPECT_EQ(ValueOf("2 != 2"), 0);
  EXPECT_EQ(ValueOf("2 >= 2"), 1);
  EXPECT_EQ(ValueOf("2 <= 1"), 0);
  EXPECT_EQ(ValueOf("2 > 1"), 1);
  EXPECT_EQ(ValueOf("0.5 && 2"), 1);
  EXPECT_EQ(ValueOf("0 || 0"), 0);
  EXPECT_EQ(ValueOf("0 || 0.1"), 1);
}

TEST(EvaluateExpressionTest, StatusOfBadTexts) {
  EXPECT_EQ(StatusOf("1E3"), 3);
  EXPECT_EQ(StatusOf("10UF"), 3);
  EXPECT_EQ(StatusOf("2*-3"), 3);
  EXPECT_EQ(StatusOf("1+-2"), 3);
  EXPECT_EQ(StatusOf("A+1"), 3);
  EXPECT_EQ(StatusOf("1.2.3"), 3);
  EXPECT_EQ(StatusOf("."), 3);
  EXPECT_EQ(StatusOf("1K + 2"), 4);
  EXPECT_EQ(StatusOf("(1K) + 2"), 4);
  EXPECT_EQ(StatusOf("2 3"), 4);
  EXPECT_EQ(StatusOf("2 +"), 1);
  EXPECT_EQ(StatusOf("(2"), 1);
  EXPECT_EQ(StatusOf("2)"), 1);
}

TEST(EvaluateExpressionTest, NothingToReadIsAFailure) {
  EXPECT_NE(StatusOf(""), 0);
  EXPECT_NE(StatusOf("   "), 0);
  EXPECT_NE(StatusOf("()"), 0);
}

TEST(EvaluateExpressionTest, RemainderByZeroIsAFailure) {
  EXPECT_NE(StatusOf("5 % 0"), 0);
  EXPECT_NE(StatusOf("5 % 0.5"), 0);
  EXPECT_EQ(ValueOf("(0-2147483647-1) % (0-1)"), 0);
}

TEST(EvaluateExpressionTest, FailureLeavesResultUntouched) {
  double value = 42;
  EXPECT_EQ(Eval("(2", value), 1);
  EXPECT_EQ(value, 42);
}

TEST(EvaluateExpressionTest, OutOfRangeIntegerOperandsDoNotCrash) {
  EXPECT_EQ(ValueOf("1000000000000 & 1"), 0);
  EXPECT_EQ(ValueOf("7 \\ 0"), -2147483648.0);
  EXPECT_EQ(ValueOf("1000000000000 << 1"), 0);
  EXPECT_EQ(ValueOf("(0 - 2147483647 - 1) << 1"), 0);
}

}  // namespace
