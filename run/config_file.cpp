// Reads vesk.cfg, the dialect rules that are not switches, into the generator's fields.
#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <cstdlib>
#include <iostream>
#include <vector>

#include "design/platform.h"
#include "gen/spice_gen.h"

namespace {

constexpr size_t kPathBuffer = 260;

enum class Form { kNextWord, kRestOfLine, kNumber, kBreakString };

// A key of the file and the field its value lands in (text or number).
struct ConfigKey {
  const char* key;
  Form form;
  std::string SpiceConfig::*text;
  int32_t SpiceConfig::*number;
};

const ConfigKey kKeys[] = {
    {"STRIP_CHARS", Form::kNextWord, &SpiceConfig::stripChars, nullptr},
    {"STRIP_COMS", Form::kNextWord, &SpiceConfig::stripComs, nullptr},
    {"ELEMENTS", Form::kNextWord, &SpiceConfig::elements, nullptr},
    {"COMMANDS", Form::kRestOfLine, &SpiceConfig::commands, nullptr},
    {"AD", Form::kRestOfLine, &SpiceConfig::adName, nullptr},
    {"AS", Form::kRestOfLine, &SpiceConfig::asName, nullptr},
    {"PS", Form::kRestOfLine, &SpiceConfig::psName, nullptr},
    {"PD", Form::kRestOfLine, &SpiceConfig::pdName, nullptr},
    {"NRD", Form::kRestOfLine, &SpiceConfig::nrdName, nullptr},
    {"NRS", Form::kRestOfLine, &SpiceConfig::nrsName, nullptr},
    {"STRIP", Form::kRestOfLine, &SpiceConfig::stripWords, nullptr},
    {"CALC_AREA", Form::kNumber, nullptr, &SpiceConfig::calcArea},
    {"CALC_RES", Form::kNumber, nullptr, &SpiceConfig::calcRes},
    {"WL_SPLIT", Form::kNumber, nullptr, &SpiceConfig::wlSplit},
    {"CSDF", Form::kNumber, nullptr, &SpiceConfig::csdf},
    {"NOSLASH", Form::kNumber, nullptr, &SpiceConfig::noSlash},
    {"SUFFIX2EE", Form::kNumber, nullptr, &SpiceConfig::suffix2ee},
    {"NOEQUATION", Form::kNumber, nullptr, &SpiceConfig::noEquation},
    {"NOQUOTES", Form::kNumber, nullptr, &SpiceConfig::noQuotes},
    {"LINELENGHT", Form::kNumber, nullptr, &SpiceConfig::lineLength},
    {"ACCURACY", Form::kNumber, nullptr, &SpiceConfig::accuracy},
    {"CONTINUE", Form::kNextWord, &SpiceConfig::continueString, nullptr},
    {"BREAKSTRING", Form::kBreakString, &SpiceConfig::breakString, nullptr},
    {"PATHS", Form::kNextWord, &SpiceConfig::paths, nullptr},
};

// One line cut into its key, the word behind it and everything behind the key's blank.
struct ConfigLine {
  std::string key;
  std::string nextWord;
  std::string restOfLine;
  std::vector<std::string> words;  // the words behind the key
};

// Words separated by runs of blanks.
std::vector<std::string> BlankWords(const std::string& text) {
  std::vector<std::string> words;
  size_t pos = 0;
  while ((pos = text.find_first_not_of(' ', pos)) != std::string::npos) {
    size_t end = text.find(' ', pos);
    if (end == std::string::npos) end = text.size();
    words.push_back(text.substr(pos, end - pos));
    pos = end;
  }
  return words;
}

ConfigLine CutLine(const std::string& line) {
  ConfigLine cut;
  size_t start = line.find_first_not_of(' ');
  if (start == std::string::npos) return cut;
  size_t end = line.find(' ', start);
  if (end == std::string::npos) end = line.size();
  for (char c : line.substr(start, end - start))
    if (c != '\r' && c != '\n') cut.key += c;
  if (end < line.size()) cut.restOfLine = line.substr(end + 1);
  cut.words = BlankWords(cut.restOfLine);
  if (!cut.words.empty()) cut.nextWord = cut.words[0];
  return cut;
}

// The file's lines without their line ends, CR LF or LF.
std::vector<std::string> FileLines(const std::string& text) {
  std::vector<std::string> lines;
  size_t pos = 0;
  while (pos < text.size()) {
    size_t end = text.find('\n', pos);
    if (end == std::string::npos) end = text.size();
    std::string line = text.substr(pos, end - pos);
    if (!line.empty() && line.back() == '\r') line.pop_back();
    lines.push_back(std::move(line));
    pos = end + 1;
  }
  return lines;
}

const ConfigKey* FindKey(const std::string& key) {
  for (const ConfigKey& candidate : kKeys)
    if (key == candidate.key) return &candidate;
  return nullptr;
}

void ApplyKey(SpiceConfig& config, const ConfigKey& key, const ConfigLine& line) {
  switch (key.form) {
    case Form::kNextWord:
      config.*key.text = line.nextWord;
      break;
    case Form::kRestOfLine:
      config.*key.text = line.restOfLine;
      break;
    case Form::kBreakString:
      config.*key.text = line.nextWord + " ";
      break;
    case Form::kNumber:
      config.*key.number = std::atoi(line.nextWord.c_str());
      break;
  }
}

// Pairs the words behind a NAME key with those behind the first word of the next line:
// the second line's word maps to the first line's word.
void AddNamePairs(SpiceConfig& config, const ConfigLine& line, const std::string* nextLine) {
  std::vector<std::string> targets = nextLine ? BlankWords(*nextLine) : std::vector<std::string>();
  for (size_t i = 0; i < line.words.size(); ++i) {
    size_t j = i + 1;  // the next line's first word is dropped
    std::string name = j < targets.size() ? targets[j] : "";
    config.nameMap[name] = line.words[i];
  }
}

bool IsNameKey(const std::string& key) { return key == "GND_NAME" || key == "VDD_NAME" || key == "NAME"; }

// The two unit name lists as the file gives them, and whether a line gave them at all.
struct UnitLists {
  std::string uText, pText;
  bool uSeen = false, pSeen = false;
};

std::set<std::string> SplitNames(std::string text) {
  boost::algorithm::trim(text);
  std::set<std::string> names;
  if (text.empty()) return names;
  std::vector<std::string> words;
  boost::algorithm::split(words, text, boost::algorithm::is_space(), boost::algorithm::token_compress_on);
  names.insert(words.begin(), words.end());
  return names;
}

// Fills the two sets; a list that the file leaves out takes the defaults less the other set.
void SettleUnitSets(SpiceConfig& config, const UnitLists& lists) {
  config.pParNames = SplitNames(lists.pText);
  config.uParNames = SplitNames(lists.uText);
  if (!lists.uSeen) {
    for (const std::string& name : SplitNames(kDefaultUParNames))
      if (!config.pParNames.count(name)) config.uParNames.insert(name);
  }
  if (!lists.pSeen) {
    for (const std::string& name : SplitNames(kDefaultPParNames))
      if (!config.uParNames.count(name)) config.pParNames.insert(name);
  }
}

// Prints the names that stand in both sets; true when there were any.
bool ReportConflicts(const SpiceConfig& config) {
  std::vector<std::string> both;
  for (const std::string& name : config.uParNames)
    if (config.pParNames.count(name)) both.push_back(name);
  if (both.empty()) return false;
  std::cout << "Error: The same attribute is listed in both UPARNAMS and PPARNAMS keys in configuration file:"
            << "\n";
  for (const std::string& name : both) std::cout << name << "\n";
  return true;
}

// The default file %GALT_HOME%\standard\vesk.cfg; empty when the expansion overflows.
std::string DefaultConfigPath() {
  std::string home = ExpandPercentEnvironment("%GALT_HOME%");
  if (home.empty() || home.size() >= kPathBuffer) return "";
  return home + "\\standard\\vesk.cfg";
}

}  // namespace

int CSpiceGen::ReadConfigFile() {
  ForgetValues();
  if (options.configFile.empty()) options.configFile = DefaultConfigPath();
  std::string text;
  if (!FileExists(options.configFile) || !ReadWholeFile(options.configFile, text)) {
    std::cout << "Error: No Configuration File Found \n";
    return 1;
  }
  std::vector<std::string> lines = FileLines(text);
  UnitLists lists;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (lines[i].empty() || lines[i][0] == '|') continue;
    ConfigLine line = CutLine(lines[i]);
    if (IsNameKey(line.key)) {
      ++i;
      AddNamePairs(config, line, i < lines.size() ? &lines[i] : nullptr);
    } else if (line.key == "UPARNAMS") {
      lists.uText = line.restOfLine;
      lists.uSeen = true;
    } else if (line.key == "PPARNAMS") {
      lists.pText = line.restOfLine;
      lists.pSeen = true;
    } else if (const ConfigKey* key = FindKey(line.key)) {
      ApplyKey(config, *key, line);
    }
  }
  SettleUnitSets(config, lists);
  return ReportConflicts(config) ? 1 : 0;
}
