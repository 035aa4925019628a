// A unified-style line diff of two texts, for readable failures of whole-text comparisons.
#pragma once

#include <string>

/// The lines of `want` and `got` as a unified diff: "-" lines only in `want`, "+" lines only in
/// `got`, up to three unchanged lines around each change, hunks headed by "@@ -a +b @@".
/// Line ends are shown as they are, so a missing last line end or a carriage return is visible.
std::string UnifiedDiff(const std::string& want, const std::string& got);
