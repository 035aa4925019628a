// Runs the simulators on written decks in their own folders and parses their raw files.
#include "tests/sim_harness.h"

#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>
#include <vector>

#include "tests/deck_harness.h"

#ifndef VESK_SOURCE_DIR
#define VESK_SOURCE_DIR "."
#endif

namespace fs = std::filesystem;

namespace {

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

std::string Trim(const std::string& text) {
  size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string::npos) return "";
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

bool StartsWith(const std::string& text, const std::string& head) { return text.rfind(head, 0) == 0; }

std::complex<double> ParseRawValue(const std::string& text) {
  size_t comma = text.find(',');
  if (comma == std::string::npos) return {std::strtod(text.c_str(), nullptr), 0.0};
  return {std::strtod(text.substr(0, comma).c_str(), nullptr),
          std::strtod(text.substr(comma + 1).c_str(), nullptr)};
}

// Reads the "Values:" section of one plot: per point, an index and then one value per vector.
void ReadValues(std::istream& lines, SimPlot& plot, size_t points) {
  size_t count = plot.names.size();
  plot.columns.assign(count, {});
  std::string word;
  for (size_t point = 0; point < points; ++point) {
    if (!(lines >> word)) return;  // the point's index
    for (size_t column = 0; column < count && lines >> word; ++column)
      plot.columns[column].push_back(ParseRawValue(word));
  }
}

}  // namespace

std::string FindOnPath(const std::string& program) {
  const char* path = std::getenv("PATH");
  std::istringstream folders(path ? path : "");
  std::string folder;
  while (std::getline(folders, folder, ':')) {
    if (folder.empty()) continue;
    std::string candidate = folder + "/" + program;
    if (::access(candidate.c_str(), X_OK) == 0) return candidate;
  }
  return "";
}

const std::vector<std::complex<double>>* SimPlot::Vector(const std::string& name) const {
  auto found = std::find(names.begin(), names.end(), Lower(name));
  if (found == names.end()) return nullptr;
  return &columns[found - names.begin()];
}

const SimPlot* SimResult::Plot(const std::string& prefix) const {
  for (const SimPlot& plot : plots)
    if (StartsWith(plot.name, prefix)) return &plot;
  return nullptr;
}

std::map<std::string, double> SimResult::OperatingPoint() const {
  std::map<std::string, double> values;
  const SimPlot* plot = Plot("Operating Point");
  if (!plot) return values;
  for (size_t i = 0; i < plot->names.size(); ++i) {
    const std::string& name = plot->names[i];
    if (name.size() > 3 && StartsWith(name, "v(") && name.back() == ')' && !plot->columns[i].empty())
      values[name.substr(2, name.size() - 3)] = plot->columns[i][0].real();
  }
  return values;
}

std::vector<SimPlot> ParseRawFile(const std::string& text) {
  std::vector<SimPlot> plots;
  std::istringstream lines(text);
  std::string line;
  size_t variables = 0, points = 0;
  while (std::getline(lines, line)) {
    if (StartsWith(line, "Plotname:")) {
      plots.emplace_back();
      plots.back().name = Trim(line.substr(9));
    } else if (StartsWith(line, "No. Variables:")) {
      variables = std::strtoul(line.c_str() + 14, nullptr, 10);
    } else if (StartsWith(line, "No. Points:")) {
      points = std::strtoul(line.c_str() + 11, nullptr, 10);
    } else if (StartsWith(line, "Variables:") && !plots.empty()) {
      for (size_t i = 0; i < variables && std::getline(lines, line); ++i) {
        std::istringstream words(line);
        std::string index, name;
        words >> index >> name;
        plots.back().names.push_back(Lower(name));
      }
    } else if (StartsWith(line, "Values:") && !plots.empty()) {
      ReadValues(lines, plots.back(), points);
    }
  }
  return plots;
}

namespace {

/// The distinct `$G_` node names of a deck, in order of first use.
std::vector<std::string> PspiceGlobalNodes(const std::string& deck) {
  std::vector<std::string> names;
  std::set<std::string> seen;
  std::istringstream words(deck);
  std::string word;
  while (words >> word)
    if (Lower(word).rfind("$g_", 0) == 0 && seen.insert(Lower(word)).second) names.push_back(word);
  return names;
}

}  // namespace

