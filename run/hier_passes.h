// Whether the two passes of a hierarchical deck may run on its text as the generator writes it.
#pragma once

#include "design/wire_options.h"

/// A hierarchical deck of a flavour whose walk keeps to itself (not Kelpo, whose walk writes
/// the parameter files the passes read), without -x, and with no "-param.txt" file under
/// "sym": the sections of those files are chosen by the internal names the generator gathers
/// over the whole deck, which the post pass can only know once the deck is complete.
bool PassesMayStream(const WireOptions& options);
