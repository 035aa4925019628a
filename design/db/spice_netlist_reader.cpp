// Reads a Berkeley/ngspice netlist into sub-circuits, elements, model cards and the statements
// around them, following .include and .lib, without deciding yet what becomes a design.
#include "design/db/spice_netlist_reader.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <unordered_set>

namespace vdb {

namespace {

constexpr int kMaxIncludeDepth = 32;

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v'; }

std::string Trim(const std::string& text) {
  size_t begin = 0, end = text.size();
  while (begin < end && IsBlank(text[begin])) ++begin;
  while (end > begin && IsBlank(text[end - 1])) --end;
  return text.substr(begin, end - begin);
}

// The text in front of an inline comment: ";" anywhere, "$" at the start or behind a blank.
std::string StripInlineComment(const std::string& line) {
  char quote = 0;
  for (size_t i = 0; i < line.size(); ++i) {
    char c = line[i];
    if (quote) {
      if (c == quote) quote = 0;
      continue;
    }
    if (c == '\'' || c == '"') quote = c;
    if (c == ';') return line.substr(0, i);
    if (c == '$' && (i == 0 || IsBlank(line[i - 1])) && (i + 1 == line.size() || IsBlank(line[i + 1])))
      return line.substr(0, i);
  }
  return line;
}

/// The first word of a statement in lower case (".subckt", "r1").
std::string Keyword(const std::string& text) {
  size_t end = 0;
  while (end < text.size() && !IsBlank(text[end])) ++end;
  return Lower(text.substr(0, end));
}

std::string Folder(const std::string& file) {
  size_t slash = file.find_last_of('/');
  return slash == std::string::npos ? "" : file.substr(0, slash + 1);
}

std::string Unquote(const std::string& word) {
  if (word.size() >= 2 && (word[0] == '"' || word[0] == '\'') && word.back() == word[0])
    return word.substr(1, word.size() - 2);
  return word;
}

struct Statement {
  std::string text;
  SpiceOrigin origin;
  bool library = false;
  bool control = false;  // a line of a .control block, kept as it stands
};

}  // namespace

/// Splits a statement into words: blanks separate, except inside (), {} and quotes; "=" with
/// blanks around it joins its neighbours.
std::vector<std::string> SplitSpiceWords(const std::string& text) {
  std::vector<std::string> raw;
  std::string word;
  int depth = 0;
  char quote = 0;
  for (char c : text) {
    if (quote) {
      word += c;
      if (c == quote) quote = 0;
      continue;
    }
    if (c == '\'' || c == '"') {
      quote = c;
    } else if (c == '(' || c == '{') {
      ++depth;
    } else if ((c == ')' || c == '}') && depth > 0) {
      --depth;
    } else if (IsBlank(c) && depth == 0) {
      if (!word.empty()) raw.push_back(word);
      word.clear();
      continue;
    }
    word += c;
  }
  if (!word.empty()) raw.push_back(word);
  std::vector<std::string> words;
  for (size_t i = 0; i < raw.size(); ++i) {
    bool joinPrevious = !words.empty() && (raw[i][0] == '=' || words.back().back() == '=');
    if (joinPrevious) {
      words.back() += raw[i];
    } else {
      words.push_back(raw[i]);
    }
  }
  return words;
}

namespace {

/// Gathers the statements of a file and of the files it includes, in reading order.
class StatementCollector {
 public:
  StatementCollector(const SpiceFileLoader& load, std::string& error) : load_(load), error_(error) {}

  std::vector<Statement> statements;
  std::string title;

