// Attribute expressions through the evaluator: infix to postfix and the postfix run.
#include <cstdint>
#include <string>

#include "expr/evaluator.h"
#include "tests/fuzz/fuzz_support.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::string text = fuzz::Text(data, size);
  double result = 0;
  EvaluateExpression(text, result);
  std::string postfix;
  if (InfixToPostfix(text, postfix) == 0) EvaluatePostfix(postfix, result);
  return 0;
}
