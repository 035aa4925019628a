// Rewrites of MOS, B and (Dracula) bipolar device cards, and the word-level quoting
// services of the post-process pass.
#include "post/device_lines.h"

#include <cctype>

#include "expr/value_class.h"
#include "post/line_words.h"

const char* const kPspiceQuoteOpen = "{";
const char* const kPspiceQuoteClose = "}";
const char* const kTickQuote = "'";

namespace {

// The geometry parameters in the order in which missing ones are added, with the
// configuration field that holds each one's formula.
struct GeometryName {
  const char* name;
  std::string SpiceConfig::*formula;
};
constexpr GeometryName kGeometryNames[] = {
    {"AS", &SpiceConfig::asName}, {"AD", &SpiceConfig::adName},   {"PS", &SpiceConfig::psName},
    {"PD", &SpiceConfig::pdName}, {"NRD", &SpiceConfig::nrdName}, {"NRS", &SpiceConfig::nrsName},
};
constexpr int kGeometryCount = sizeof(kGeometryNames) / sizeof(kGeometryNames[0]);

int GeometryIndex(const std::string& key) {
  for (int i = 0; i < kGeometryCount; ++i) {
    if (EqualsIgnoringCase(key, kGeometryNames[i].name)) return i;
  }
  return -1;
}

bool IsPlainNumber(const std::string& text) { return ClassifyValue(text) == kPlainNumber; }

// "key=value" for a word that has a key, the bare value for one that has none.
std::string JoinKeyValue(const KeyValue& word) {
  return word.key.empty() ? word.value : word.key + "=" + word.value;
}

void RemoveQuotes(std::string& text, const SpiceConfig& config) {
  ReplaceAll(text, config.quoteOpen, "");
  ReplaceAll(text, config.quoteClose, "");
}

// Puts `word` at `index` of `params`, or behind the last word when there is no such slot.
void StoreAt(std::vector<std::string>& params, int index, std::string word) {
  if (index < 0) {
    params.push_back(std::move(word));
    return;
  }
  params[index] = std::move(word);
}

// The position of "/" in a WL value, else of "\"; npos when neither stands there.
size_t WidthLengthDivider(const std::string& value) {
  size_t slash = value.find('/');
  return slash != std::string::npos ? slash : value.find('\\');
}

// The sizes as the rewrite of one card sees them.
struct CardSizes {
  std::string lengthValue;
  std::string widthValue;
  int widthIndex;
  int lengthIndex;
};

// Splits a WL=W/L word into W= and L= words in their slots; false when the WL word itself
// is to be dropped (a single value, which becomes the width over a length of 1.0).
bool SplitWidthLength(const std::string& value, std::vector<std::string>& params, CardSizes& sizes) {
  size_t divider = WidthLengthDivider(value);
  if (divider != std::string::npos && divider > 0 && divider + 1 < value.size()) {
    sizes.widthValue = value.substr(0, divider);
    sizes.lengthValue = value.substr(divider + 1);
    StoreAt(params, sizes.widthIndex, "W=" + sizes.widthValue);
    StoreAt(params, sizes.lengthIndex, "L=" + sizes.lengthValue);
    return true;
  }
  if (EqualsIgnoringCase(value, "WL")) {
    sizes.widthValue = "W";
    sizes.lengthValue = "L";
    StoreAt(params, sizes.widthIndex, "W=W");
    StoreAt(params, sizes.lengthIndex, "L=L");
    return true;
  }
  sizes.widthValue = value;
  sizes.lengthValue = "1.0";
  StoreAt(params, sizes.widthIndex, "W=" + value);
  return false;
}

// The text of a geometry parameter that stands on the card: the formula's, or as it stands.
void AppendGeometry(std::string& out, int index, const KeyValue& word, const CardSizes& sizes,
                    PostSettings& settings) {
  const SpiceConfig& config = settings.config;
  if (settings.options.dialect.dracula) return;
  std::string text =
      ComputeGeometry(config.*kGeometryNames[index].formula, sizes.lengthValue, sizes.widthValue,
                      config.calcArea, word.key, word.value, config.quoteOpen, config.quoteClose, settings);
  out += text.empty() ? word.key + "=" + word.value + " " : text + " ";
}

void AppendMissingGeometry(std::string& out, const bool (&seen)[kGeometryCount], const CardSizes& sizes,
                           const PostSettings& settings) {
  const SpiceConfig& config = settings.config;
  for (int i = 0; i < kGeometryCount; ++i) {
    if (seen[i]) continue;
    std::string text = ComputeGeometry(config.*kGeometryNames[i].formula, sizes.lengthValue, sizes.widthValue,
                                       config.calcArea, kGeometryNames[i].name, "", config.quoteOpen,
                                       config.quoteClose, settings);
    if (!text.empty()) out += text + " ";
  }
}

// The "$EA" word of a bipolar card: an expression in M takes the card's multiplier.
std::string EmitterAreaText(const KeyValue& word, const std::string& multiplier, PostSettings& settings) {
  if (ClassifyValue(word.value) != kArithmeticValue) return word.key + "=" + word.value + " ";
  std::string copy = UpperText(word.value);
  ReplaceAll(copy, "M", multiplier);
  std::string text = word.key + "=" + copy;
  if (!IsPlainArithmetic(copy) && !settings.options.dialect.hdlSources) QuoteValue(text, settings);
  return text;
}

}  // namespace

