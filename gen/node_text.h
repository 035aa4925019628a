// Node texts for nets, and legal, unique instance names, by the rules of the deck's dialect.
//
// Every part of the program that names a node goes through NodeName, so that a net gets
// one node text wherever it appears.
#pragma once

#include <cstdint>
#include <string>

#include "design/node_names.h"
#include "design/wire_options.h"

/// The one node text of `name` in `table`: invented for an empty name, "0" for GND...,
/// else the table's entry, else a new number (options.nextNodeNumber) or legal name.
std::string NodeName(WireOptions& options, const std::string& name, NodeTable& table);
/// The same, and the position of the net's entry in the table (SIZE_MAX for an invented node).
std::string NodeName(WireOptions& options, const std::string& name, NodeTable& table, size_t& position);

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
