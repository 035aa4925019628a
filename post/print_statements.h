// Print statements of a hierarchical deck, from the probe pass's scopes and items.
#pragma once

#include <string>

#include "design/wire_options.h"
#include "post/probe_scope.h"

/// The settings that decide the form of a print statement.
struct PrintSettings {
  std::string printWord = ".PROBE";
  PrintStyle style = PrintStyle::kPspice;
  bool analogDeps = false;
};

/// The print settings of a run's options.
PrintSettings PrintSettingsOf(const WireOptions& options);

/// Appends the statements of the probes under `scope`. With an empty `wanted` name every
/// top-level stretch of the chain is walked, oldest first, each probe path once; with a
/// name, the nearest stretch at or before `scope` that carries it. Instances are followed
/// into the definitions that stand ahead of them, and their names joined by "." form the
/// path ("X1.X2.N5"). A null scope gives nothing.
void WalkProbeScopes(const ProbeScope* scope, const std::string& prefix, const std::string& wanted,
                     const ProbePassState& state, const PrintSettings& settings, std::string& text);

/// Appends the statements for the probes of one scope, each path prefixed by `prefix`.
void ScopeStatements(const ProbeScope& scope, const std::string& prefix, const ProbePassState& state,
                     const PrintSettings& settings, std::string& text);

/// Appends the statements of the .probe/csdf items, newest first, and one more "\n".
void ItemStatements(const ProbePassState& state, const PrintSettings& settings, std::string& text);