  /// `section`: read only that .lib section of the file; "" reads the whole file.
  bool Collect(const std::string& text, const std::string& file, bool isMain, const std::string& section,
               bool library, int depth) {
    std::vector<Statement> lines = LogicalLines(text, file, isMain);
    std::string active = Lower(section);
    bool inSection = active.empty(), skipping = false;
    for (Statement& line : lines) {
      line.library = library;
      if (line.control) {
        if (inSection && !skipping) statements.push_back(line);
        continue;
      }
      if (line.text[0] != '.') {
        if (inSection && !skipping) statements.push_back(std::move(line));
        continue;
      }
      std::string key = Keyword(line.text);
      std::vector<std::string> words = SplitSpiceWords(line.text);
      if ((key == ".lib" || key == ".library") && words.size() == 2) {
        // A section's own head: the wanted one is read, the others are passed over.
        if (!active.empty() && Lower(words[1]) == active) {
          inSection = true;
        } else {
          skipping = true;
        }
        continue;
      }
      if (key == ".endl") {
        if (skipping) {
          skipping = false;
        } else if (!active.empty() && inSection) {
          return true;
        }
        continue;
      }
      if (!inSection || skipping) continue;
      if (key == ".end") return true;
      if (key == ".include" || key == ".inc" || key == ".lib" || key == ".library") {
        if (!Include(line, words, key, depth)) return false;
        continue;
      }
      statements.push_back(line);
    }
    if (!active.empty() && !inSection) return Fail(SpiceOrigin{file, 0}, "no .lib section " + section);
    return true;
  }

 private:
  bool Fail(const SpiceOrigin& at, const std::string& what) {
    error_ = at.file + ":" + std::to_string(at.line) + ": " + what;
    return false;
  }

  bool Include(const Statement& line, const std::vector<std::string>& words, const std::string& key,
               int depth) {
    bool isLib = key == ".lib" || key == ".library";
    if (words.size() != (isLib ? 3u : 2u))
      return Fail(line.origin, isLib ? ".lib needs a file and a section" : key + " needs one file");
    if (depth >= kMaxIncludeDepth) return Fail(line.origin, "files include each other too deeply");
    std::string path = Unquote(words[1]);
    if (!path.empty() && path[0] != '/') path = Folder(line.origin.file) + path;
    std::string text;
    if (!load_(path, text)) return Fail(line.origin, "cannot read " + path);
    return Collect(text, path, false, isLib ? words[2] : "", line.library || isLib, depth + 1);
  }

  // Comments gone, "+" lines joined to their statement, .control blocks kept line by line.
  std::vector<Statement> LogicalLines(const std::string& text, const std::string& file, bool isMain) {
    std::vector<Statement> lines;
    size_t pos = 0;
    int number = 0;
    bool inControl = false;
    while (pos < text.size()) {
      size_t end = text.find('\n', pos);
      if (end == std::string::npos) end = text.size();
      std::string raw = text.substr(pos, end - pos);
      pos = end + 1;
      ++number;
      if (isMain && number == 1) {
        title = Trim(raw);
        continue;
      }
      std::string line = Trim(raw);
      std::string key = Keyword(line);
      if (inControl || key == ".control") {
        inControl = key != ".endc";
        if (!line.empty()) lines.push_back(Statement{line, SpiceOrigin{file, number}, false, true});
        continue;
      }
      if (line.empty() || line[0] == '*') continue;
      line = Trim(StripInlineComment(line));
      if (line.empty()) continue;
      if (line[0] == '+') {
        if (lines.empty() || lines.back().control) {
          lines.push_back(Statement{"", SpiceOrigin{file, number}, false, false});
        }
        lines.back().text += " " + line.substr(1);
        continue;
      }
      lines.push_back(Statement{line, SpiceOrigin{file, number}, false, false});
    }
    std::vector<Statement> kept;
    kept.reserve(lines.size());
    for (Statement& line : lines) {
      line.text = Trim(line.text);
      if (!line.text.empty()) kept.push_back(std::move(line));  // a lone "+" adds nothing
    }
    return kept;
  }

  const SpiceFileLoader& load_;
  std::string& error_;
};

/// Builds sub-circuits and elements from the collected statements.
class NetlistBuilder {
 public:
  NetlistBuilder(SpiceNetlist& netlist, std::string& error) : n_(netlist), error_(error) {}

