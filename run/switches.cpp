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
  if (gen.options.dracula) {
    std::cout << "Ignoring -p switch since wirelisting to Dracula III ... \n";
    return;
  }
  gen.options.wirelistKind = kPspice;
}

void SetDracula(CSpiceGen& gen, const std::string&) {
  gen.options.wirelistKind = kHspice;
  gen.options.dracula = true;
  gen.options.useNodeNames = true;
}

void SetKelpo(CSpiceGen& gen, const std::string&) {
  gen.options.wirelistKind = kKelpo;
  gen.options.useNodeNames = true;
  gen.options.circuitExtension = "cir";
}

void AddLevelSwitch(CSpiceGen& gen, const std::string& value) {
  if (!value.empty()) gen.AddLevel(value);
}

using G = CSpiceGen;
using S = const std::string;

const Switch kSwitches[] = {
    {'a', false, [](G& g, S&) { g.options.alien = true; }},
    {'b', false, [](G& g, S&) { g.options.noParamWarning = true; }},
    {'c', true, [](G& g, S& v) { g.options.maxNameChars = std::atoi(v.c_str()); }},
    {'d', false, [](G& g, S&) { g.options.dictionary = true; }},
    {'e', false, SetDracula},
    {'f', false, [](G& g, S&) { g.options.flatten = 1; }},
    {'g', true, [](G& g, S& v) { g.options.headerFile = v; }},
    {'h', false,
     [](G& g, S&) {
       g.options.flatten = 0;
       g.options.noParamWarning = true;
     }},
    {'i', false, [](G& g, S&) { g.options.ignorePrints = true; }},
    {'j', true, [](G& g, S& v) { g.options.rootPath = v; }},
    {'k', true, [](G& g, S& v) { g.options.configFile = v; }},
    {'l', true, AddLevelSwitch},
    {'m', false, [](G& g, S&) { g.options.wirelistKind = kHspice; }},
    {'n', false, [](G& g, S&) { g.options.useNodeNames = true; }},
    {'o', true, [](G& g, S& v) { g.options.firstOrder = v; }},
    {'p', false, SetPspice},
    {'q', false, [](G& g, S&) { g.options.dictionary = false; }},
    {'r', false, [](G& g, S&) { g.options.ratings = true; }},
    {'s', false, [](G& g, S&) { g.options.wirelistKind = kBerkeley; }},
    {'t', false, [](G& g, S&) { g.options.attWirelist = true; }},
    {'v', false, [](G& g, S&) { g.options.verbose = true; }},
    {'w', false, [](G& g, S&) { g.options.printWord = ".PRINT"; }},
    {'x', false, [](G& g, S&) { g.options.crossReference = true; }},
    {'y', true, [](G& g, S& v) { g.options.firstPrefix = v; }},
    {'z', false, [](G& g, S&) { g.options.readModFiles = 0; }},
    {'#', false, [](G& g, S&) { g.options.useNodeNames = true; }},
    {'$', false, [](G& g, S&) { g.options.dereplicate = true; }},
    {'%', true, [](G& g, S& v) { g.options.outputFolder = v; }},
    {'+', false, [](G& g, S&) { g.options.noSort = true; }},
    {'.', true, [](G& g, S& v) { g.options.circuitExtension = v; }},
    {'!', true, [](G& g, S& v) { g.options.circuitFileName = v; }},
    {'=', true, [](G& g, S& v) { g.options.loadAttribute = v; }},
    {'@', true, [](G& g, S& v) { g.options.paramFile = v; }},
    {'7', false, [](G& g, S&) { g.options.includeSources = 1; }},
    {'8', false, [](G& g, S&) { g.options.probeAll = true; }},
    {'9', false, [](G& g, S&) { g.options.analogDeps = true; }},
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
      options.hdlSpiceSources = 1;
      ++pos;
    }
  }
  return taken;
}
