// Arbitrary texts through the evaluator and the value services: no crash, sane statuses.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "expr/attribute_text.h"
#include "expr/engineering.h"
#include "expr/evaluator.h"
#include "expr/value_class.h"

namespace {

bool IsKnownStatus(int status) { return status == 0 || status == 1 || status == 3 || status == 4; }

std::string RandomBytes(std::mt19937& random) {
  std::uniform_int_distribution<int> length(0, 40), byte(0, 255);
  std::string text(length(random), '\0');
  for (char& c : text) c = static_cast<char>(byte(random));
  return text;
}

std::string RandomTokens(std::mt19937& random) {
  static const std::vector<std::string> kPieces = {
      "0",  "1",  "7",   "2.5", ".",  "1.2.3", "4294967296", "1e3", "99999999999999999999",
      " ",  "  ", "(",   ")",   "F",  "P",     "N",          "U",   "MIL",
      "M",  "K",  "MEG", "G",   "T",  "k",     "meg",        "*",   "/",
      "\\", "%",  "<<",  ">>",  "-",  "+",     "^",          "&",   "|",
      "!|", "&&", "||",  "!&",  "==", "<",     ">",          ">=",  "!=",
      "<=", "!",  "=",   "@A",  "'",  "{",     "}",          "E",   "X",
      "\t", "\n"};
  std::uniform_int_distribution<size_t> count(0, 24), pick(0, kPieces.size() - 1);
  std::string text;
  for (size_t i = count(random); i > 0; --i) text += kPieces[pick(random)];
  return text;
}

void Exercise(const std::string& text) {
  double value = 0;
  int status = EvaluateExpression(text, value);
  ASSERT_TRUE(IsKnownStatus(status)) << "status " << status << " for \"" << text << "\"";
  if (status == 0) FormatEngineering(value);
  std::string postfix;
  if (InfixToPostfix(text, postfix) == 0) {
    EXPECT_EQ(EvaluatePostfix(postfix, value), status);
  }
  EXPECT_TRUE(IsKnownStatus(EvaluatePostfix(text, value)));
  int valueClass = ClassifyValue(text);
  EXPECT_TRUE(valueClass == 0 || valueClass == 1 || valueClass == 3 || valueClass == 4);
  std::set<std::string> names{"W", "L"};
  std::string word = text;
  AdjustWordUnit(word, UnitRules{&names, &names, false});
  CollapseQuotedBlanks(text);
  NormalizeOrderTemplate(text);
  ExpandAttributeReferences(text, [](const std::string&) { return std::string("1 + 2"); });
}

TEST(EvaluatorFuzzTest, RandomBytesNeverCrash) {
  std::mt19937 random(20240601);
  for (int i = 0; i < 20000; ++i) Exercise(RandomBytes(random));
}

TEST(EvaluatorFuzzTest, RandomTokenMixesNeverCrash) {
  std::mt19937 random(7);
  for (int i = 0; i < 50000; ++i) Exercise(RandomTokens(random));
}

TEST(EvaluatorFuzzTest, LongTextsNeverCrash) {
  std::string digits(100000, '9');
  std::string parentheses = std::string(50000, '(') + "1" + std::string(50000, ')');
  std::string signs;
  for (int i = 0; i < 20000; ++i) signs += "- ";
  signs += "1";
  for (const std::string& text : {digits, parentheses, signs}) Exercise(text);
  double value = 0;
  EXPECT_EQ(EvaluateExpression(parentheses, value), 0);
  EXPECT_EQ(value, 1);
}

}  // namespace
