// One component line: instance name, nodes, and the body its ORDER template describes.
#include <cctype>
#include <iostream>
#include <memory>
#include <vector>

#include "expr/attribute_text.h"
#include "expr/text.h"
#include "gen/spice_gen.h"

namespace {

bool IsAlnum(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; }

bool IsEmptyOrBlank(const std::string& text) { return text.empty() || text == " "; }

// The part of a component's name in front of its first "."; "" when there is no ".".
std::string ModelPart(const std::string& name) {
  size_t dot = name.find('.');
  return dot == std::string::npos ? std::string() : name.substr(0, dot);
}

// Whether an instance line names its model or block ahead of the body: the template does
// not mention the model itself (case-sensitive), or there is neither template nor MODEL.
bool NeedsCalledName(const std::string& order, const SpiceComp& comp) {
  if (!order.empty())
    return order.find("MODEL") == std::string::npos && order.find("Model") == std::string::npos;
  return comp.Attributes().Get("MODEL").empty();
}

// The end of a token that starts at `i`: at a blank or a quote (not taken) or behind a "$".
size_t TokenEnd(const std::string& text, size_t i) {
  while (i < text.size()) {
    char c = text[i];
    if (c == ' ' || c == '"') return i;
    ++i;
    if (c == '$') return i;
  }
  return i;
}

// One ORDER template read into its steps once: the components of a symbol share their
// template, and each only runs the steps.
struct OrderStep {
  enum Kind { kText, kValue, kDistribution, kPin, kParameter, kKeyword };
  Kind kind;
  std::string text;   // kText: the quoted text with its blank; kParameter: "NAME=" as written
  std::string name;   // as written: the attribute, or the pin
  std::string upper;  // the attribute's key
};
using OrderProgram = std::vector<OrderStep>;

// Copies quoted text from `i` up to the closing quote (or the end), escapes applied, then a
// blank; returns the position behind the quote.
size_t ReadQuotedText(const std::string& order, size_t i, std::string& text) {
  while (i < order.size() && order[i] != '"') {
    if (order[i] == '\\') {
      if (i + 1 < order.size()) text += EscapeCharacter(order[i + 1]);
      i += 2;
      continue;
    }
    text += order[i++];
  }
  text += ' ';
  return i + 1;
}

// "NAME$": a value; "NAME[": a pin; "NAME=" or "NAME=$": a parameter; else a keyword.
OrderStep ReadToken(const std::string& token) {
  const char last = token.back();
  OrderStep step;
  if (token.size() >= 2 && last == '$' && token[token.size() - 2] != '=') {
    for (size_t i = 0; i + 1 < token.size(); ++i)
      if (token[i] != '=') step.name += token[i];
    step.upper = UpperText(step.name);
    step.kind = step.upper == "DISTRIBUTION" ? OrderStep::kDistribution : OrderStep::kValue;
  } else if (token.size() >= 2 && last == '[') {
    step.kind = OrderStep::kPin;
    step.name = token.substr(0, token.size() - 1);
  } else if (token.size() >= 2 && (last == '=' || last == '$')) {
    step.kind = OrderStep::kParameter;
    for (char c : token)
      if (c != '$') step.text += c;
    step.name = step.text.substr(0, step.text.size() - 1);
    step.upper = UpperText(step.name);
  } else {
    step.kind = OrderStep::kKeyword;
    step.name = token;
    step.upper = UpperText(token);
  }
  return step;
}

// The steps of a template (already normalized): quoted texts and tokens, in order; other
// characters only part them.
OrderProgram ReadOrderProgram(const std::string& order) {
  OrderProgram program;
  size_t i = 0;
  while (i < order.size()) {
    char c = order[i];
    if (c == '"') {
      OrderStep step{OrderStep::kText, std::string(), std::string(), std::string()};
      i = ReadQuotedText(order, i + 1, step.text);
      program.push_back(std::move(step));
    } else if (!IsAlnum(c)) {
      ++i;
    } else {
      size_t end = TokenEnd(order, i);
      program.push_back(ReadToken(order.substr(i, end - i)));
      i = end;
    }
  }
  return program;
}

// Runs the steps of one template for one component into the generator's lineBody.
class OrderExpander {
 public:
  OrderExpander(CSpiceGen& gen, SpiceComp& comp) : gen_(gen), comp_(comp), body_(gen.walk.lineBody) {}

