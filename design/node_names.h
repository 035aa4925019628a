// Node texts for nets and legal, unique instance names.
//
// Every part of the program that names a node goes through NodeName, so that a net gets
// one node text wherever it appears.
#pragma once

#include <string>
#include <unordered_map>

#include "design/tessel.h"
#include "design/wire_options.h"

/// Net name to node text. An entry with an empty value counts as absent; reading a key
/// with operator[] adds it, as the rules expect. Hashed: looked up once per pin.
using NodeTable = std::unordered_map<std::string, std::string>;

/// Key of a hierarchical instance occurrence to its pin list "pin,node;pin,node;".
using PinNodeTable = std::unordered_map<std::string, std::string>;

/// Process-wide counter of nodes invented for pins without a net; BeginBlock resets it.
extern int32_t inventedNodes;

/// The one node text of `name` in `table`: invented for an empty name, "0" for GND...,
/// else the table's entry, else a new number (options.nextNodeNumber) or legal name.
std::string NodeName(WireOptions& options, const std::string& name, NodeTable& table);

/// Whether a net of this name is ground: its label begins with "GND"; in a flat deck also
/// the last part of a flat name ("X1\\GND").
bool IsGroundName(const WireOptions& options, const std::string& name);

/// Filters `name` to the characters the chosen simulator accepts, cut to maxNameChars.
std::string LegalizeName(const WireOptions& options, const std::string& name);

/// The one node text of a global net other than ground, in every block and deck: the
/// legal name of its label as under -n, with "$G_" in front in a Pspice deck.
std::string GlobalNodeName(const WireOptions& options, const std::string& label);

/// Returns `name`, or its first character with a counter behind it when the name is
/// taken in options.usedNames; records the result.
std::string UniqueName(WireOptions& options, std::string name);
/// The same on a list of used names directly (a const options record shares its list).
std::string UniqueName(UsedNames& used, std::string name);

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