SimResult RunNgspice(const std::string& folder, const std::string& deck, const std::string& behavior) {
  SimResult result;
  std::string ngspice = FindOnPath("ngspice");
  std::string raw = deck + ".raw";
  fs::remove(fs::path(folder) / raw);
  WriteText(folder + "/.spiceinit", behavior.empty() ? "" : "set ngbehavior=" + behavior + "\n");
  // PSpice makes every node whose name begins with $G_ global; ngspice has no such rule, not even
  // in its PSpice mode. A wrapper supplies it as .global lines and includes the deck untouched.
  std::string run = deck;
  std::vector<std::string> globals =
      behavior == "psa" ? PspiceGlobalNodes(ReadText(folder + "/" + deck)) : std::vector<std::string>{};
  if (!globals.empty()) {
    run = deck + ".pspice-globals.cir";
    std::string wrapper = "* " + deck + " with the global nodes PSpice knows by their $G_ names\n.global";
    for (const std::string& name : globals) wrapper += " " + name;
    WriteText(folder + "/" + run, wrapper + "\n.include " + deck + "\n.end\n");
  }
  // HOME points at the folder so that no user's own .spiceinit takes part.
  std::string output, errors;
  result.rc = RunProgram(ngspice, "-b -r " + raw + " " + run, folder,
                         {{"SPICE_ASCIIRAWFILE", "1"}, {"HOME", folder}}, output, errors);
  result.transcript = "ngspice -b " + deck + " in " + folder + " (ngbehavior=" + behavior + "):\n" + output +
                      errors + "\ndeck:\n" + ReadText(folder + "/" + deck);
  result.plots = ParseRawFile(ReadText(folder + "/" + raw));
  return result;
}

std::map<std::string, std::string> RootDictionary(const std::string& deck) {
  std::map<std::string, std::string> entries;
  size_t start = deck.find("* Dictionary ");
  if (start == std::string::npos) return entries;
  std::istringstream lines(deck.substr(start));
  std::string line;
  std::getline(lines, line);
  while (std::getline(lines, line) && StartsWith(line, "* ") && line.find('=') != std::string::npos) {
    size_t equals = line.rfind('=');
    entries[Trim(line.substr(2, equals - 2))] = Trim(line.substr(equals + 1));
  }
  return entries;
}

std::string NodeOfNet(const std::map<std::string, std::string>& dictionary, const std::string& net) {
  auto entry = dictionary.find(net);
  return Lower(entry == dictionary.end() ? net : entry->second);
}

const std::vector<DeckForm>& PlainDeckForms() {
  static const std::vector<DeckForm> forms = {
      {"BerkeleyFlat", "-s", ""},          {"BerkeleyHier", "-s -h", ""},
      {"BerkeleyFlatNamed", "-s -n", ""},  {"BerkeleyHierNamed", "-s -h -n", ""},
      {"PspiceFlat", "-p", "psa"},         {"PspiceHier", "-p -h", "psa"},
      {"PspiceFlatNamed", "-p -n", "psa"}, {"PspiceHierNamed", "-p -h -n", "psa"},
      {"HspiceFlat", "-m", "hsa"},         {"HspiceHier", "-m -h", "hsa"},
      {"HspiceFlatNamed", "-m -n", "hsa"}, {"HspiceHierNamed", "-m -h -n", "hsa"},
  };
  return forms;
}

const std::map<std::string, std::string>& ProjectEnvironment() {
  static const std::map<std::string, std::string> environment = {{"GALT_HOME", "galt"},
                                                                 {"SOURCE_DATE_EPOCH", "0"}};
  return environment;
}

std::string MakeDesignProject(const std::string& design, std::string& error) {
  std::string source = std::string(VESK_SOURCE_DIR) + "/";
  std::string folder = MakeScratch(design);
  std::error_code failed;
  fs::copy(source + "tests/sim/" + design, folder, fs::copy_options::recursive, failed);
  if (failed) error = "cannot copy tests/sim/" + design + ": " + failed.message();
  WriteText(folder + "/galt/standard/vesk.cfg", ReadText(source + "examples/standard/vesk.cfg"));
  std::string output, errors;
  if (error.empty() && RunProgram(BinaryDir() + "/vesk-db", "import design.json", folder,
                                  ProjectEnvironment(), output, errors) != 0)
    error = "vesk-db import failed: " + errors;
  return folder;
}
