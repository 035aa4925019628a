// The chain of probe scopes that the probe pass builds from a hierarchical deck.
#pragma once

#include <deque>
#include <map>
#include <string>

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
  std::deque<ProbeScope> scopes;  // owns every record; addresses stay stable
  ProbeScope* probeScopeTail = nullptr;
  NewestFirstList modelNames, subcktNames, duplicateModels, duplicateSubckts, probeItems;
  bool hasAcAnalysis = false;
  bool hasDcAnalysis = false;
  bool hasTranAnalysis = false;

  ProbeScope* NewProbeScope() {
    scopes.emplace_back();
    return &scopes.back();
  }
};
