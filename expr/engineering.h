// A double as deck text: six decimals and an engineering suffix.
#pragma once

#include <string>

/// "%f" of the number scaled to its suffix: 1e4 gives "10.000000K", 0.5 gives
/// "500.000000M". The suffix is chosen on the magnitude and the sign is kept: -2500 gives
/// "-2.500000K"; zero gives "0.000000".
std::string FormatEngineering(double number);
