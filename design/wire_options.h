// The option fields of a run: what the ini file and the command line set.
//
// Copies are cheap and made freely (project, blocks); every copy shares the two lists
// `levels` and `usedNames`, which live for the whole run.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "design/dialect.h"
#include "design/numbered_names.h"
#include "design/string_set.h"

/// The level names (-l and positional arguments), newest first.
using LevelList = std::vector<std::string>;

/// Instance names already given out in the current scope (one block of a hierarchical
/// deck, or the whole of a flat deck). Indexed so that each lookup is constant time.
struct UsedNames {
  /// Adds `name`; false when it was given out already. A name of a text and a number ("R12")
  /// goes to `numbered`, any other to `names`, so each name has one place.
  bool Insert(std::string_view name) {
    return NumberedNames::Keeps(name) ? numbered.Insert(name) : names.Insert(name);
  }
  NumberedNames numbered;
  StringSet names;
  /// For each first character, the lowest suffix counter not yet known to be taken;
  /// lets UniqueName resume its search instead of starting over at 0 every time.
  std::unordered_map<char, int32_t> nextFreeSuffix;
  void Clear() {
    numbered.Clear();
    names.Clear();
    nextFreeSuffix.clear();
  }
};

struct WireOptions {
  WireOptions();

  int32_t flatten = 1;
  bool useNodeNames = false;
  bool noParamWarning = false;
  bool dereplicate = false;
  bool probeAll = false;
  bool dracula = false;
  bool attWirelist = false;
  bool dictionary = true;
  bool crossReference = false;
  bool ratings = false;
  bool ignorePrints = false;
  bool noSort = false;
  bool alien = false;
  bool verbose = false;
  bool analogDeps = false;
  int32_t maxNameChars = 256;
  int32_t wirelistKind = 1;
  uint8_t readModFiles = 1;
  std::string printWord = ".PROBE";
  std::string firstOrder;
  std::string firstPrefix;
  std::string configFile;
  std::string headerFile;
  std::string rootPath;
  std::string circuitFileName;
  std::string loadAttribute = "LOAD";
  std::string circuitExtension = "cir";
  std::string optionsString;
  std::string paramFile;
  std::string outputFolder;
  int32_t includeSources = 0;
  uint8_t hdlSpiceSources = 0;

  /// The answers of the chosen flavour, built from the fields above by DialectOf once the
  /// switches are read; the rest of the program asks it rather than wirelistKind, dracula
  /// or hdlSpiceSources.
  Dialect dialect;

  /// Node counter of NodeName; each copy counts on its own.
  int32_t nextNodeNumber = 0;
  /// Counter of the nodes NodeName invents for pins without a net; the walk carries it
  /// from block to block, and the generator starts it over at each block it writes.
  int32_t inventedNodes = 0;

  std::shared_ptr<LevelList> levels;
  std::shared_ptr<UsedNames> usedNames;

  /// Puts back the defaults of every switch field (the shared lists stay).
  void SetDefaults();
  bool HasLevel(const std::string& level) const;
};

/// wirelistKind values.
enum WirelistKind : int32_t { kPspice = 1, kKelpo = 2, kHspice = 3, kBerkeley = 4 };
