// Turns a SPICE netlist into a design whose components make vesk write the same element lines,
// plus the model files and the header file that the deck takes from beside the database.
//
// Each element becomes a component with PREFIX its letter and an ORDER template that writes its
// words back in their order: the value as VALUE$, the model as MODEL$ (so that the deck includes
// sym/<model>.mod), other plain words as ARGn$, and "key=value" words as KEY= tokens. A key that
// has a meaning of its own to vesk, or whose plain numbers vesk would give a unit, is kept whole
// in an ARGn attribute instead. A sub-circuit that takes parameters, holds its own .param or
// .model statements, comes from a .lib section, or holds K, F, H or W elements (which name other
// elements) stays a library sub-circuit (a model file), since a .SUBCKT line of the deck has no
// parameters and a flat deck renames the elements inside; every other one becomes a block.
#include "design/db/spice_to_design.h"

#include <cctype>
#include <sstream>
#include <unordered_map>
#include <unordered_set>

#include "design/db/design_builder.h"

namespace vdb {

namespace {

std::string Lower(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

std::string Upper(std::string text) {
  for (char& c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

std::string Where(const SpiceOrigin& at) { return at.file + ":" + std::to_string(at.line); }

// Keys that vesk reads for itself, and the parameters whose plain numbers it scales by U or P.
bool KeyNeedsWholeWord(const std::string& key) {
  static const std::unordered_set<std::string> kKeys = [] {
    std::istringstream words(
        "ORDER PREFIX MODEL VALUE DCVAL ACMAG DISTRIBUTION PROBE GENERATOR COMPOSITE_ORDER EXCLUDE LEVEL "
        "NO_PINS PINORDER REFDES SIMMODEL PARAMS: "
        "M L W S D LP PL WP PW LN NL WN NW PSN PDN NPS NPD PSP PDP AS AD ADP AND ASP ASN");
    std::unordered_set<std::string> keys;
    for (std::string word; words >> word;) keys.insert(word);
    return keys;
  }();
  if (kKeys.count(key) || key.compare(0, 12, "SPICE_PARAM_") == 0 || key.empty()) return true;
  if (!std::isalpha(static_cast<unsigned char>(key[0]))) return true;
  for (char c : key)
    if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_') return true;
  return false;
}

// Pin names by letter, for the nodes in their order.
std::string PinName(char letter, size_t index, size_t count) {
  static const std::unordered_map<char, std::vector<const char*>> kPins = {{'D', {"A", "K"}},
                                                                           {'Q', {"C", "B", "E", "S"}},
                                                                           {'J', {"D", "G", "S"}},
                                                                           {'M', {"D", "G", "S", "B"}},
                                                                           {'E', {"P", "N", "CP", "CN"}},
                                                                           {'G', {"P", "N", "CP", "CN"}},
                                                                           {'S', {"P", "N", "CP", "CN"}},
                                                                           {'T', {"P1", "N1", "P2", "N2"}}};
  auto found = kPins.find(letter);
  if (letter != 'X' && count == 2 &&
      (found == kPins.end() || letter == 'E' || letter == 'G' || letter == 'S'))
    return index == 0 ? "P" : "N";
  if (found != kPins.end() && index < found->second.size()) return found->second[index];
  return std::to_string(index + 1);
}

class Converter {
 public:
  Converter(const SpiceNetlist& netlist, Design& design, std::vector<SpiceSideFile>& files,
            std::string& error)
      : n_(netlist), builder_(design), files_(files), error_(error) {}

  bool Run(const std::string& topName) {
    for (size_t i = 0; i < n_.subckts.size(); ++i) subOfName_.emplace(Lower(n_.subckts[i].name), i);
    for (const SpiceModelCard& card : n_.models) modelOfName_.emplace(Lower(card.name), card.name);
    for (const std::string& node : n_.globals) globals_.insert(Lower(node));
    if (!CheckCalls()) return false;
    ChooseLibraries();
    size_t block = 0;
    if (!AddBlock(block++, topName, {}, n_.topElements)) return false;
    for (size_t i = 0; i < n_.subckts.size(); ++i) {
      if (library_[i]) continue;
      if (Lower(n_.subckts[i].name) == Lower(topName))
        return Fail(n_.subckts[i].origin, "sub-circuit " + n_.subckts[i].name + " has the top block's name");
      if (!AddBlock(block++, n_.subckts[i].name, n_.subckts[i].ports, n_.subckts[i].elements)) return false;
    }
    if (!builder_.EndRoot(Json::object({{"blocks", Json::array()}})) || !builder_.Finish("")) {
      error_ = "(design): " + builder_.Error();
      return false;
    }
    WriteSideFiles(topName);
    return true;
  }

 private:
  bool Fail(const SpiceOrigin& at, const std::string& what) {
    error_ = Where(at) + ": " + what;
    return false;
  }

  // The sub-circuit an X element calls, or npos when the netlist does not define it.
  size_t Callee(const SpiceElement& e) const {
    if (std::toupper(static_cast<unsigned char>(e.name[0])) != 'X' || e.words.empty())
      return std::string::npos;
    auto found = subOfName_.find(Lower(e.words[0]));
    return found == subOfName_.end() ? std::string::npos : found->second;
  }

  // A sub-circuit that places itself, directly or through others, is bad input.
  bool CheckCalls() {
    std::vector<uint8_t> state(n_.subckts.size(), 0);
    std::vector<std::pair<size_t, size_t>> stack;
    for (size_t start = 0; start < n_.subckts.size(); ++start) {
      if (state[start]) continue;
      stack.emplace_back(start, 0);
      state[start] = 1;
      while (!stack.empty()) {
        auto& [sub, next] = stack.back();
        const std::vector<SpiceElement>& elements = n_.subckts[sub].elements;
        if (next == elements.size()) {
          state[sub] = 2;
          stack.pop_back();
          continue;
        }
        const SpiceElement& e = elements[next++];
        size_t callee = Callee(e);
        if (callee == std::string::npos || state[callee] == 2) continue;
        if (state[callee] == 1) {
          std::string chain = n_.subckts[callee].name;
          for (auto it = stack.rbegin(); it != stack.rend(); ++it) {
            chain = n_.subckts[it->first].name + " > " + chain;
            if (it->first == callee) break;
          }
          return Fail(e.origin, "sub-circuit " + n_.subckts[callee].name + " calls itself (" + chain + ")");
        }
        state[callee] = 1;
        stack.emplace_back(callee, 0);
      }
    }
    return true;
  }

  // K, F, H and W elements name other elements, whose names a flat deck prefixes with the
  // instance path; such a sub-circuit keeps its own text.
  static bool NamesElements(const SpiceSubckt& sub) {
    for (const SpiceElement& e : sub.elements) {
      char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(e.name[0])));
      if (letter == 'K' || letter == 'F' || letter == 'H' || letter == 'W') return true;
    }
    return false;
  }

  void ChooseLibraries() {
    library_.assign(n_.subckts.size(), false);
    for (size_t i = 0; i < n_.subckts.size(); ++i) {
      const SpiceSubckt& s = n_.subckts[i];
      library_[i] = s.fromLibrary || !s.params.empty() || s.hasLocalStatements || NamesElements(s);
    }
  }

  // The net label of a node in the block in work: the first spelling; 0 and gnd are ground.
  std::string NetLabel(const std::string& node) {
    std::string lower = Lower(node);
    bool ground = lower == "0" || lower == "gnd";
    // vesk grounds every net whose name begins with "GND": another such node is labelled in
    // lower case, the same node to a simulator.
    std::string label = ground ? "GND" : node.compare(0, 3, "GND") == 0 ? lower : node;
    auto [it, added] = netOfNode_.emplace(ground ? "0" : lower, label);
    // Ground inside a sub-circuit is global: a flat deck then keeps its name, and so node 0.
    if (added && (globals_.count(lower) || (ground && blockIndex_ > 0))) {
      Json net = {{"label", it->second}, {"global", true}};
      builder_.AddItem(blockIndex_, ItemKind::kNet, netCount_++, net);
    }
    return it->second;
  }

  bool AddBlock(size_t block, const std::string& name, const std::vector<std::string>& ports,
                const std::vector<SpiceElement>& elements) {
    blockIndex_ = block;
    netOfNode_.clear();
    netCount_ = 0;
    for (size_t i = 0; i < ports.size(); ++i) {
      Json port = {{"name", ports[i]}, {"net", NetLabel(ports[i])}};
      if (!builder_.AddItem(block, ItemKind::kPort, i, port)) return BuilderFailed();
    }
    ComponentFields comp;
    for (size_t i = 0; i < elements.size(); ++i) {
      if (!Component(elements[i], comp)) return false;
      if (!builder_.AddComponentFields(block, i, comp)) return BuilderFailed();
    }
    if (!builder_.EndBlock(block, Json::object({{"name", name}}))) return BuilderFailed();
    return true;
  }

  bool BuilderFailed() {
    error_ = "(design): " + builder_.Error();
    return false;
  }

  static bool HasKey(const TextPairs& pairs, const std::string& key) {
    for (const auto& pair : pairs)
      if (pair.first == key) return true;
    return false;
  }

  // Fills `comp` (whose lists are reused from one element to the next) from an element.
  bool Component(const SpiceElement& e, ComponentFields& comp) {
    char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(e.name[0])));
    size_t callee = Callee(e);
    bool hierarchical = callee != std::string::npos && !library_[callee];
    comp.pins.clear();
    comp.attributes.clear();
    comp.definition.clear();
    for (size_t i = 0; i < e.nodes.size(); ++i) {
      std::string pin = hierarchical && i < n_.subckts[callee].ports.size()
                            ? n_.subckts[callee].ports[i]
                            : PinName(letter, i, e.nodes.size());
      comp.pins.emplace_back(std::move(pin), NetLabel(e.nodes[i]));
    }
    std::string order;
    comp.label = e.name;
    comp.child.clear();
    if (hierarchical) {
      const SpiceSubckt& sub = n_.subckts[callee];
      if (sub.ports.size() != e.nodes.size())
        return Fail(e.origin, e.name + " has " + std::to_string(e.nodes.size()) + " nodes, sub-circuit " +
                                  sub.name + " has " + std::to_string(sub.ports.size()) + " ports");
      Body(e, 1, comp.attributes, order);
      comp.name = comp.child = sub.name;
      comp.type = 2;
      comp.definition.emplace_back("PREFIX", "X");
      if (!order.empty()) comp.definition.emplace_back("COMPOSITE_ORDER", "1");
    } else {
      if (letter == 'X') {
        // The sub-circuit is the model: the deck includes sym/<name>.mod when the netlist has it.
        comp.attributes.emplace_back("MODEL",
                                     callee == std::string::npos ? e.words[0] : n_.subckts[callee].name);
        order = "MODEL$";
        if (callee != std::string::npos) DefaultsOf(n_.subckts[callee], comp.definition);
        Body(e, 1, comp.attributes, order);
      } else {
        Body(e, 0, comp.attributes, order);
        if (!e.controlNodes.empty()) ControlPins(e, comp, order);
      }
      comp.name = std::string(1, letter);
      comp.type = 1;
      comp.definition.emplace_back("PREFIX", std::string(1, letter));
    }
    comp.definition.emplace_back("ORDER", std::move(order));
    return true;
  }

