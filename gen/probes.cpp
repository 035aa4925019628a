// Probe collection, the statements of generator components, flat print statements and
// initial conditions.
#include <iostream>
#include <map>
#include <string>

#include "design/probe_text.h"
#include "gen/spice_gen.h"

namespace {

bool StartsWith(const std::string& text, const char* prefix) { return text.rfind(prefix, 0) == 0; }

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
  switch (gen.wirelistKind) {
    case kPspice:
      if (gen.printWord == ".PRINT") return gen.printWord + " " + analysis + " " + expression + "\n";
      return gen.analogDeps ? "" : gen.printWord + " " + expression + "\n";
    case kKelpo:
    case kHspice:
      return gen.printWord + " " + analysis + " " + (ac ? both : expression) + "\n";
    case kBerkeley:
      return ".PRINT " + analysis + " " + (ac ? both : expression) + "\n";
    default:
      return "";
  }
}

// One initial-condition statement: "<word>V(3)=1 V([B])=0 \n", each net under the node
// text the deck gives it (a number, or a name under -n); nothing when empty.
void WriteConditions(CSpiceGen& gen, const char* word, const std::map<std::string, std::string>& values) {
  std::string line;
  for (const auto& [net, value] : values)
    if (!value.empty()) line += ProbeExpression(gen, "V", gen.NodeName(net)) + "=" + value + " ";
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
    probeAll = true;
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
    AddFlatProbe(ProbeDifferenceExpression(*this, value, first, NodeName(pins[1].net.Name())));
  else
    AddFlatProbe(ProbeExpression(*this, value, first));
  return 0;
}

void CSpiceGen::CollectCurrentProbe(SpiceComp& comp, const std::string& value) {
  const size_t pins = comp.PinNets().size();
  if (pins < 2) {
    std::cout << "error";
    return;
  }
  if (pins > 2) std::cout << "Warning";
  if (!flatten) {
    // The component's own line follows and is the probed element.
    out << " * next line is a current sense\n";
    return;
  }
  AddFlatProbe(value + "(" + comp.RefName() + ")");
}

void CSpiceGen::CollectGenerator(SpiceComp& comp) {
  if (!comp.HasAttributes()) return;
  const std::string key = comp.Attribute("GENERATOR");
  if (!key.empty()) generatorComps[key] = comp;
}

void CSpiceGen::AddFlatProbe(const std::string& expression) { flatProbes.emplace(expression, false); }

void CSpiceGen::WriteGeneratorStatements() {
  if (hdlSpiceSources) return;
  for (auto& [key, comp] : generatorComps) {
    if (key == ".NOISE" && !generatorComps.count(".AC")) {
      std::cout << "Error: Noise generator (.NOISE) requires Bode Plot";
      continue;
    }
    if (key == ".FOUR" && !generatorComps.count(".TRAN")) {
      std::cout << "Error :Fourier analysis requires oscilloscope ";
      continue;
    }
    out << key;
    // The generator's pins become its output variables: ".NOISE V([OUT])".
    if (PinsWanted(comp)) {
      for (const PinEntry& pin : comp.PinNets())
        if (pin.net.IsConnected()) out << " " << ProbeExpression(*this, "V", NodeName(pin.net.Name()));
    }
    ExpandOrder(comp);
    out << " " << lineBody << "\n";
    if (key == ".NOISE" && !ignorePrints) out << ".PRINT NOISE ONOISE INOISE DB(ONOISE) DB(INOSIE)\n";
    if (key == ".AC" || key == ".DC" || key == ".TRAN") NoteAnalysis(key);
  }
}

void CSpiceGen::NoteAnalysis(const std::string& key) { analysisKeywords.Add(key); }

void CSpiceGen::WriteFlatProbes() {
  if (hdlSpiceSources || ignorePrints) return;
  analysisKeywords.ForEachNewestFirst([&](std::string_view view) {
    const std::string keyword(view);
    if (analogDeps || (wirelistKind == kPspice && printWord == ".PROBE")) out << ".PROBE/CSDF\n";
    if (flatProbes.empty() && probeAll) AddAllNodeProbes(nodes);
    if (attWirelist) return;
    for (const auto& entry : flatProbes) out << FlatStatement(*this, keyword, entry.first);
  });
}

void CSpiceGen::AddAllNodeProbes(const NodeTable& table) {
  // flatProbes is an ordered set, so the order in which the nodes arrive does not show;
  // the hash table is read as it stands rather than sorted first.
  for (const auto& entry : table) {
    const std::string& node = entry.second;
    if (node.empty() || node == "0") continue;
    AddFlatProbe(ProbeExpression(*this, "", node));
  }
}

void CSpiceGen::WriteInitialConditions(SpiceBlock& block) {
  WriteConditions(*this, ".NODESET ", block.Nodesets());
  WriteConditions(*this, ".IC ", block.InitialConditions());
  WriteConditions(*this, ".GUESS ", block.Guesses());
}
