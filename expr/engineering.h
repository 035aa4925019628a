// A double as deck text: six decimals and an engineering suffix.
#pragma once

#include <string>

/// "%f" of the number scaled to its suffix: 1e4 gives "10.000000K", 0.5 gives
/// "500.000000M"; zero and negative numbers come out in femto units.
std::string FormatEngineering(double number);
