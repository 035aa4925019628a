// DialectOf: the one place that turns the flavour switches into a Dialect.
#pragma once

#include "design/dialect.h"
#include "design/wire_options.h"

/// The answers of the flavour that `switches` choose (-p, -m, -e, -s, -_, -__, with -9,
/// -n and -w where they change an answer).
Dialect DialectOf(const WireOptions& switches);
