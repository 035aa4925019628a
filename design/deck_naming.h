// DeckNaming: the deck's rules for names, which the walk applies while it loads a block.
//
// The design knows nets, pins and components; what they are called in a deck (node texts,
// legal names, "$G_" marks, X and Y instance prefixes) is the generator's business, handed
// to the walk through this interface (gen/deck_naming.h).
#pragma once

#include <string>

#include "design/node_names.h"
#include "design/wire_options.h"

class SpiceComp;

class DeckNaming {
 public:
  virtual ~DeckNaming() = default;
  /// The node text of net `name` in `table`, entered there; invented for an empty name.
  virtual std::string NodeName(WireOptions& options, const std::string& name, NodeTable& table) const = 0;
  /// `name` cut down to what the deck's simulator accepts.
  virtual std::string LegalName(const WireOptions& options, const std::string& name) const = 0;
  /// The one node text of a global net other than ground, in every block.
  virtual std::string GlobalNodeName(const WireOptions& options, const std::string& label) const = 0;
  /// The component's instance name in the deck, unique among those given out; "" for none.
  virtual std::string DeckName(const SpiceComp& comp, const WireOptions& options) const = 0;
};
