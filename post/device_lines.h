// Rewrites of MOS, B and (Dracula) bipolar device cards, and the word-level quoting
// services of the post-process pass.
#pragma once

#include <string>
#include <vector>

#include "post/post_settings.h"

/// The quote strings of the dialects: braces for Pspice, apostrophes elsewhere.
extern const char* const kPspiceQuoteOpen;
extern const char* const kPspiceQuoteClose;
/// Makes the Pspice braces the quotes of the configuration.
void SetPspiceQuotes(SpiceConfig& config);
extern const char* const kTickQuote;

/// Sets config.quoteOpen/quoteClose for the deck's dialect; Berkeley SPICE keeps its own.
void SetDialectQuotes(PostSettings& settings);

/// Splits an M, B or Dracula Q line into its head and parameters and rewrites the
/// parameters. `widthAndLength` ("L,W") carries the statement's sizes to its + lines.
void RewriteDeviceCard(std::string& line, std::string& widthAndLength, PostSettings& settings);

/// Appends the rewritten MOS parameters to `out`: units on L and W, WL splitting, the
/// geometry formulas of CALC_AREA, and the geometry parameters the card lacks.
void RewriteMosParameters(std::string& out, std::vector<std::string> params, std::string& widthAndLength,
                          int widthIndex, int lengthIndex, PostSettings& settings);

/// Appends the rewritten parameters of a Dracula bipolar card; "$EA" expressions in M
/// are given the card's M value.
void RewriteBipolarParameters(std::string& out, const std::vector<std::string>& params,
                              PostSettings& settings);

/// The text "key=value " of a geometry parameter from its formula in L and W, or "" when
/// nothing is to be written.
std::string ComputeGeometry(const std::string& formula, const std::string& lengthValue,
                            const std::string& widthValue, int enabled, const std::string& key,
                            const std::string& value, const std::string& open, const std::string& close,
                            const PostSettings& settings);

/// An L= or W= word quoted for the dialect and given its unit.
std::string NormalizeLength(std::string word, PostSettings& settings);

/// Marks a KEY=VALUE word whose value isn't a plain number as an expression of the dialect.
void QuoteValue(std::string& word, PostSettings& settings);

/// Takes the quotes off a Dracula word and the "X" off a multiplier such as "M=2X".
void DraculaWord(std::string& word, const PostSettings& settings);

/// True when `text` holds no letter beyond number suffixes, exponents and L, W, M.
bool IsPlainArithmetic(const std::string& text);
