// Shunting-yard conversion to postfix and a stack machine over doubles.
#include "expr/evaluator.h"

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

// 25.4 times 1e-6 as the double product gives it (one unit in the last place below
// the double nearest to 2.54e-5); spelled by its bits so that no compiler folds it
// differently.
double MilConstant() {
  const uint64_t bits = 0x3EFAA242B58735E9ULL;
  double value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

const double kMil = MilConstant();

constexpr char kScannerCharacters[] = "FPNUMILKEGT<>=*/%+-^&|\\!";

bool IsScannerCharacter(char c) { return c != '\0' && std::strchr(kScannerCharacters, c) != nullptr; }

// What a C conversion from double to a 32-bit int gives on the x86 machines the
// designs come from: toward zero, and the "integer indefinite" value 0x80000000 for
// NaN and for anything outside the range.
int32_t TruncateToInt(double value) {
  if (!(value > -2147483649.0 && value < 2147483648.0)) return INT32_MIN;
  return static_cast<int32_t>(value);
}

double Shift(double a, double b, bool left) {
  int32_t value = TruncateToInt(a);
  int32_t count = TruncateToInt(b) & 31;
  if (left) return static_cast<int32_t>(static_cast<uint32_t>(value) << count);
  return value >> count;
}

// The suffix rows, kOpFemto to kOpTera, indexing the factors.
double ApplySuffix(int row, double v) {
  static const double kFactors[] = {0, 1e-15, 1e-12, 1e-9, 1e-6, 0, 1e-3, 1e3, 1e6, 1e9, 1e12};
  return v * (row == kOpMil ? kMil : kFactors[row]);
}

// Integer remainder with the sign of a; false when b truncates to zero.
bool Remainder(double a, double b, double& result) {
  int32_t divisor = TruncateToInt(b);
  if (divisor == 0) return false;
  int32_t dividend = TruncateToInt(a);
  result = divisor == -1 ? 0 : dividend % divisor;
  return true;
}

// Applies a binary row; false when the operation has no result.
bool ApplyBinary(int row, double a, double b, double& r) {
  int32_t x = TruncateToInt(a), y = TruncateToInt(b);
  switch (row) {
    case kOpMultiply:
      r = a * b;
      return true;
    case kOpDivide:
      r = a / b;
      return true;
    case kOpIntegerDivide:
      r = TruncateToInt(a / b);
      return true;
    case kOpRemainder:
      return Remainder(a, b, r);
    case kOpShiftLeft:
      r = Shift(a, b, true);
      return true;
    case kOpShiftRight:
      r = Shift(a, b, false);
      return true;
    case kOpMinus:
      r = a - b;
      return true;
    case kOpPlus:
      r = a + b;
      return true;
    case kOpBitXor:
      r = x ^ y;
      return true;
    case kOpBitAnd:
      r = x & y;
      return true;
    case kOpBitOr:
      r = x | y;
      return true;
    case kOpBitNor:
      r = ~(x | y);
      return true;
    case kOpLogicalAnd:
      r = (a != 0.0 && b != 0.0) ? 1 : 0;
      return true;
    case kOpLogicalOr:
      r = (a != 0.0 || b != 0.0) ? 1 : 0;
      return true;
    case kOpBitNand:
      r = ~(x & y);
      return true;
    case kOpEqual:
      r = a == b ? 1 : 0;
      return true;
    case kOpLess:
      r = a < b ? 1 : 0;
      return true;
    case kOpGreater:
      r = a > b ? 1 : 0;
      return true;
    case kOpGreaterOrEqual:
      r = a >= b ? 1 : 0;
      return true;
    case kOpNotEqual:
      r = a != b ? 1 : 0;
      return true;
    case kOpLessOrEqual:
      r = a <= b ? 1 : 0;
      return true;
  }
  return false;
}

// Reads the `length` digits and points at `text` as one double, as strtod would;
// false unless all of them are taken.
bool ReadNumber(const char* text, int length, double& value) {
  const char* end = text + length;
  std::from_chars_result read = std::from_chars(text, end, value);
  if (read.ec == std::errc()) return read.ptr == end;
  if (read.ec != std::errc::result_out_of_range) return false;
  // Beyond the range of a double: strtod's infinity or zero.
  std::string copy(text, length);
  char* stop = nullptr;
  value = std::strtod(copy.c_str(), &stop);
  return stop == copy.c_str() + length;
}

void AppendToken(std::string& postfix, const char* token) {
  postfix += ' ';
  postfix += token;
}

// Pops operators to the postfix until "(" (kOpScanner) is popped; false if there is none.
bool CloseParenthesis(std::vector<int>& stack, std::string& postfix) {
  while (!stack.empty()) {
    int row = stack.back();
    stack.pop_back();
    if (row == kOpScanner) return true;
    AppendToken(postfix, OperatorTable[row].text);
  }
  return false;
}

void PushOperator(int row, std::vector<int>& stack, std::string& postfix) {
  int precedence = OperatorTable[row].precedence;
  while (!stack.empty() && stack.back() != kOpScanner &&
         precedence <= OperatorTable[stack.back()].precedence) {
    AppendToken(postfix, OperatorTable[stack.back()].text);
    stack.pop_back();
  }
  stack.push_back(row);
}

int ApplyOperator(int row, std::vector<double>& stack) {
  if (stack.empty()) return kMissingOperand;
  double b = stack.back();
  stack.pop_back();
  if (OperatorTable[row].operands == 1) {
    stack.push_back(ApplySuffix(row, b));
    return kEvaluationOk;
  }
  if (stack.empty()) return kMissingOperand;
  double a = stack.back();
  stack.pop_back();
  double r = 0;
  if (!ApplyBinary(row, a, b, r)) return kUnreadableText;
  stack.push_back(r);
  return kEvaluationOk;
}

}  // namespace

