// Six-decimal engineering notation for evaluated values.
#include "expr/engineering.h"

#include <charconv>
#include <cmath>
#include <cstdint>

namespace {

struct EngineeringRow {
  double limit;  // the number must lie above this (at or above, for 1.0)
  double divisor;
  const char* suffix;
};

// Tested in order; the first row whose limit the number passes decides.
constexpr EngineeringRow kRows[] = {
    {1e12, 1e12, "T"}, {1e9, 1e9, "G"},   {1e6, 1e6, "MEG"}, {1e3, 1e3, "K"},     {1.0, 1.0, ""},
    {1e-3, 1e-3, "M"}, {1e-6, 1e-6, "U"}, {1e-9, 1e-9, "N"}, {1e-12, 1e-12, "P"},
};

std::string Format(double scaled, const char* suffix) {
  // A whole number (most values: "1K" is 1000.000000) is its integer digits and six zeros;
  // the fixed notation of the double prints exactly that, at more cost.
  if (scaled == std::trunc(scaled) && std::fabs(scaled) < 1e15) {
    char digits[32];
    std::to_chars_result written =
        std::to_chars(digits, digits + sizeof digits, static_cast<int64_t>(scaled));
    std::string text(digits, written.ptr);
    if (scaled == 0 && std::signbit(scaled)) text.insert(0, "-");
    text += ".000000";
    text += suffix;
    return text;
  }
  // Room for the 309 integer digits of the largest double, the decimals and a suffix.
  // to_chars in fixed notation prints exactly what "%f" prints, only faster.
  char buffer[400];
  std::to_chars_result written =
      std::to_chars(buffer, buffer + sizeof buffer, scaled, std::chars_format::fixed, 6);
  if (written.ec != std::errc()) return std::string();
  std::string text(buffer, written.ptr);
  text += suffix;
  return text;
}

}  // namespace

std::string FormatEngineering(double number) {
  // Zero has no scale of its own (and -0 prints as 0): a femto suffix on it reads as a
  // tiny value to a designer and to nothing else.
  if (number == 0) return Format(0.0, "");
  // The suffix follows the magnitude and the quotient keeps the sign, so -5 stays -5.000000
  // instead of a huge count of femto units.
  double magnitude = std::fabs(number);
  for (const EngineeringRow& row : kRows) {
    bool passes = row.limit == 1.0 ? magnitude >= row.limit : magnitude > row.limit;
    if (passes) return Format(number / row.divisor, row.suffix);
  }
  return Format(number / 1e-15, "F");
}
