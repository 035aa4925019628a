// Dialect: every answer that changes with the deck's flavour, worked out once from the
// switches (DialectOf in gen/) and read wherever a flavour makes a difference.
//
// The defaults are those of the default flavour, Pspice.
#pragma once

/// The generator that writes the deck.
enum class DeckFlavour { kPspice, kHspice, kBerkeley, kKelpo };

/// What sets the frames of the dialects apart: the order of a deck's parts.
struct DeckFrame {
  /// Where the .global lines go.
  enum Globals { kNoGlobals, kGlobalsBeforeIncludes, kGlobalsAtEnd };
  /// The genhdl source and boundary includes behind the header (Kelpo).
  bool hdlIncludes = false;
  /// The root written as one more definition instead of as the deck's own lines.
  bool rootAsDefinition = false;
  /// The definitions behind the root's lines, parents first, instead of ahead of them.
  bool definitionsBehindRoot = false;
  /// The statements of generator components behind the root's lines.
  bool generatorStatements = false;
  Globals globals = kNoGlobals;
  bool optionsLine = false;
  bool endMark = true;
};

/// The characters a legal name keeps (LegalizeName).
enum class NameRule {
  kPspice,   // letters and digits, "_" behind the first; "$G_"/"$D_" kept
  kDracula,  // also blank and "-"; "N" ahead of a first non-letter with node names
  kAnalog,   // "+"/"-" become "P"/"N", otherwise as kWide
  kWide,     // also "*+-/:;#.[]!_% "; "N" ahead of a first non-letter with node names
  kAlnum,    // letters and digits only
};

/// The form of print statements.
enum class PrintStyle {
  kPspice,    // .PROBE or .PRINT with brackets around named nodes, decibel and phase on AC
  kAnalysis,  // the print word and the analysis, decibel and phase on AC (Kelpo, HSPICE)
  kBerkeley,  // ".PRINT <analysis>", decibel and phase on AC
};

/// The quote strings the post pass sets for values.
enum class QuoteSet { kFromConfig, kTicks, kPspice };

struct Dialect {
  DeckFlavour flavour = DeckFlavour::kPspice;
  DeckFrame frame;

  // ---- names ----
  NameRule nameRule = NameRule::kPspice;
  /// The nodes of named nets are set while the block loads (node names on, not Berkeley).
  bool namesNetsAtLoad = false;
  /// "$G_" ahead of the node of a global net other than ground (Pspice).
  bool globalNetMark = true;
  /// HDL models are mapped while the design loads, and their instances are "Y" lines (Kelpo).
  bool hdlModels = false;
  /// The deck goes to "genhdl\<root>\" unless an output folder is given (Kelpo).
  bool genhdlFolder = false;
  /// The walk keeps each net's internal name by its node text, for the netUidMap file (Kelpo).
  bool netUidMap = false;

  // ---- component lines ----
  /// An instance line expands its ORDER template behind the called block.
  bool instanceParameters = true;
  /// An expression left to the simulator stands in braces.
  bool bracedExpressions = true;

  // ---- print statements ----
  PrintStyle printStyle = PrintStyle::kPspice;
  /// Named nodes of probe expressions stand in brackets: "V([OUT])".
  bool bracketedProbeNodes = true;
  /// Flat decks write ".PROBE/CSDF" ahead of the statements of each analysis.
  bool csdfProbeLine = true;

  // ---- post pass ----
  QuoteSet quoteSet = QuoteSet::kPspice;
  /// Values of element words get quotes (not Berkeley).
  bool quotedValues = true;
  /// The Pspice quote strings are put back ahead of every value quoted.
  bool pspiceQuotesAlways = true;
  /// A value with one brace gets the other instead of quotes (Kelpo).
  bool completedBraces = false;
  /// "PARAMS:" goes ahead of the first parameter of an X, .MACRO or .SUBCKT line.
  bool paramsKeyword = true;
  /// "PARAMS:" and "OPTIONAL:" words are dropped.
  bool dropsParamsKeyword = false;

  // ---- the two special modes ----
  /// Dracula III (-e): no print statements, device words of its own, NOT4ECAD lines go.
  bool dracula = false;
  /// Kelpo HDL-source decks (-__): no generator statements or prints, no quoting, folded lines.
  bool hdlSources = false;
};