const OperatorToken OperatorTable[kOperatorRows] = {
    {kScannerCharacters, -1, -1},
    {"F", 20, 1},
    {"P", 20, 1},
    {"N", 20, 1},
    {"U", 20, 1},
    {"MIL", 20, 1},
    {"M", 20, 1},
    {"K", 20, 1},
    {"MEG", 20, 1},
    {"G", 20, 1},
    {"T", 20, 1},
    {"*", 19, 2},
    {"/", 19, 2},
    {"\\", 19, 2},
    {"%", 18, 2},
    {"<<", 17, 2},
    {">>", 17, 2},
    {"-", 16, 2},
    {"+", 16, 2},
    {"^", 15, 2},
    {"&", 15, 2},
    {"|", 15, 2},
    {"!|", 15, 2},
    {"&&", 14, 2},
    {"||", 14, 2},
    {"!&", 15, 2},
    {"==", 13, 2},
    {"<", 13, 2},
    {">", 13, 2},
    {">=", 13, 2},
    {"!=", 13, 2},
    {"<=", 13, 2},
};

int FindOperatorToken(std::string_view text) {
  size_t run = 0;
  while (run < text.size() && IsScannerCharacter(text[run])) ++run;
  if (run == 0) return -1;
  std::string_view token = text.substr(0, run);
  for (int row = kOpFemto; row < kOperatorRows; ++row) {
    if (token == OperatorTable[row].text) return row;
  }
  return -1;
}

int NumberLength(std::string_view text) {
  size_t length = 0;
  while (length < text.size() &&
         (std::isdigit(static_cast<unsigned char>(text[length])) || text[length] == '.'))
    ++length;
  return static_cast<int>(length);
}

