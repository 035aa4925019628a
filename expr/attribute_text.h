// Text services of attribute values and ORDER templates: "@" references, blanks in
// quoted values, the place of L$ and W$, escapes.
#pragma once

#include <functional>
#include <string>

/// Gives the value of the attribute under an upper-case key, or "".
using AttributeLookup = std::function<std::string(const std::string& upperKey)>;

/// Replaces each "@NAME" word of `text` by the value of the attribute "@NAME"; words
/// are split at "(", ")", "+", "-", "*", "/" and blanks, which stay. An unknown
/// reference stays as written; once the rest of the text holds no "@" it is kept whole.
std::string ExpandAttributeReferences(const std::string& text, const AttributeLookup& lookup);

/// Removes the blanks inside '...' and {...} values behind "=" (a comment line stays).
std::string CollapseQuotedBlanks(std::string line);

/// Upper-cases an ORDER template and moves L$ and W$ right behind MODEL$.
std::string NormalizeOrderTemplate(std::string order);

/// The character a backslash escape stands for in an ORDER template: b n r t (either
/// case) give backspace, newline, carriage return and tab; others stand for themselves.
char EscapeCharacter(char ch);
