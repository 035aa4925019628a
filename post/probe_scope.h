// The chain of probe scopes that the probe pass builds from a hierarchical deck.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "post/newest_first_list.h"

/// One stretch of the deck that lies in one subcircuit.
struct ProbeScope {
  std::string name;
  ProbeScope* prev = nullptr;
  ProbeScope* next = nullptr;
  std::map<std::string, std::string> probes;     // node or element -> "v" or "c"
  std::map<std::string, std::string> instances;  // instance -> called subcircuit
};

/// What the probe pass learns and keeps for the print statements.
struct ProbePassState {
  // Owns every record, in blocks that never move. Each top-level instance line opens a
  // record, so a deck of many placements makes as many: a block holds a few hundred.
  static constexpr size_t kScopesPerBlock = 256;
  std::vector<std::unique_ptr<ProbeScope[]>> scopeBlocks;
  size_t scopesInLastBlock = kScopesPerBlock;
  ProbeScope* probeScopeTail = nullptr;
  // Instances only ever lead to probes, so until the first probe they are held here, in
  // order, and entered into the chain when it comes: a deck without probes (most decks, and
  // one line per placement) builds no chain and has no statements to walk for.
  // Each is held as its subcircuit and its (joined) line, each ended by "\n", which neither
  // holds: one growing text instead of three texts for each.
  std::string heldInstances;
  bool probeSeen = false;
  NewestFirstList modelNames, subcktNames, duplicateModels, duplicateSubckts, probeItems;
  bool hasAcAnalysis = false;
  bool hasDcAnalysis = false;
  bool hasTranAnalysis = false;

  ProbeScope* NewProbeScope() {
    if (scopesInLastBlock == kScopesPerBlock) {
      scopeBlocks.push_back(std::make_unique<ProbeScope[]>(kScopesPerBlock));
      scopesInLastBlock = 0;
    }
    return &scopeBlocks.back()[scopesInLastBlock++];
  }
};
