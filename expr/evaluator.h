// Numeric evaluation of attribute value expressions: numbers, engineering suffixes,
// binary operators and parentheses, through a postfix text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// One row of the operator table.
struct OperatorToken {
  const char* text;    // the token as written, upper case
  int32_t precedence;  // higher binds tighter
  int32_t operands;    // 1 for a suffix, 2 for a binary operator
};

/// The rows of the operator table. Row 0 holds the scanner's character set (and stands for
/// "(" on the operator stack); the suffixes come first, then the binary operators.
enum OperatorRow : int {
  kOpScanner = 0,
  kOpFemto,
  kOpPico,
  kOpNano,
  kOpMicro,
  kOpMil,
  kOpMilli,
  kOpKilo,
  kOpMega,
  kOpGiga,
  kOpTera,
  kOpMultiply,
  kOpDivide,
  kOpIntegerDivide,
  kOpRemainder,
  kOpShiftLeft,
  kOpShiftRight,
  kOpMinus,
  kOpPlus,
  kOpBitXor,
  kOpBitAnd,
  kOpBitOr,
  kOpBitNor,
  kOpLogicalAnd,
  kOpLogicalOr,
  kOpBitNand,
  kOpEqual,
  kOpLess,
  kOpGreater,
  kOpGreaterOrEqual,
  kOpNotEqual,
  kOpLessOrEqual,
};
constexpr int kOperatorRows = kOpLessOrEqual + 1;
extern const OperatorToken OperatorTable[kOperatorRows];

/// Status values of the evaluator.
enum EvaluationStatus : int {
  kEvaluationOk = 0,
  kMissingOperand = 1,  // unbalanced parentheses, a binary operator with one operand, no value at all
  kUnreadableText = 3,  // no token and no number, a number that does not read whole, "%" by zero
  kValuesLeftOver = 4,  // more than one value left at the end
};

/// The row (kOpFemto to kOpLessOrEqual) of the token that makes up the whole run of scanner characters
/// at the start of `text`, or -1. Case sensitive: callers hand in upper case.
int FindOperatorToken(std::string_view text);

/// How many characters at the start of `text` are ASCII digits or ".".
int NumberLength(std::string_view text);

/// Rewrites the infix `text` as a postfix text with one blank before every token.
int InfixToPostfix(std::string_view text, std::string& postfix);

/// Runs a postfix text on a stack of doubles.
int EvaluatePostfix(std::string_view postfix, double& result);

/// Evaluates `text`; `result` is valid only when the status is 0.
int EvaluateExpression(std::string_view text, double& result);