int InfixToPostfix(std::string_view text, std::string& postfix) {
  // Reused between calls: attribute values are evaluated by the million.
  static thread_local std::string upper;
  static thread_local std::vector<int> stack;  // rows; kOpScanner stands for "("
  upper.assign(text);
  for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  stack.clear();
  postfix.clear();
  bool lastIsOperator = false;
  std::string_view rest(upper);
  for (size_t i = 0; i < rest.size(); ++i) {
    char c = rest[i];
    if (std::isspace(static_cast<unsigned char>(c))) continue;
    if (c == '(') {
      stack.push_back(kOpScanner);
      continue;
    }
    if (c == ')') {
      if (!CloseParenthesis(stack, postfix)) return kMissingOperand;
      continue;
    }
    int row = FindOperatorToken(rest.substr(i));
    if (row < 0) {
      int length = NumberLength(rest.substr(i));
      if (length == 0) return kUnreadableText;
      postfix += ' ';
      postfix.append(rest.substr(i, length));
      lastIsOperator = false;
      i += length - 1;
      continue;
    }
    // A sign in front of an operand (and anything behind a suffix) works on a zero.
    if (postfix.empty() || lastIsOperator) AppendToken(postfix, "0");
    lastIsOperator = true;
    i += std::strlen(OperatorTable[row].text) - 1;
    PushOperator(row, stack, postfix);
  }
  while (!stack.empty()) {
    int row = stack.back();
    stack.pop_back();
    if (row == kOpScanner) return kMissingOperand;
    AppendToken(postfix, OperatorTable[row].text);
  }
  return kEvaluationOk;
}

int EvaluatePostfix(std::string_view postfix, double& result) {
  static thread_local std::vector<double> stack;
  stack.clear();
  for (size_t i = 0; i < postfix.size(); ++i) {
    if (std::isspace(static_cast<unsigned char>(postfix[i]))) continue;
    std::string_view rest = postfix.substr(i);
    int row = FindOperatorToken(rest);
    if (row >= kOpFemto) {
      int status = ApplyOperator(row, stack);
      if (status != kEvaluationOk) return status;
      i += std::strlen(OperatorTable[row].text) - 1;
      continue;
    }
    int length = NumberLength(rest);
    double value = 0;
    if (length == 0 || !ReadNumber(rest.data(), length, value)) return kUnreadableText;
    stack.push_back(value);
    i += length - 1;
  }
  // An expression without any token leaves nothing to read.
  if (stack.empty()) return kMissingOperand;
  result = stack.back();
  stack.pop_back();
  return stack.empty() ? kEvaluationOk : kValuesLeftOver;
}

namespace {

// A number with at most an engineering suffix ("1K", "2.2u", "10MEG"), the form most values
// take, read without the postfix text: digits and points, then a whole suffix token or
// nothing. The result is what the postfix run gives for it; false when `text` has another
// form or does not read, which the full evaluation then decides.
bool EvaluatePlainNumber(std::string_view text, double& result) {
  const int length = NumberLength(text);
  if (length == 0) return false;
  std::string_view rest = text.substr(static_cast<size_t>(length));
  int row = 0;
  if (!rest.empty()) {
    char suffix[4] = {};
    if (rest.size() > 3) return false;
    for (size_t i = 0; i < rest.size(); ++i) {
      const unsigned char c = static_cast<unsigned char>(rest[i]);
      if (!std::isalpha(c)) return false;
      suffix[i] = static_cast<char>(std::toupper(c));
    }
    for (row = kOpFemto; row <= kOpTera; ++row)
      if (std::strcmp(suffix, OperatorTable[row].text) == 0) break;
    if (row > kOpTera) return false;
  }
  double value = 0;
  if (!ReadNumber(text.data(), length, value)) return false;
  result = row == 0 ? value : ApplySuffix(row, value);
  return true;
}

}  // namespace

int EvaluateExpression(std::string_view text, double& result) {
  if (EvaluatePlainNumber(text, result)) return kEvaluationOk;
  static thread_local std::string postfix;
  int status = InfixToPostfix(text, postfix);
  if (status != kEvaluationOk) return status;
  return EvaluatePostfix(postfix, result);
}
