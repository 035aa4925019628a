// One switch cluster ("-nhv", "-kfile.cfg") applied to the option fields.
#include <cctype>
#include <cstdlib>
#include <iostream>

#include "gen/spice_gen.h"

namespace {

// A switch letter; a switch with a value takes the rest of its token.
struct Switch {
  char letter;
  bool takesValue;
  void (*apply)(CSpiceGen& gen, const std::string& value);
};

void SetPspice(CSpiceGen& gen, const std::string&) {
  if (gen.dracula) {
    std::cout << "Ignoring -p switch since wirelisting to Dracula III ... \n";
    return;
  }
  gen.wirelistKind = kPspice;
}

void SetDracula(CSpiceGen& gen, const std::string&) {
  gen.wirelistKind = kHspice;
  gen.dracula = true;
  gen.useNodeNames = true;
}

void SetKelpo(CSpiceGen& gen, const std::string&) {
  gen.wirelistKind = kKelpo;
  gen.useNodeNames = true;
  gen.circuitExtension = "cir";
}

void AddLevelSwitch(CSpiceGen& gen, const std::string& value) {
  if (!value.empty()) gen.AddLevel(value);
}

using G = CSpiceGen;
using S = const std::string;

const Switch kSwitches[] = {
    {'a', false, [](G& g, S&) { g.alien = true; }},
    {'b', false, [](G& g, S&) { g.noParamWarning = true; }},
    {'c', true, [](G& g, S& v) { g.maxNameChars = std::atoi(v.c_str()); }},
    {'d', false, [](G& g, S&) { g.dictionary = true; }},
    {'e', false, SetDracula},
    {'f', false, [](G& g, S&) { g.flatten = 1; }},
    {'g', true, [](G& g, S& v) { g.headerFile = v; }},
    {'h', false,
     [](G& g, S&) {
       g.flatten = 0;
       g.noParamWarning = true;
     }},
    {'i', false, [](G& g, S&) { g.ignorePrints = true; }},
    {'j', true, [](G& g, S& v) { g.rootPath = v; }},
    {'k', true, [](G& g, S& v) { g.configFile = v; }},
    {'l', true, AddLevelSwitch},
    {'m', false, [](G& g, S&) { g.wirelistKind = kHspice; }},
    {'n', false, [](G& g, S&) { g.useNodeNames = true; }},
    {'o', true, [](G& g, S& v) { g.firstOrder = v; }},
    {'p', false, SetPspice},
    {'q', false, [](G& g, S&) { g.dictionary = false; }},
    {'r', false, [](G& g, S&) { g.ratings = true; }},
    {'s', false, [](G& g, S&) { g.wirelistKind = kBerkeley; }},
    {'t', false, [](G& g, S&) { g.attWirelist = true; }},
    {'v', false, [](G& g, S&) { g.verbose = true; }},
    {'w', false, [](G& g, S&) { g.printWord = ".PRINT"; }},
    {'x', false, [](G& g, S&) { g.crossReference = true; }},
    {'y', true, [](G& g, S& v) { g.firstPrefix = v; }},
    {'z', false, [](G& g, S&) { g.readModFiles = 0; }},
    {'#', false, [](G& g, S&) { g.useNodeNames = true; }},
    {'$', false, [](G& g, S&) { g.dereplicate = true; }},
    {'%', true, [](G& g, S& v) { g.outputFolder = v; }},
    {'+', false, [](G& g, S&) { g.noSort = true; }},
    {'.', true, [](G& g, S& v) { g.circuitExtension = v; }},
    {'!', true, [](G& g, S& v) { g.circuitFileName = v; }},
    {'=', true, [](G& g, S& v) { g.loadAttribute = v; }},
    {'@', true, [](G& g, S& v) { g.paramFile = v; }},
    {'7', false, [](G& g, S&) { g.includeSources = 1; }},
    {'8', false, [](G& g, S&) { g.probeAll = true; }},
    {'9', false, [](G& g, S&) { g.analogDeps = true; }},
    {'_', false, SetKelpo},
};

const Switch* FindSwitch(char c) {
  char letter = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  for (const Switch& candidate : kSwitches)
    if (candidate.letter == letter) return &candidate;
  return nullptr;
}

}  // namespace

int CSpiceGen::ParseSwitches(const std::string& token) {
  int taken = 0;
  for (size_t pos = 0; pos < token.size(); ++pos) {
    const Switch* item = FindSwitch(token[pos]);
    if (!item) continue;  // unknown letters, the "-" and line ends are passed over
    ++taken;
    if (item->takesValue) {
      item->apply(*this, token.substr(pos + 1));
      break;
    }
    item->apply(*this, "");
    if (item->letter == '_' && pos + 1 < token.size() && token[pos + 1] == '_') {
      hdlSpiceSources = 1;
      ++pos;
    }
  }
  return taken;
}
