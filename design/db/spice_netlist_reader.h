// Reads a Berkeley/ngspice netlist into sub-circuits, elements, model cards and the statements
// around them, following .include and .lib, without deciding yet what becomes a design.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace vdb {

/// Where a statement came from, for messages ("file:line").
struct SpiceOrigin {
  std::string file;
  int line = 0;
};

/// One element line: its name as written, its nodes, and the words behind the nodes (a group
/// in parentheses, braces or quotes is one word; "k = v" is read as "k=v").
struct SpiceElement {
  std::string name;
  std::vector<std::string> nodes;
  std::vector<std::string> words;
  /// The controlling node pairs of an E or G source in POLY(n) form, which stand behind words[0].
  std::vector<std::string> controlNodes;
  SpiceOrigin origin;
};

struct SpiceSubckt {
  std::string name;
  std::vector<std::string> ports;
  std::vector<std::string> params;  // "k=v" words of the .subckt line
  std::vector<SpiceElement> elements;
  std::vector<std::string> text;    // the statements of the definition, .subckt to .ends, as read
  bool fromLibrary = false;         // read from a .lib section
  bool hasLocalStatements = false;  // .param, .model or .func inside
  SpiceOrigin origin;
};

struct SpiceModelCard {
  std::string name;
  std::string text;  // the whole card on one line
};

struct SpiceNetlist {
  std::string title;
  std::vector<SpiceElement> topElements;
  std::vector<SpiceSubckt> subckts;  // in order of definition, nested ones included
  std::vector<SpiceModelCard> models;
  std::vector<std::string> header;   // analyses, options, top .param, .control blocks, as read
  std::vector<std::string> globals;  // node names of .global
};

/// Splits a statement into words: blanks separate, except inside (), {} and quotes; "k = v" is one word.
std::vector<std::string> SplitSpiceWords(const std::string& text);

/// Reads a file by its path; false when it does not open.
using SpiceFileLoader = std::function<bool(const std::string& path, std::string& text)>;

/// Reads `text`, the contents of `fileName`; included files are found relative to the file
/// that names them and read through `load`. False with "FILE:LINE: WHAT" in `error` on bad input.
bool ReadSpiceNetlist(const std::string& text, const std::string& fileName, const SpiceFileLoader& load,
                      SpiceNetlist& netlist, std::string& error);

}  // namespace vdb
