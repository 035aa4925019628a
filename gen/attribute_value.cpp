// The value of an attribute on its way into a component line: "@" references, unit
// letters, evaluation to engineering notation, braces around expressions.
#include <cctype>

#include "expr/attribute_text.h"
#include "expr/engineering.h"
#include "expr/evaluator.h"
#include "expr/value_class.h"
#include "gen/spice_gen.h"

namespace {

void StripQuotes(std::string& text) {
  size_t first = text.find_first_not_of('\'');
  if (first == std::string::npos) {
    text.clear();
    return;
  }
  text.erase(text.find_last_not_of('\'') + 1);
  text.erase(0, first);
}

bool MayBeNumber(const std::string& value) {
  if (value.empty()) return false;
  char c = value[0];
  return std::isdigit(static_cast<unsigned char>(c)) || c == '.' || c == '-' || c == '+';
}

}  // namespace

std::string CSpiceGen::EvaluateAttributeValue(const SpiceComp& comp, const std::string& paramName,
                                              std::string value) {
  const UnitRules rules{&config.uParNames, &config.pParNames, config.stripUnits};
  double number = 0;
  if (value.find('@') == std::string::npos) {
    // A plain value gives the same text each time: the components of a symbol, and often of a
    // whole design, repeat a few values, which are worked out once.
    for (const ValueMemo& memo : valueMemo_)
      if (memo.filled && memo.stripUnits == config.stripUnits && memo.value == value && memo.name == paramName)
        return memo.result;
    ValueMemo& memo = valueMemo_[valueMemoNext_++ % valueMemo_.size()];
    memo.filled = false;
    memo.name = paramName;
    memo.value = value;
    memo.stripUnits = config.stripUnits;
    AdjustUnit(value, value, paramName, rules);
    memo.result = MayBeNumber(value) && EvaluateExpression(value, number) == kEvaluationOk
                      ? FormatEngineering(number)
                      : value;
    memo.filled = true;
    return memo.result;
  }
  std::string text = ExpandAttributeReferences(
      value, [&comp](const std::string& upperKey) { return comp.attrs.Get(upperKey); });
  StripQuotes(text);
  AdjustUnit(text, text, paramName, rules);
  if (EvaluateExpression(text, number) == kEvaluationOk) return FormatEngineering(number);
  // Left for the simulator to work out.
  if (!options.dialect.bracedExpressions) return text;
  if (ClassifyValue(text) == kArithmeticValue) return "{" + text + "}";
  return text;
}
