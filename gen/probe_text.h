// Probe expressions as the print statements of each dialect write them.
#pragma once

#include <string>

#include "design/wire_options.h"

/// "V(node)", "VDB(node)", ...; Pspice brackets named nodes: "V([OUT])".
std::string ProbeExpression(const WireOptions& options, const std::string& kind, const std::string& node);

/// "V([A],B)": the expression of node1 with node2 as the second node.
std::string ProbeDifferenceExpression(const WireOptions& options, const std::string& kind,
                                      const std::string& node1, const std::string& node2);
