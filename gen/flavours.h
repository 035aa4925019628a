// The plain dialect generators: Pspice, HSPICE (and Dracula), Berkeley SPICE.
#pragma once

#include "gen/spice_gen.h"

/// Pspice decks (-p, the default).
class PspiceGen : public CSpiceGen {
 public:
  explicit PspiceGen(const WireOptions& options) { CopyOptionsFrom(options); }
  void Run(SpiceProject& project, std::ostream& deck);
  void WriteDefinition(SpiceBlock& block) override;
};

/// HSPICE decks (-m); under Dracula (-e) the root becomes a definition and the deck has
/// no closing lines of its own.
class HspiceGen : public CSpiceGen {
 public:
  explicit HspiceGen(const WireOptions& options) { CopyOptionsFrom(options); }
  void Run(SpiceProject& project, std::ostream& deck);
  void WriteDefinition(SpiceBlock& block) override;
};

/// Berkeley SPICE decks (-s).
class GSpiceGen : public CSpiceGen {
 public:
  explicit GSpiceGen(const WireOptions& options) { CopyOptionsFrom(options); }
  void Run(SpiceProject& project, std::ostream& deck);
  void WriteDefinition(SpiceBlock& block) override;
};