  void Run(const OrderProgram& program) {
    for (const OrderStep& step : program) {
      switch (step.kind) {
        case OrderStep::kText:
          body_ += step.text;
          break;
        case OrderStep::kValue:
          ExpandValue(step);
          break;
        case OrderStep::kDistribution:
          AppendDistribution();
          break;
        case OrderStep::kPin:
          ExpandPin(step.name);
          break;
        case OrderStep::kParameter:
          ExpandParameter(step);
          break;
        case OrderStep::kKeyword:
          ExpandKeyword(step);
          break;
      }
    }
  }

 private:
  // "TC" with its value: "TC 2 "; nothing without the attribute.
  void ExpandKeyword(const OrderStep& step) {
    const std::string& attribute = comp_.Attributes().Get(step.upper);
    if (attribute.empty()) return;
    body_ += step.name;
    body_ += ' ';
    std::string value = gen_.EvaluateAttributeValue(comp_, step.name, attribute);
    if (!gen_.walk.modelRegistered && step.name == "MODEL") Register(value);
    body_ += value;
    body_ += ' ';
  }

  // "NAME$": the value; VALUE, DCVAL and ACMAG default to 0 with a note.
  void ExpandValue(const OrderStep& step) {
    const std::string& upperName = step.upper;
    std::string value = gen_.EvaluateAttributeValue(comp_, step.name, comp_.Attributes().Get(upperName));
    if ((upperName == "VALUE" || upperName == "DCVAL" || upperName == "ACMAG") && IsEmptyOrBlank(value)) {
      AppendDefaultZero();
    } else {
      body_ += value;
      body_ += ' ';
    }
    if (!gen_.walk.modelRegistered && upperName == "MODEL") Register(value);
  }

  void AppendDistribution() {
    std::string text = comp_.Attributes().Get("DISTRIBUTION");
    const std::string& value = comp_.Attributes().Get("VALUE");
    if (IsEmptyOrBlank(value)) return AppendDefaultZero();
    static const std::string kPlaceholder = "Value$";
    for (size_t pos = text.find(kPlaceholder); pos != std::string::npos;
         pos = text.find(kPlaceholder, pos + value.size()))
      text.replace(pos, kPlaceholder.size(), value);
    body_ += text;
    body_ += ' ';
  }

  void AppendDefaultZero() {
    body_ += "0 ";
    gen_.AddNote("*Warning: No value for " + comp_.RefName() + ". Defaulting to 0");
  }

  // "NAME[": the node at that pin.
  void ExpandPin(const std::string& pinName) {
    const SpiceNet* pin = comp_.FindPin(pinName);
    const std::string net = pin ? pin->Name() : std::string();
    size_t position = SIZE_MAX;
    std::string node = gen_.NodeName(net, position);
    body_ += node;
    body_ += ' ';
    if (net != node) gen_.OfferNetLine(net, node, position);
  }

  // "NAME=" or "NAME=$": " NAME=value "; nothing without the attribute.
  void ExpandParameter(const OrderStep& step) {
    const std::string& attribute = comp_.Attributes().Get(step.upper);
    if (IsEmptyOrBlank(attribute)) return;
    std::string value = gen_.EvaluateAttributeValue(comp_, step.name, attribute);
    body_ += ' ';
    body_ += step.text;
    body_ += value;
    body_ += ' ';
    if (!gen_.walk.modelRegistered && step.upper == "MODEL") Register(value);
  }

  void Register(const std::string& model) {
    gen_.walk.modelRegistered = true;
    gen_.RegisterModel(model, comp_);
  }

  CSpiceGen& gen_;
  SpiceComp& comp_;
  std::string& body_;
};

}  // namespace

void CSpiceGen::EmitComponent(SpiceComp& comp) {
  if (comp.RefName().empty() && comp.Kind() != kStoppedInstance) return;
  if (options.flatten && comp.RefName().empty()) {
    std::string note = "*Note : Skipping Component " + comp.Label() + "\n";
    std::cout << note;
    out << note;
    return;
  }
  walk.voltageProbeHere = false;
  walk.generatorHere = false;
  CheckSpecialComponent(comp);
  if (walk.voltageProbeHere) {
    out << "* voltage probe on node : ";
    WritePins(comp, false);
    out << "\n";
    return;
  }
  if (walk.generatorHere) return;

  out << comp.RefName();
  if (keepsInternalNames) NoteInternalName(comp);
  WritePins(comp, false);
  const std::string& order = comp.Attributes().Get("ORDER");
  const bool namesCalled = NeedsCalledName(order, comp);
  if (comp.Kind() != kInstance) {
    char first = comp.RefName().empty() ? '\0' : comp.RefName()[0];
    walk.calledNameWritten = (first == 'X' || first == 'x') && namesCalled;
    if (walk.calledNameWritten) out << ' ' << ModelPart(comp.Name());
    ExpandOrder(comp);
    walk.calledNameWritten = false;
    out << ' ' << walk.lineBody;
  } else {
    if (namesCalled) out << ' ' << comp.ChildBlockName();
    if (options.dialect.instanceParameters || !comp.Attributes().Get("COMPOSITE_ORDER").empty()) {
      ExpandOrder(comp);
      out << ' ' << walk.lineBody;
    }
  }
  out << "\n";
  FlushNotes();
}

