// BlockWalk: what the generator keeps while it writes one block (and the component in hand).
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "design/node_names.h"
#include "design/spice_comp.h"
#include "post/newest_first_list.h"

struct BlockWalk {
  /// Net name to node text; taken over from the block when it begins.
  NodeTable nodes;
  /// By node table entry: the dictionary round in which its line was offered (see
  /// CSpiceGen::OfferNetLine); empty while the lines are looked up by their text alone.
  std::vector<uint32_t> linesOffered;
  bool linesByEntry = false;
  /// The block's flat print expressions, ordered.
  std::map<std::string, bool> flatProbes;
  /// The block's generator components by their GENERATOR key.
  std::map<std::string, SpiceComp> generatorComps;
  /// The analyses (.AC, .DC, .TRAN) of the block's generators, newest first.
  NewestFirstList analysisKeywords;

  // Of the component being written:
  std::string lineBody;            // the body its ORDER template expands to
  bool modelRegistered = false;    // its model is entered for the model includes
  bool voltageProbeHere = false;   // it is a voltage probe: only a marker line is written
  bool generatorHere = false;      // it is a generator: its statement comes behind the block
  bool calledNameWritten = false;  // its X line already names its sub-circuit
};
