// StreamedPassSettings: what the two passes read when they run on a deck's text as it is written.
#pragma once

#include <string>
#include <unordered_map>

#include "gen/spice_gen.h"
#include "post/post_process.h"
#include "post/print_statements.h"

/// The passes' own copy of the configuration (they set the strip flags, which the generator
/// must not see while it writes), no internal names (only "-param.txt" sections ask for them:
/// such runs keep the classic passes, and the components of a flat walk have none), and the
/// probe pass's settings. Built before the generator runs; lives until the passes end.
struct StreamedPassSettings {
  explicit StreamedPassSettings(CSpiceGen& gen);
  StreamedPassSettings(const StreamedPassSettings&) = delete;
  StreamedPassSettings& operator=(const StreamedPassSettings&) = delete;

  SpiceConfig config;
  std::string currentInstance;
  const std::unordered_map<std::string, std::string> noInternalNames;
  PostSettings post;
  const PrintSettings print;
  /// A hierarchical deck's probe pass runs unless -i or Dracula.
  const bool probe;
};
