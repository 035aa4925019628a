// The deck's naming rules as the walk applies them: node texts, legal names, the "$G_" mark
// of global nets, and instance names with their X and Y prefixes.
#include "gen/deck_naming.h"

#include <algorithm>

#include "design/spice_comp.h"
#include "expr/text.h"
#include "gen/node_text.h"

namespace {

// The prefix of the deck name, by -y, PREFIX and the kind; false when the component gets
// no name at all (a stopped instance without a prefix).
bool ChoosePrefix(const SpiceComp& comp, const WireOptions& options, std::string& prefix) {
  prefix = comp.attrs.Get("PREFIX");
  std::string alternative =
      options.firstPrefix.empty() ? prefix : comp.attrs.Get(UpperText(options.firstPrefix));
  if ((comp.kind == kPrimitive || comp.kind == kStoppedInstance) && !alternative.empty()) {
    prefix = alternative;
    return true;
  }
  if (!prefix.empty() && prefix != " ") return true;
  if (options.dialect.hdlModels && comp.IsHdlModel()) {
    prefix = "Y";
    return true;
  }
  if (comp.kind == kInstance) {
    prefix = "X";
    return true;
  }
  return comp.kind != kStoppedInstance;
}

class SpiceNaming final : public DeckNaming {
 public:
  std::string NodeName(WireOptions& options, const std::string& name, NodeTable& table) const override {
    return ::NodeName(options, name, table);
  }
  std::string LegalName(const WireOptions& options, const std::string& name) const override {
    return LegalizeName(options, name);
  }
  std::string GlobalNodeName(const WireOptions& options, const std::string& label) const override {
    return ::GlobalNodeName(options, label);
  }
  std::string DeckName(const SpiceComp& comp, const WireOptions& options) const override {
    std::string text;
    if (!RawDeckName(comp, options, text)) return "";
    return UniqueName(*options.usedNames, LegalizeName(options, text));
  }
};

}  // namespace

bool RawDeckName(const SpiceComp& comp, const WireOptions& options, std::string& text) {
  std::string prefix;
  if (!ChoosePrefix(comp, options, prefix)) return false;
  std::string designator = comp.attrs.Get("REF DESIGNATOR");
  if (designator.empty()) designator = comp.attrs.Get("REFDES");

  const std::string& label = comp.label;
  text = label;
  // An automatic label gives way to a designator, unless that is a mere "U?".
  size_t question = designator.find('?');
  if (label.find('$') != std::string::npos && !designator.empty() && designator != " " &&
      question != designator.size() - 1)
    text = designator;
  // The label begins with the prefix, case aside: read in place, without lower-case copies.
  const bool labelHasPrefix = label.size() >= prefix.size() &&
                              EqualsIgnoringCase(std::string_view(label).substr(0, prefix.size()), prefix);
  if (!labelHasPrefix) text = options.flatten ? prefix + "\\" + text : prefix + text;
  text.erase(std::remove(text.begin(), text.end(), '$'), text.end());
  if (options.flatten && !comp.hierName.empty())
    text = text.substr(0, 1) + "\\" + comp.hierName + "\\" + text.substr(std::min<size_t>(1, text.size()));
  return true;
}

const DeckNaming& SpiceDeckNaming() {
  static const SpiceNaming naming;
  return naming;
}
