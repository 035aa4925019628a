// The deck's naming rules as the walk applies them while it loads the design.
#pragma once

#include "design/deck_naming.h"

/// The naming rules of every dialect (they differ through options.dialect).
const DeckNaming& SpiceDeckNaming();

/// The deck name of `comp` before it is made legal and unique: prefix (-y, PREFIX, "X" for an
/// instance, "Y" for an HDL model), designator or label, flat path; false when it gets none.
bool RawDeckName(const SpiceComp& comp, const WireOptions& options, std::string& text);