  bool Build(const std::vector<Statement>& statements) {
    for (const Statement& s : statements) {
      if (s.control) continue;
      std::string key = Keyword(s.text);
      if (key == ".model") {
        std::vector<std::string> words = SplitSpiceWords(s.text);
        if (words.size() < 3) return Fail(s.origin, ".model needs a name and a type");
        modelNames_.insert(Lower(words[1]));
      }
    }
    for (const Statement& s : statements) {
      if (!Take(s)) return false;
    }
    if (!open_.empty()) {
      const SpiceSubckt& sub = n_.subckts[open_.back()];
      return Fail(sub.origin, ".subckt " + sub.name + " has no .ends");
    }
    return true;
  }

 private:
  bool Fail(const SpiceOrigin& at, const std::string& what) {
    error_ = at.file + ":" + std::to_string(at.line) + ": " + what;
    return false;
  }

  // Adds a statement's text to every definition that is open, nested ones included.
  void AddText(const std::string& text) {
    for (size_t index : open_) n_.subckts[index].text.push_back(text);
  }

  bool Take(const Statement& s) {
    if (s.control) {
      if (!open_.empty()) return Fail(s.origin, ".control inside a .subckt");
      n_.header.push_back(s.text);
      return true;
    }
    std::string key = Keyword(s.text);
    if (key == ".subckt") return OpenSubckt(s);
    if (key == ".ends") {
      if (open_.empty()) return Fail(s.origin, ".ends without .subckt");
      AddText(s.text);
      open_.pop_back();
      return true;
    }
    if (key[0] == '.') return Command(s, key);
    if (!open_.empty()) AddText(s.text);
    SpiceElement element;
    if (!ReadElement(s, element)) return false;
    if (open_.empty()) {
      n_.topElements.push_back(std::move(element));
    } else {
      n_.subckts[open_.back()].elements.push_back(std::move(element));
    }
    return true;
  }

  bool Command(const Statement& s, const std::string& key) {
    std::vector<std::string> words = SplitSpiceWords(s.text);
    if (key == ".global") {
      for (size_t i = 1; i < words.size(); ++i) n_.globals.push_back(words[i]);
      return true;
    }
    if (!open_.empty()) {
      AddText(s.text);
      for (size_t index : open_) n_.subckts[index].hasLocalStatements = true;
      return true;
    }
    if (key == ".model") {
      n_.models.push_back(SpiceModelCard{words[1], s.text});
      return true;
    }
    if (key == ".title") {
      n_.title = Trim(s.text.substr(6));
      return true;
    }
    // Analyses, options, parameters and whatever else ngspice reads go to the header as they are.
    n_.header.push_back(s.text);
    return true;
  }

  bool OpenSubckt(const Statement& s) {
    std::vector<std::string> words = SplitSpiceWords(s.text);
    if (words.size() < 2) return Fail(s.origin, ".subckt needs a name");
    SpiceSubckt sub;
    sub.name = words[1];
    sub.origin = s.origin;
    sub.fromLibrary = s.library;
    bool params = false;
    for (size_t i = 2; i < words.size(); ++i) {
      std::string lower = Lower(words[i]);
      if (lower == "params:") {
        params = true;
      } else if (params || words[i].find('=') != std::string::npos) {
        params = true;
        sub.params.push_back(words[i]);
      } else {
        sub.ports.push_back(words[i]);
      }
    }
    if (!subcktNames_.insert(Lower(sub.name)).second)
      return Fail(s.origin, "sub-circuit " + sub.name + " is defined twice");
    AddText(s.text);
    n_.subckts.push_back(std::move(sub));
    open_.push_back(n_.subckts.size() - 1);
    n_.subckts.back().text.push_back(s.text);
    return true;
  }

