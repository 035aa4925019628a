// The settings and run state that the post-process pass reads and changes.
//
// It refers to the fields of the generator rather than copying them: the pass sets the
// strip flags and the quote strings, and the instance rewrite empties currentInstance.
// Built from a generator as PostSettings{gen, gen, gen.internalNames, gen.currentInstance}.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>

#include "design/wire_options.h"
#include "expr/value_class.h"
#include "post/instance_parameters.h"
#include "post/spice_config.h"

struct PostSettings {
  const WireOptions& options;
  SpiceConfig& config;
  /// Lower-case instance name -> internal name, for the -param.txt sections.
  const std::unordered_map<std::string, std::string>& internalNames;
  /// First word of the X, .MACRO or .SUBCKT statement in work.
  std::string& currentInstance;
  /// The parameter files of the models that instance lines name, read once a pass.
  ParameterFileCache parameterFiles{};
  /// Whether the folder sym holds any parameter file at all; asked once a pass, at the first
  /// instance line (see InstanceMayTakeParameters).
  std::optional<bool> symHoldsParameterFiles{};

  UnitRules Units() const { return UnitRules{&config.uParNames, &config.pParNames, config.stripUnits}; }
};
