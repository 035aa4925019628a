// A reader of SPICE model text: which sub-circuits a file defines and which ones each calls.
#pragma once

#include <deque>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

/// One .SUBCKT definition: its name and the sub-circuits its X lines call, in order of
/// first call, each once.
struct SpiceSubckt {
  std::string name;
  std::vector<std::string> calledNames;
  std::unordered_set<std::string> calledIndex;  // the same names, for the duplicate test
};

class SpiceReader {
 public:
  /// Reads and parses the file at `path` (a program path, "\" allowed). `flags` is unused.
  /// Returns false, holding no sub-circuits, when the file does not open or is not text.
  bool MorvaFile(const std::string& path, int flags);
  /// Parses SPICE text: "*" comment lines, "+" continuations, nested definitions.
  bool ParseText(const std::string& text);
  /// The definition of that name, ignoring case, or nullptr.
  const SpiceSubckt* FindSubcktByName(const std::string& name) const;
  size_t SubcktCount() const { return subckts_.size(); }

 private:
  void Clear();
  void HandleLine(const std::string& line, std::vector<SpiceSubckt*>& open);
  std::deque<SpiceSubckt> subckts_;                  // addresses stay stable
  std::unordered_map<std::string, size_t> byLower_;  // lower-case name -> first definition
};

/// The sub-circuit an X line calls: its last word ahead of "PARAMS:" or of a parameter
/// ("W=1", or "W = 1"); empty when there is none.
std::string CalledSubcktName(const std::vector<std::string>& words);