void SetPspiceQuotes(SpiceConfig& config) {
  config.quoteOpen = kPspiceQuoteOpen;
  config.quoteClose = kPspiceQuoteClose;
}

void SetDialectQuotes(PostSettings& settings) {
  SpiceConfig& config = settings.config;
  const QuoteSet quotes = settings.options.dialect.quoteSet;
  if (quotes == QuoteSet::kTicks) {
    config.quoteOpen = kTickQuote;
    config.quoteClose = kTickQuote;
  } else if (quotes == QuoteSet::kPspice) {
    SetPspiceQuotes(config);
  }
}

void RewriteDeviceCard(std::string& line, std::string& widthAndLength, PostSettings& settings) {
  const bool strip = settings.config.stripTransSize;
  std::string head;
  std::vector<std::string> params;
  int widthIndex = -1, lengthIndex = -1;
  bool parametersSeen = false;
  for (std::string& word : WordsWithEnd(line)) {
    KeyValue split = SplitKeyValue(word);
    bool isParameter = split.hasEquals && !split.value.empty() && !EqualsIgnoringCase(split.key, "MODEL");
    if (isParameter) {
      parametersSeen = true;
      if (strip) continue;
      if (EqualsIgnoringCase(split.key, "W")) widthIndex = static_cast<int>(params.size());
      if (EqualsIgnoringCase(split.key, "L")) lengthIndex = static_cast<int>(params.size());
      params.push_back(std::move(word));
    } else if (parametersSeen) {
      params.push_back(std::move(word));
    } else {
      head += word;
      head += ' ';
    }
  }
  if (strip) {
    line = head;
    return;
  }
  if (StartsWith(line, "Q")) {
    RewriteBipolarParameters(head, params, settings);
  } else {
    RewriteMosParameters(head, std::move(params), widthAndLength, widthIndex, lengthIndex, settings);
  }
  line.swap(head);
}

void RewriteMosParameters(std::string& out, std::vector<std::string> params, std::string& widthAndLength,
                          int widthIndex, int lengthIndex, PostSettings& settings) {
  CardSizes sizes{"", "", widthIndex, lengthIndex};
  if (!widthAndLength.empty()) {
    size_t comma = widthAndLength.find(',');
    sizes.lengthValue = widthAndLength.substr(0, comma);
    if (comma != std::string::npos) sizes.widthValue = widthAndLength.substr(comma + 1);
  }
  SetDialectQuotes(settings);
  const SpiceConfig& config = settings.config;
  bool seen[kGeometryCount] = {};
  for (size_t i = 0; i < params.size(); ++i) {  // the size is read anew: WL can add slots
    KeyValue word = SplitKeyValue(params[i]);
    bool write = true;
    if (!config.noQuotes) RemoveQuotes(word.value, config);
    if (config.wlSplit == 1 && EqualsIgnoringCase(word.key, "WL")) {
      write = SplitWidthLength(word.value, params, sizes);
    }
    if (write && EqualsIgnoringCase(word.key, "L")) {
      sizes.lengthValue = word.value;
      out += NormalizeLength("L=" + sizes.lengthValue, settings) + " ";
      continue;
    }
    if (EqualsIgnoringCase(word.key, "W")) {
      sizes.widthValue = word.value;
      out += NormalizeLength("W=" + sizes.widthValue, settings) + " ";
      continue;
    }
    int geometry = GeometryIndex(word.key);
    if (geometry >= 0) {
      seen[geometry] = true;
      AppendGeometry(out, geometry, word, sizes, settings);
      continue;
    }
    if (write) out += JoinKeyValue(word) + " ";
  }
  AppendMissingGeometry(out, seen, sizes, settings);
  widthAndLength = sizes.lengthValue + "," + sizes.widthValue;
}

