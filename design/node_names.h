// The node tables of a block and the names of nets in a flat design.
#pragma once

#include <string>
#include <unordered_map>

#include "design/node_table.h"
#include "design/tessel.h"
#include "design/wire_options.h"

// NodeTable (design/node_table.h): net name to node text. An entry with an empty value
// counts as absent; reading a key with operator[] adds it, as the rules expect.

/// Key of a hierarchical instance occurrence to its pin list "pin,node;pin,node;".
using PinNodeTable = std::unordered_map<std::string, std::string>;

/// Whether a net of this name is ground: its label begins with "GND"; in a flat deck also
/// the last part of a flat name ("X1\\GND").
bool IsGroundName(const WireOptions& options, const std::string& name);

/// The pin-node table key of a hierarchical instance occurrence: its Index numbers and
/// the hierarchical name of its own path.
std::string PinNodeKey(const Tessel::IComp& instance);

/// Names the node of a pin in a flat deck, seen from the instance that holds `comp`.
std::string FlatNetName(const Tessel::IComp& comp, const Tessel::IteratorT<const Tessel::INet>& net,
                        const Tessel::IteratorT<const Tessel::IBus>& bus, const PinNodeTable& table);

/// What FlatNetName needs to know of a component, read once for all of its pins: the
/// hierarchical name of its path and the pin-node key of the instance that path stands for.
struct FlatScope {
  std::string hier;
  std::string parentKey;
  bool hasParent = false;
};
FlatScope FlatScopeOf(const Tessel::IComp& comp);
/// FlatNetName with the component's scope already read.
std::string FlatNetNameIn(const FlatScope& scope, const Tessel::IteratorT<const Tessel::INet>& net,
                          const Tessel::IteratorT<const Tessel::IBus>& bus, const PinNodeTable& table);
/// The same with the pin's label (its bus's, else its net's) already read.
std::string FlatNetNameOf(const FlatScope& scope, const std::string& label,
                          const Tessel::IteratorT<const Tessel::INet>& net, const PinNodeTable& table);
