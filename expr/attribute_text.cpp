// "@" references, quoted blanks, ORDER template layout and escapes.
#include "expr/attribute_text.h"

#include <cctype>
#include <string_view>

#include "expr/text.h"

namespace {

constexpr size_t npos = std::string::npos;

// The value that replaces one word: the attribute named by a word with "@", trimmed.
std::string ReplaceWord(std::string_view word, const AttributeLookup& lookup) {
  word = TrimView(word);
  if (word.find('@') == npos) return std::string(word);
  std::string value = lookup(UpperText(std::string(word)));
  std::string_view replacement = TrimView(value);
  if (value.empty()) return std::string(word);
  return std::string(replacement);
}

void ReplaceAll(std::string& text, std::string_view from, std::string_view to) {
  if (from.empty() || from == to) return;
  std::string result;
  size_t start = 0;
  for (size_t at = text.find(from); at != npos; at = text.find(from, start)) {
    result.append(text, start, at - start);
    result.append(to);
    start = at + from.size();
  }
  if (start == 0) return;
  result.append(text, start, npos);
  text.swap(result);
}

std::string WithoutBlanks(std::string_view text) {
  std::string packed;
  packed.reserve(text.size());
  for (char c : text) {
    if (c != ' ') packed += c;
  }
  return packed;
}

// For each value between `opener` (found at a position above 0) and `closer`, takes
// the blanks out of every occurrence of that value in the line.
void CollapseBetween(std::string& line, std::string_view opener, char closer) {
  const std::string original = line;
  std::string_view rest(original);
  while (!rest.empty()) {
    size_t open = rest.find(opener);
    if (open == npos || open == 0) return;
    rest.remove_prefix(open + opener.size());
    size_t close = rest.find(closer);
    if (close == npos) return;
    std::string_view value = rest.substr(0, close);
    if (value.find(' ') != npos) ReplaceAll(line, value, WithoutBlanks(value));
    rest.remove_prefix(close + 1);
  }
}

// Position of "L$" at the start (0), else of " L$"; npos when neither.
size_t FindLeading(const std::string& text, std::string_view bare) {
  if (text.compare(0, bare.size(), bare) == 0) return 0;
  return text.find(std::string(" ").append(bare));
}

void InsertAt(std::string& text, size_t position, std::string_view what) {
  text.insert(position < text.size() ? position : text.size(), what);
}

// Puts " L$" right behind MODEL$ (or "L$ " in front) when L$ stands elsewhere.
void MoveLength(std::string& order) {
  size_t model = order.find("MODEL$");
  size_t length = FindLeading(order, "L$");
  if (length == npos || length == 0) return;
  ReplaceAll(order, " L$", "");
  if (model != npos)
    InsertAt(order, model + 6, " L$");
  else
    order.insert(0, "L$ ");
}

// Puts " W$" right behind L$, or behind MODEL$, or "W$ " in front.
void MoveWidth(std::string& order) {
  size_t model = order.find("MODEL$");
  size_t length = FindLeading(order, "L$");
  size_t width = FindLeading(order, "W$");
  if (width == npos) return;
  ReplaceAll(order, width == 0 ? "W$" : " W$", "");
  if (length == 0)
    InsertAt(order, 2, " W$");
  else if (length != npos)
    InsertAt(order, length + 3, " W$");
  else if (model != npos)
    InsertAt(order, model + 6, " W$");
  else
    order.insert(0, "W$ ");
}

}  // namespace

std::string ExpandAttributeReferences(const std::string& text, const AttributeLookup& lookup) {
  std::string result;
  std::string_view rest(text);
  while (true) {
    rest = TrimView(rest);
    if (rest.empty() || rest.find('@') == npos) break;
    size_t split = rest.find_first_of("()+-*/ ");
    if (split == npos) {
      result += ReplaceWord(rest, lookup);
      return result;
    }
    result += ReplaceWord(rest.substr(0, split), lookup);
    result += rest[split];
    rest.remove_prefix(split + 1);
  }
  result.append(rest);
  return result;
}

std::string CollapseQuotedBlanks(std::string line) {
  if (!line.empty() && line[0] == '*') return line;
  CollapseBetween(line, "='", '\'');
  CollapseBetween(line, "={", '}');
  return line;
}

std::string NormalizeOrderTemplate(std::string order) {
  order = UpperText(std::move(order));
  MoveLength(order);
  MoveWidth(order);
  return std::string(TrimView(order));
}

char EscapeCharacter(char ch) {
  switch (ch) {
    case 'b':
    case 'B':
      return '\b';
    case 'n':
    case 'N':
      return '\n';
    case 'r':
    case 'R':
      return '\r';
    case 't':
    case 'T':
      return '\t';
    default:
      return ch;
  }
}