void RewriteBipolarParameters(std::string& out, const std::vector<std::string>& params,
                              PostSettings& settings) {
  const bool hdl = settings.options.dialect.hdlSources;
  std::string multiplier;
  for (const std::string& param : params) {
    KeyValue word = SplitKeyValue(param);
    if (!settings.config.noQuotes) ReplaceAll(word.value, "'", "");
    if (word.key == "M") {
      multiplier = word.value;
      std::string text = "M=" + word.value;
      if (!IsPlainNumber(word.value) && !hdl) QuoteValue(text, settings);
      out += text + " ";
    } else if (word.key == "$EA") {
      std::string text = EmitterAreaText(word, multiplier, settings);
      AdjustWordUnit(text, settings.Units());
      out += text + " ";
    } else {
      out += JoinKeyValue(word) + " ";
    }
  }
}

std::string ComputeGeometry(const std::string& formula, const std::string& lengthValue,
                            const std::string& widthValue, int enabled, const std::string& key,
                            const std::string& value, const std::string& open, const std::string& close,
                            const PostSettings& settings) {
  if (enabled == 0) return "";
  if (formula.empty()) return value.empty() ? "" : key + "=" + value + " ";
  std::string copy = UpperText(formula);
  ReplaceAll(copy, "L", lengthValue);
  ReplaceAll(copy, "W", widthValue);
  if ((IsPlainNumber(lengthValue) && IsPlainNumber(widthValue)) || settings.config.noQuotes) {
    return key + "=" + copy + " ";
  }
  return key + "=" + open + copy + close + " ";
}

std::string NormalizeLength(std::string word, PostSettings& settings) {
  if (!settings.options.dialect.hdlSources) QuoteValue(word, settings);
  AdjustWordUnit(word, settings.Units());
  return word;
}

void QuoteValue(std::string& word, PostSettings& settings) {
  SpiceConfig& config = settings.config;
  const Dialect& dialect = settings.options.dialect;
  if (dialect.pspiceQuotesAlways) SetPspiceQuotes(config);
  if (!dialect.quotedValues || config.noQuotes) return;
  if (word.find('=') == std::string::npos) return;
  if (StartsWith(word, "$.MODEL=") || StartsWith(word, "IS=X")) return;
  KeyValue split = SplitKeyValue(word);
  if (IsPlainNumber(split.value)) return;
  if (StartsWith(split.key, "{") || StartsWith(split.key, "MODEL") || StartsWith(split.key, "model")) return;

  const std::string& open = config.quoteOpen;
  const std::string& close = config.quoteClose;
  const bool opens = StartsWith(split.value, open), closes = EndsWith(split.value, close);
  if (opens && closes) return;
  if (opens) {
    word = split.key + "=" + split.value + close;
  } else if (closes) {
    word = split.key + "=" + open + split.value;
  } else if (dialect.completedBraces && StartsWith(split.value, "{") && EndsWith(split.value, "}")) {
    return;
  } else if (dialect.completedBraces && StartsWith(split.value, "{")) {
    word = split.key + "=" + split.value + "}";
  } else if (dialect.completedBraces && EndsWith(split.value, "}")) {
    word = split.key + "={" + split.value;
  } else {
    word = split.key + "=" + open + split.value + close;
  }
}

void DraculaWord(std::string& word, const PostSettings& settings) {
  RemoveQuotes(word, settings.config);
  size_t equals = word.find('=');
  if (equals == std::string::npos || equals == 0 || equals + 1 >= word.size()) return;
  std::string value = word.substr(equals + 1);
  char last = value.back();
  if (last != 'x' && last != 'X') return;
  value.pop_back();
  if (IsPlainNumber(value)) word.pop_back();
}

bool IsPlainArithmetic(const std::string& text) {
  // Only the device letters L, W and M may stand as words in it.
  return ScanValue(UpperText(text), [](char c, ValueChar kind) {
    return kind != ValueChar::kWordLetter || c == 'L' || c == 'W' || c == 'M';
  });
}
