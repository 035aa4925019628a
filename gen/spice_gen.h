// CSpiceGen: the generator base class; it owns the options and the configuration of its run.
//
// The operations are spread over files by family (see the comments on each group);
// every deck line goes through `out`.
#pragma once

#include <cstdint>
#include <array>
#include <map>
#include <memory>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "design/node_names.h"
#include "design/spice_block.h"
#include "design/spice_comp.h"
#include "design/spice_project.h"
#include "design/wire_options.h"
#include "gen/block_walk.h"
#include "gen/deck_stream.h"
#include "gen/node_text.h"
#include "post/newest_first_list.h"
#include "post/probe_scope.h"
#include "post/spice_config.h"

class SpiceReader;
class ComponentPipe;

/// Thrown while a flat deck is written during its walk, when a global net's name reaches the
/// node table after a line already took that name for another node: a deck written after
/// the whole walk would differ, so the run starts over that way.
struct GlobalNameCameLate {};

/// Exit statuses of the program. A run that writes its deck ends with 0 whatever the design's
/// warnings; a run that cannot write one says why, so that a script can tell the cases apart.
enum ExitStatus {
  kExitDeckWritten = 0,
  kExitBadConfiguration = 1,
  kExitNoGroupGiven = 2,
  kExitNoDatabase = 3,
  kExitNoGroup = 4,
  /// A file of the run could not be written (reported); the file that was there stays.
  kExitWriteFailed = 5,
};
struct SpiceSubckt;

class CSpiceGen {
 public:
  CSpiceGen() = default;
  /// A flavour is built from the options of the command line: it copies the option fields
  /// (but rootPath) into a freshly constructed generator.
  void CopyOptionsFrom(const WireOptions& from);
  virtual ~CSpiceGen() = default;

  virtual void Reserved() {}
  virtual void WriteDefinition(SpiceBlock& block);

  // ---- run/options.cpp: the command line and ini file ----
  static int CheckHelp(int argc, const char* const* argv);
  static void PrintUsage();
  void ParseArguments(const char** group, int argc, const char* const* argv);
  int ParseSwitches(const std::string& token);
  void AddLevel(std::string name);
  static int FindOnSearchPath(const std::string& name, std::string& path);

  // ---- run/config_file.cpp ----
  int ReadConfigFile();

  // ---- run/load_project.cpp ----
  /// True when the design was loaded; otherwise `loadFailure` says why, as an exit status.
  bool LoadProject(std::string group, SpiceProject& project, WireOptions options);
  /// The first half of LoadProject: opens the database and loads the root block into `block`
  /// (its nodes only with `scanRootNodes`; see SpiceProject::FindRoot).
  bool OpenDesign(const std::string& group, SpiceProject& project, const WireOptions& options,
                  Tessel::ContainerT<const Tessel::IBlock>& block, bool scanRootNodes = true,
                  bool collectRootComponents = true);
  /// The second half: walks the design below `block`; a flat walk hands its components to
  /// `sink` when there is one.
  bool WalkDesign(const std::string& group, SpiceProject& project,
                  Tessel::ContainerT<const Tessel::IBlock>& block, ComponentSink* sink);

  // ---- gen/spice_gen.cpp: frame of a run ----
  void SetDatabaseName(std::string) { databaseName = "database"; }
  /// The whole deck, written to `deck`, in the order `frame` gives: header, definitions,
  /// root, closing lines.
  void RunFrame(SpiceProject& project, const DeckFrame& frame, std::ostream& deck);
  /// Gives back what only the writing of the deck needed (the node table, the dictionary), for
  /// a run whose passes still work on the text: they need none of it.
  void ReleaseWrittenState() {
    walk = BlockWalk();
    dictionaryLines.Clear();
  }
  /// The root's component loop; a flavour that writes some components its own way overrides it.
  virtual void WriteRootComponents(SpiceBlock& root) { WriteComponents(root); }
  /// Lines a flavour adds behind the model includes.
  virtual void WriteModelDirectives() {}
  /// The deck's path: in the -% folder, in Kelpo's "genhdl\<root>\", or in the working folder.
  std::string CircuitPathOf(SpiceProject& project) const;
  /// Sets `circuitPath`, which the passes read, and sends `out` to `deck`.
  void OpenWirelist(SpiceProject& project, std::ostream& deck);
  void BeginBlock(SpiceBlock& block);
  /// The component loop of a block, a line for every component.
  void WriteComponents(SpiceBlock& block);
  /// One component's line, or the note that it has no name.
  void WriteComponent(SpiceComp& comp);
  /// The root's component loop over the components that `streamedComponents` hands over
  /// while the walk goes on; throws GlobalNameCameLate (see there).
  void WriteStreamedComponents(SpiceBlock& root);
  /// Set for a run whose walk goes on while the deck is written (run/streamed_run.h,
  /// run/streamed_hier_run.h): the components of `streamedBlock` come from the pipe.
  ComponentPipe* streamedComponents = nullptr;
  const SpiceBlock* streamedBlock = nullptr;
  /// The standard WriteDefinition body; `endText` is the flavour's end of definition.
  void WriteDefinitionBody(SpiceBlock& block, const char* endText);
  void AddNote(std::string line) { notes.push_back(std::move(line)); }
  void FlushNotes();

