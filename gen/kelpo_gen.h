// CKelpoSpiceGen: the generator of Kelpo decks, which may hold Verilog-A and VHDL-AMS instances.
#pragma once

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "gen/spice_gen.h"

class CKelpoSpiceGen : public CSpiceGen {
 public:
  CKelpoSpiceGen() = default;
  explicit CKelpoSpiceGen(const WireOptions& options) { CopyOptionsFrom(options); }

  /// Writes the whole deck to `deck`, then the netUidMap file.
  void Run(SpiceProject& project, std::ostream& deck);
  void WriteDefinition(SpiceBlock& block) override;
  /// The root's components by their model word, each entered in the netUidMap.
  void WriteRootComponents(SpiceBlock& root) override;

  void WriteVerilogInstance(const SpiceComp& comp);
  void WriteVerilogParameters(const SpiceComp& comp);
  void WriteVhdlInstance(const SpiceComp& comp);
  void WriteVhdlGenerics(const SpiceComp& comp);
  void WriteModelGenerics(const SpiceComp& comp);
  void WriteModelDirectives() override;

  /// Deck lines declaring the HDL models in use, unique ignoring case, in order of first use.
  std::vector<std::string> modelDirectives;

  // Helpers of the above; public for tests.
  /// Writes one component by its model word; `inRun` lets "SCH" stand for a plain component.
  void Dispatch(SpiceComp& comp, bool inRun);
  /// The netUidMap entry of one component of `blockName`.
  void MapComponentName(const SpiceComp& comp, const std::string& blockName);
  void AddModelDirective(const std::string& line);
  /// The netUidMap file "genhdl\<root>\netUidMap", one "key value" line per entry, with
  /// the walk's net dictionary.
  void WriteNetUidMap(const std::string& rootName,
                      const std::unordered_map<std::string, std::string>& netDictionary);

 private:
  void WriteExcludedNote(const SpiceComp& comp);
  std::unordered_set<std::string> directivesLower_;
};