  // The controlling nodes of a POLY source are pins NC1, NC2, ... written by the template right
  // behind the POLY word; PINORDER keeps them out of the nodes at the head of the line.
  void ControlPins(const SpiceElement& e, ComponentFields& comp, std::string& order) {
    std::string tokens;
    for (size_t i = 0; i < e.controlNodes.size(); ++i) {
      std::string pin = "NC" + std::to_string(i + 1);
      comp.pins.emplace_back(pin, NetLabel(e.controlNodes[i]));
      tokens += " " + pin + "[";
    }
    size_t firstToken = order.find(' ');
    order.insert(firstToken == std::string::npos ? order.size() : firstToken, tokens);
    comp.attributes.emplace_back("PINORDER", "P N");
  }

  // The definition's parameter defaults, kept beside the instance's own values.
  static void DefaultsOf(const SpiceSubckt& sub, TextPairs& definition) {
    for (const std::string& word : sub.params) {
      size_t eq = word.find('=');
      std::string key = Upper(word.substr(0, eq));
      if (!KeyNeedsWholeWord(key) && !HasKey(definition, key))
        definition.emplace_back(key, word.substr(eq + 1));
    }
  }

  // The words behind the nodes, from `first` on, as attributes and ORDER tokens in their order.
  void Body(const SpiceElement& e, size_t first, TextPairs& attrs, std::string& order) {
    char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(e.name[0])));
    bool modelFirst = std::string("DQJMST").find(letter) != std::string::npos;
    bool haveValue = false, haveModel = letter == 'X';
    int args = 0;
    for (size_t i = first; i < e.words.size(); ++i) {
      const std::string& word = e.words[i];
      if (Lower(word) == "params:") continue;
      size_t eq = word.find('=');
      std::string name;
      if (eq != std::string::npos && eq > 0) {
        std::string key = Upper(word.substr(0, eq));
        if (!KeyNeedsWholeWord(key) && !HasKey(attrs, key) && eq + 1 < word.size()) {
          attrs.emplace_back(key, word.substr(eq + 1));
          order += (order.empty() ? "" : " ") + key + "=";
          continue;
        }
      } else {
        auto model = modelOfName_.find(Lower(word));
        if (!haveModel && (model != modelOfName_.end() || (modelFirst && !haveValue))) {
          // A model is written under the spelling of its card, the name of its file.
          attrs.emplace_back("MODEL", model != modelOfName_.end() ? model->second : word);
          haveModel = true;
          name = "MODEL";
        } else if (!haveValue && !modelFirst && letter != 'X') {
          name = "VALUE";
          attrs.emplace_back(name, word);
          haveValue = true;
        }
      }
      if (name.empty()) {
        name = "ARG" + std::to_string(++args);
        attrs.emplace_back(name, word);
      }
      order += (order.empty() ? "" : " ") + name + "$";
    }
  }

  // sym/<model>.mod for each .model card and each library sub-circuit, and <top>.inc.
  void WriteSideFiles(const std::string& topName) {
    for (const SpiceModelCard& card : n_.models)
      files_.push_back({"sym/" + card.name + ".mod", card.text + "\n"});
    for (size_t i = 0; i < n_.subckts.size(); ++i) {
      if (library_[i]) files_.push_back({"sym/" + n_.subckts[i].name + ".mod", LibraryText(i)});
    }
    std::string header = n_.title.empty() ? "" : "* " + n_.title + "\n";
    for (const std::string& line : n_.header) header += line + "\n";
    files_.push_back({topName + ".inc", header});
  }

  // A library sub-circuit with the sub-circuits it calls and the models they use nested inside
  // its definition, so that its file stands alone and clashes with no other file.
  std::string LibraryText(size_t sub) {
    std::vector<size_t> callees;
    std::unordered_set<size_t> seen{sub};
    std::unordered_set<std::string> own, models;
    for (size_t q = 0; q <= callees.size(); ++q) {
      size_t at = q == 0 ? sub : callees[q - 1];
      for (const SpiceElement& e : n_.subckts[at].elements) {
        size_t callee = Callee(e);
        if (callee != std::string::npos && seen.insert(callee).second) callees.push_back(callee);
        for (const std::string& word : e.words)
          if (modelOfName_.count(Lower(word))) models.insert(Lower(word));
      }
    }
    const std::vector<std::string>& text = n_.subckts[sub].text;
    for (const std::string& line : text) own.insert(Lower(line));
    std::string out = text[0] + "\n";
    for (const SpiceModelCard& card : n_.models)
      if (models.count(Lower(card.name))) out += card.text + "\n";
    for (size_t callee : callees) {
      // Definitions nested in this one are in its text already.
      if (own.count(Lower(n_.subckts[callee].text[0]))) continue;
      for (const std::string& line : n_.subckts[callee].text) out += line + "\n";
    }
    for (size_t i = 1; i < text.size(); ++i) out += text[i] + "\n";
    return out;
  }

  const SpiceNetlist& n_;
  DesignBuilder builder_;
  std::vector<SpiceSideFile>& files_;
  std::string& error_;
  std::unordered_map<std::string, size_t> subOfName_;
  std::unordered_map<std::string, std::string> modelOfName_;
  std::unordered_set<std::string> globals_;
  std::vector<bool> library_;
  std::unordered_map<std::string, std::string> netOfNode_;
  size_t blockIndex_ = 0, netCount_ = 0;
};

}  // namespace

bool SpiceToDesign(const SpiceNetlist& netlist, const std::string& topName, Design& design,
                   std::vector<SpiceSideFile>& files, std::string& error) {
  Converter converter(netlist, design, files, error);
  return converter.Run(topName);
}

bool DesignFromSpiceText(const std::string& text, const std::string& fileName, const SpiceFileLoader& load,
                         const std::string& topName, Design& design, std::vector<SpiceSideFile>& files,
                         std::string& error) {
  SpiceNetlist netlist;
  if (!ReadSpiceNetlist(text, fileName, load, netlist, error)) return false;
  return SpiceToDesign(netlist, topName, design, files, error);
}

}  // namespace vdb