  // ---- gen/component_line.cpp ----
  /// Takes the component by reference: nothing here changes it, and a copy per line costs.
  void EmitComponent(SpiceComp& comp);
  void NoteInternalName(const SpiceComp& comp);
  void CheckSpecialComponent(SpiceComp& comp);
  void ExpandOrder(SpiceComp& comp);
  void DefaultFromBare(std::string& body, SpiceComp& comp);
  void DefaultByPrefix(std::string& body, SpiceComp& comp);

  // ---- gen/attribute_value.cpp ----
  std::string EvaluateAttributeValue(const SpiceComp& comp, const std::string& paramName, std::string value);
  /// Forgets the values worked out so far; the unit rules of the configuration changed.
  void ForgetValues() { valueMemo_ = {}; }

  // ---- gen/node_writer.cpp: nodes through this generator's table ----
  std::string NodeName(const std::string& name, NodeTable& table) { return ::NodeName(options, name, table); }
  std::string NodeName(const std::string& name) { return ::NodeName(options, name, walk.nodes); }
  std::string NodeName(const std::string& name, size_t& position) {
    return ::NodeName(options, name, walk.nodes, position);
  }

  // ---- gen/pins.cpp ----
  void WritePins(const SpiceComp& comp, bool group);
  std::string MapNodeList(std::string nets);
  /// One pin's node (or node list) behind a blank, by the bracket rule; `entry` is the
  /// PinNets entry for the first/last bus-bit test, or nullptr.
  void WritePinNode(const std::string& net, bool group, const SpiceNet* entry);

  // ---- gen/dictionary.cpp ----
  void AddDictionaryLine(std::string_view line);
  /// Offers the line "* net = node" of the single net `net`, whose entry is at `position` in
  /// the node table: the line of an entry already offered since the dictionary was last
  /// written is not looked up again.
  void OfferNetLine(const std::string& net, const std::string& node, size_t position);
  void WriteDictionary(int flag);
  void OpenCrossReference(std::string group);

  // ---- gen/header.cpp ----
  void WriteHeader(const SpiceBlock& root);
  void WriteGlobals(const std::map<std::string, std::string>& globalNets);
  void WriteModelIncludes();
  void WriteHdlIncludes(std::string name);
  void RegisterModel(std::string model, const SpiceComp& comp);
  /// Adds the files of the sub-circuits that `subckt` calls, at any depth, to `files`;
  /// a file already there is not followed again, which also ends call cycles.
  void CollectModelFiles(const SpiceReader& reader, const SpiceSubckt* subckt, const std::string& directory,
                         std::set<std::string>& files);
  /// The include line (or .model card) of one model file, or the warning that it is missing.
  void WriteModelInclude(const std::string& path);
  /// The folder of the deck, relative to the working folder ("" for the working folder).
  std::string DeckFolder() const;
  /// How the deck names a file the simulator opens, given relative to the project folder:
  /// under PATHS WINDOWS the classic text `classicPrefix` + `projectPath`, otherwise the path
  /// from the deck's own folder with "/".
  std::string SimulatorPath(const std::string& projectPath, const std::string& classicPrefix) const;

  // ---- gen/probes.cpp: probe collection and the generator's statements ----
  int CollectProbe(SpiceComp& comp);
  void CollectCurrentProbe(SpiceComp& comp, const std::string& value);
  void CollectGenerator(SpiceComp& comp);
  void AddFlatProbe(const std::string& expression);
  void WriteGeneratorStatements();
  void NoteAnalysis(const std::string& key);
  void WriteFlatProbes();
  void AddAllNodeProbes(const NodeTable& table);
  void WriteInitialConditions(SpiceBlock& block);

  // ---- gen/passes.cpp: the two passes over the written deck ----
  void ProbeProcess();
  void PostProcess();

  /// The switches and ini file (run/options.cpp), and the dialect built from them.
  WireOptions options;
  /// The configuration file's dialect rules (run/config_file.cpp).
  SpiceConfig config;

  /// The block being written and its component in hand; BeginBlock starts it over.
  BlockWalk walk;

  // ---- run state ----
  std::string dictionaryLine_;  // reused by WritePinNode for each dictionary line
  DeckStream out;
  std::vector<std::string> notes;
  NewestFirstList dictionaryLines;
  /// Counts the writes of the dictionary; an entry of walk.linesOffered equal to it was
  /// offered since the last one.
  uint32_t dictionaryRound = 1;
  ProbePassState probePass;
  std::vector<std::string> usedModels;
  std::unordered_set<std::string> usedModelsLower;  // index of usedModels, lower case
  /// Lower-case instance name -> internal name, for the -param.txt sections of the post pass.
  /// A run whose passes cannot meet such a file sets keepsInternalNames false and spares a
  /// map entry for each instance.
  std::unordered_map<std::string, std::string> internalNames;
  bool keepsInternalNames = true;
  std::string currentInstance;
  std::string circuitPath;
  std::string databaseName;
  DeckFile xrefOut;
  std::map<std::string, std::string> modelFiles;
  std::map<std::string, std::string> netUidMap;
  int32_t uniqueCounter = 0;
  int loadFailure = kExitDeckWritten;  // set by LoadProject
  bool groundSeen = false;

 private:
  // The plain values met last, with the texts they gave (EvaluateAttributeValue).
  struct ValueMemo {
    std::string name, value, result;
    bool stripUnits = false;
    bool filled = false;
  };
  std::array<ValueMemo, 8> valueMemo_{};
  size_t valueMemoNext_ = 0;
};

/// Makes the two folder levels in front of the deck at `circuitPath`, outer one first;
/// returns those it made.
std::vector<std::string> MakeDeckFolders(const std::string& circuitPath);