  // How many nodes an element of this letter has; -1 for a letter ngspice does not read here.
  int NodeCount(char letter, const std::vector<std::string>& w) const {
    switch (letter) {
      case 'R':
      case 'C':
      case 'L':
      case 'V':
      case 'I':
      case 'F':
      case 'H':
      case 'D':
      case 'B':
      case 'W':
        return 2;
      case 'K':
        return 0;
      case 'J':
        return 3;
      case 'M':
      case 'S':
      case 'T':
        return 4;
      case 'E':
      case 'G': {
        // The behavioural forms (POLY, VALUE=, VOL=, CUR=, TABLE) have one pair of nodes.
        if (w.size() > 3) {
          std::string third = Lower(w[3]);
          if (third.rfind("poly", 0) == 0 || third.find('=') != std::string::npos ||
              third.rfind("value", 0) == 0 || third.rfind("table", 0) == 0)
            return 2;
        }
        return 4;
      }
      case 'Q':
        // A fourth node (the substrate) is there when the fourth word is no model.
        return w.size() > 5 && !modelNames_.count(Lower(w[4])) && modelNames_.count(Lower(w[5])) ? 4 : 3;
      case 'X': {
        size_t last = w.size();
        for (size_t i = 1; i < w.size(); ++i) {
          if (w[i].find('=') != std::string::npos || Lower(w[i]) == "params:") {
            last = i;
            break;
          }
        }
        return static_cast<int>(last) - 2;  // all but the name and the sub-circuit
      }
      default:
        return -1;
    }
  }

  bool ReadElement(const Statement& s, SpiceElement& element) {
    std::vector<std::string> w = SplitSpiceWords(s.text);
    char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(w[0][0])));
    int nodes = NodeCount(letter, w);
    if (nodes < 0 && letter != 'X') return Fail(s.origin, "unknown element letter in " + w[0]);
    // Every element has at least one word behind its nodes, but a source of 0 V.
    size_t needed = static_cast<size_t>(std::max(nodes, 0)) + (letter == 'V' || letter == 'I' ? 1 : 2);
    if (nodes < 0 || w.size() < needed) {
      std::string expected =
          letter == 'X' ? "nodes and a sub-circuit" : std::to_string(nodes) + " nodes and a value";
      return Fail(s.origin, "wrong number of nodes for " + w[0] + " (" + expected + " expected)");
    }
    element.name = w[0];
    element.origin = s.origin;
    element.nodes.assign(w.begin() + 1, w.begin() + 1 + nodes);
    element.words.assign(w.begin() + 1 + nodes, w.end());
    if ((letter == 'E' || letter == 'G') && nodes == 2) return ReadPolyNodes(s, element);
    return true;
  }

  // POLY(n) of a voltage-controlled source is followed by n pairs of controlling nodes.
  bool ReadPolyNodes(const Statement& s, SpiceElement& element) {
    std::string poly = Lower(element.words[0]);
    if (poly.compare(0, 5, "poly(") != 0) return true;
    int dimensions = std::atoi(poly.c_str() + 5);
    size_t count = dimensions > 0 ? 2 * static_cast<size_t>(dimensions) : 0;
    if (count == 0 || element.words.size() < 1 + count)
      return Fail(s.origin, "wrong number of nodes for " + element.name + " (" + std::to_string(count) +
                                " controlling nodes expected behind " + element.words[0] + ")");
    element.controlNodes.assign(element.words.begin() + 1, element.words.begin() + 1 + count);
    element.words.erase(element.words.begin() + 1, element.words.begin() + 1 + count);
    return true;
  }

  SpiceNetlist& n_;
  std::string& error_;
  std::vector<size_t> open_;
  std::unordered_set<std::string> modelNames_, subcktNames_;
};

}  // namespace

bool ReadSpiceNetlist(const std::string& text, const std::string& fileName, const SpiceFileLoader& load,
                      SpiceNetlist& netlist, std::string& error) {
  netlist = SpiceNetlist();
  StatementCollector collector(load, error);
  if (!collector.Collect(text, fileName, true, "", false, 0)) return false;
  netlist.title = collector.title;
  NetlistBuilder builder(netlist, error);
  return builder.Build(collector.statements);
}

}  // namespace vdb
