// Probe collection, the statements of generator components, flat print statements and
// initial conditions.
#include <iostream>
#include <map>
#include <string>

#include "expr/text.h"
#include "gen/probe_text.h"
#include "gen/spice_gen.h"

namespace {

// "V(1)" -> "VDB(1)" and "VP(1)"; an expression with its "(" elsewhere stays as it is.
std::string ReplaceOpenings(const std::string& expression, const char* with) {
  if (expression.find('(') != 1) return expression;
  std::string result;
  for (char c : expression) {
    if (c == '(')
      result += with;
    else
      result += c;
  }
  return result;
}

// One flat print statement of `expression` under `keyword` (".AC", ".DC", ".TRAN").
std::string FlatStatement(const CSpiceGen& gen, const std::string& keyword, const std::string& expression) {
  const std::string analysis = keyword.substr(1);
  const bool ac = keyword == ".AC";
  const std::string both = ReplaceOpenings(expression, "DB(") + " " + ReplaceOpenings(expression, "P(");
  switch (gen.options.dialect.printStyle) {
    case PrintStyle::kPspice:
      if (gen.options.printWord == ".PRINT")
        return gen.options.printWord + " " + analysis + " " + expression + "\n";
      return gen.options.analogDeps ? "" : gen.options.printWord + " " + expression + "\n";
    case PrintStyle::kAnalysis:
      return gen.options.printWord + " " + analysis + " " + (ac ? both : expression) + "\n";
    case PrintStyle::kBerkeley:
      return ".PRINT " + analysis + " " + (ac ? both : expression) + "\n";
  }
  return "";
}

// One initial-condition statement: "<word>V(3)=1 V([B])=0 \n", each net under the node
// text the deck gives it (a number, or a name under -n); nothing when empty.
void WriteConditions(CSpiceGen& gen, const char* word, const std::map<std::string, std::string>& values) {
  std::string line;
  for (const auto& [net, value] : values)
    if (!value.empty()) line += ProbeExpression(gen.options, "V", gen.NodeName(net)) + "=" + value + " ";
  if (!line.empty()) gen.out << word << line << "\n";
}

// The NO PINS attribute lets a generator's pins through when empty, "FALSE" or "0".
bool PinsWanted(const SpiceComp& comp) {
  std::string noPins = comp.Attribute("NO PINS");
  if (noPins.empty()) noPins = comp.Attribute("NO_PINS");
  return noPins.empty() || noPins == "FALSE" || noPins == "0";
}

}  // namespace

int CSpiceGen::CollectProbe(SpiceComp& comp) {
  if (!comp.HasAttributes()) return 0;
  const std::string value = comp.Attribute("PROBE");
  if (value == "i") {
    CollectCurrentProbe(comp, value);
    return 1;
  }
  if (StartsWith(value, "ALL")) {
    options.probeAll = true;
    return 0;
  }
  const std::vector<PinEntry>& pins = comp.PinNets();
  if (pins.empty()) {
    std::cout << "error";
    return 0;
  }
  if (pins.size() > 2) std::cout << "warning";
  const std::string first = NodeName(pins[0].net.Name());
  if (pins.size() >= 2)
    AddFlatProbe(ProbeDifferenceExpression(options, value, first, NodeName(pins[1].net.Name())));
  else
    AddFlatProbe(ProbeExpression(options, value, first));
  return 0;
}

void CSpiceGen::CollectCurrentProbe(SpiceComp& comp, const std::string& value) {
  const size_t pins = comp.PinNets().size();
  if (pins < 2) {
    std::cout << "error";
    return;
  }
  if (pins > 2) std::cout << "Warning";
  if (!options.flatten) {
    // The component's own line follows and is the probed element.
    out << " * next line is a current sense\n";
    return;
  }
  AddFlatProbe(value + "(" + comp.RefName() + ")");
}

void CSpiceGen::CollectGenerator(SpiceComp& comp) {
  if (!comp.HasAttributes()) return;
  const std::string key = comp.Attribute("GENERATOR");
  if (!key.empty()) walk.generatorComps[key] = comp;
}

void CSpiceGen::AddFlatProbe(const std::string& expression) { walk.flatProbes.emplace(expression, false); }

void CSpiceGen::WriteGeneratorStatements() {
  if (options.dialect.hdlSources) return;
  for (auto& [key, comp] : walk.generatorComps) {
    if (key == ".NOISE" && !walk.generatorComps.count(".AC")) {
      std::cout << "Error: Noise generator (.NOISE) requires Bode Plot";
      continue;
    }
    if (key == ".FOUR" && !walk.generatorComps.count(".TRAN")) {
      std::cout << "Error :Fourier analysis requires oscilloscope ";
      continue;
    }
    out << key;
    // The generator's pins become its output variables: ".NOISE V([OUT])".
    if (PinsWanted(comp)) {
      for (const PinEntry& pin : comp.PinNets())
        if (pin.net.IsConnected()) out << " " << ProbeExpression(options, "V", NodeName(pin.net.Name()));
    }
    ExpandOrder(comp);
    out << " " << walk.lineBody << "\n";
    if (key == ".NOISE" && !options.ignorePrints) out << ".PRINT NOISE ONOISE INOISE DB(ONOISE) DB(INOSIE)\n";
    if (key == ".AC" || key == ".DC" || key == ".TRAN") NoteAnalysis(key);
  }
}

void CSpiceGen::NoteAnalysis(const std::string& key) { walk.analysisKeywords.Add(key); }

void CSpiceGen::WriteFlatProbes() {
  if (options.dialect.hdlSources || options.ignorePrints) return;
  walk.analysisKeywords.ForEachNewestFirst([&](std::string_view view) {
    const std::string keyword(view);
    if (options.dialect.csdfProbeLine) out << ".PROBE/CSDF\n";
    if (walk.flatProbes.empty() && options.probeAll) AddAllNodeProbes(walk.nodes);
    if (options.attWirelist) return;
    for (const auto& entry : walk.flatProbes) out << FlatStatement(*this, keyword, entry.first);
  });
}

void CSpiceGen::AddAllNodeProbes(const NodeTable& table) {
  // flatProbes is an ordered set, so the order in which the nodes arrive does not show;
  // the hash table is read as it stands rather than sorted first.
  for (const auto& entry : table) {
    const std::string& node = entry.second;
    if (node.empty() || node == "0") continue;
    AddFlatProbe(ProbeExpression(options, "", node));
  }
}

void CSpiceGen::WriteInitialConditions(SpiceBlock& block) {
  WriteConditions(*this, ".NODESET ", block.Nodesets());
  WriteConditions(*this, ".IC ", block.InitialConditions());
  WriteConditions(*this, ".GUESS ", block.Guesses());
}