void CSpiceGen::NoteInternalName(const SpiceComp& comp) {
  // An absent entry reads as empty, so a component without an internal name (every one of
  // a flat deck) only clears what an earlier one of the same name left.
  if (!comp.InternalName().empty())
    internalNames[LowerText(comp.RefName())] = comp.InternalName();
  else if (!internalNames.empty())
    internalNames.erase(LowerText(comp.RefName()));
}

void CSpiceGen::CheckSpecialComponent(SpiceComp& comp) {
  if (!comp.Attributes().Get("PROBE").empty() && CollectProbe(comp) == 0) walk.voltageProbeHere = true;
  if (!comp.Attributes().Get("GENERATOR").empty()) {
    walk.generatorHere = true;
    CollectGenerator(comp);
  }
}

void CSpiceGen::ExpandOrder(SpiceComp& comp) {
  static const std::string kModelOnly = "Model$";
  std::string chosen;
  if (!options.firstOrder.empty() && options.firstOrder.compare(0, 4, "EXT=") != 0)
    chosen = comp.Attribute(options.firstOrder);
  const std::string& ordered = comp.Attributes().Get("ORDER");
  const std::string& order = !chosen.empty() ? chosen : !ordered.empty() ? ordered : kModelOnly;
  // Components of one symbol share their template: the last one read is kept, per thread,
  // as the generator of a run is driven by one.
  static thread_local std::string lastOrder;
  static thread_local std::shared_ptr<const OrderProgram> lastProgram =
      std::make_shared<const OrderProgram>(ReadOrderProgram(NormalizeOrderTemplate(lastOrder)));
  if (order != lastOrder) {
    lastProgram = std::make_shared<const OrderProgram>(ReadOrderProgram(NormalizeOrderTemplate(order)));
    lastOrder = order;
  }
  const std::shared_ptr<const OrderProgram> program = lastProgram;  // kept, should a value lead back here
  walk.lineBody.clear();
  walk.modelRegistered = false;
  OrderExpander(*this, comp).Run(*program);
  TrimInPlace(walk.lineBody);
  if (!walk.lineBody.empty() || options.alien || comp.Kind() == kInstance) return;
  DefaultFromBare(walk.lineBody, comp);
  if (walk.lineBody.empty()) DefaultByPrefix(walk.lineBody, comp);
}

void CSpiceGen::DefaultFromBare(std::string& body, SpiceComp& comp) {
  std::vector<std::string> bare = comp.BareAttributes();
  if (bare.empty() || bare.back().empty()) return;
  const std::string& word = bare.back();
  body += ' ';
  body += word;
  if (EqualsIgnoringCase(word, "model"))
    AddNote("*Error : No Model attribute found for component " + comp.RefName());
}

void CSpiceGen::DefaultByPrefix(std::string& body, SpiceComp& comp) {
  const std::string& ref = comp.RefName();
  const char first = ref.empty() ? '\0' : ref[0];
  if (first != '\0' && std::string("BDJKMQX").find(first) != std::string::npos) {
    std::string model = ModelPart(comp.Name());
    // An X line that already calls its sub-circuit by that name does not call it twice.
    if (!walk.calledNameWritten) {
      body += ' ';
      body += model;
    }
    RegisterModel(model, comp);
    AddNote("*Warning: No Model For " + ref + ".Defaulting  to " + model);
    return;
  }
  if (first != '\0' && std::string("CEFGHILRV").find(first) != std::string::npos) {
    body += " 0";
    AddNote("*Warning: No Value For " + ref + ".Defaulting  to 0");
    return;
  }
  AddNote("*Warning: No Value For " + ref + ".No Default");
}
