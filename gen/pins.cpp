// A component's nodes on its line: pin order, unconnected pins, bracketed HDL groups.
#include <cstring>

#include "expr/text.h"
#include "gen/spice_gen.h"

namespace {

bool IsWhiteSpace(char c) { return std::strchr(kWhiteSpace, c) != nullptr && c != '\0'; }

bool HoldsInnerBlank(const std::string& text) {
  return text.size() > 1 && text.find(' ', 1) != std::string::npos;
}

// Pins are written unless "No Pins" (or NO_PINS) says otherwise: empty, "0" or "false".
bool PinsWanted(const SpiceComp& comp) {
  const std::string& spaced = comp.Attributes().Get("NO PINS");
  const std::string& noPins = spaced.empty() ? comp.Attributes().Get("NO_PINS") : spaced;
  if (noPins.empty() || noPins == "0") return true;
  return LowerText(noPins) == "false";
}

const std::string kNoNet;

const std::string& PinListText(const SpiceComp& comp) {
  if (comp.HasModelPins()) return comp.ModelPinList();
  const std::string& pinOrder = comp.Attributes().Get("PIN ORDER");
  return pinOrder.empty() ? comp.Attributes().Get("PINORDER") : pinOrder;
}

}  // namespace

void CSpiceGen::WritePins(const SpiceComp& comp, bool group) {
  if (!PinsWanted(comp)) return;
  const std::string& pinList = PinListText(comp);
  const std::vector<PinEntry>& pinNets = comp.PinNets();
  if (pinList.empty() || pinList == " ") {
    for (const PinEntry& entry : pinNets) {
      if (!entry.net.IsConnected()) AddNote("* Pin  is not connected");
      WritePinNode(entry.net.Name(), group, nullptr);
    }
    return;
  }
  size_t k = 0;
  for (size_t pos = 0; pos <= pinList.size(); ++k) {
    size_t blank = pinList.find(' ', pos);
    if (blank == std::string::npos) blank = pinList.size();
    const std::string_view word(pinList.data() + pos, blank - pos);
    if (word.empty()) break;
    pos = blank + 1;
    const SpiceNet* pin = comp.FindPin(word);
    if (pin && !pin->IsConnected())
      AddNote("* Pin " + comp.RefName() + "." + std::string(word) + " is not connected");
    const SpiceNet* entry = k < pinNets.size() ? &pinNets[k].net : nullptr;
    WritePinNode(pin ? pin->Name() : kNoNet, group, entry);
  }
}

void CSpiceGen::WritePinNode(const std::string& net, bool group, const SpiceNet* entry) {
  size_t position = SIZE_MAX;
  std::string node = HoldsInnerBlank(net) ? MapNodeList(net) : NodeName(net, position);
  // Node texts rarely carry white space at an end: looked at before the trim is run. The line
  // names the trimmed node; it is known by its entry only when that is the entry's node.
  if (!node.empty() && (IsWhiteSpace(node.front()) || IsWhiteSpace(node.back()))) {
    TrimInPlace(node);
    position = SIZE_MAX;
  }
  if (group && entry && entry->busBit && entry->firstBit) {
    out << " ( " << node;
  } else if (group && entry && entry->busBit && entry->lastBit) {
    out << ' ' << node << " )";
  } else if (group && HoldsInnerBlank(node)) {
    out << " ( " << node << " )";
  } else {
    out << ' ' << node;
  }
  if (node == "0") groundSeen = true;
  if (!net.empty() && net != node) OfferNetLine(net, node, position);
}

std::string CSpiceGen::MapNodeList(std::string nets) {
  std::string result;
  size_t pos = 0;
  while (pos < nets.size()) {
    size_t blank = nets.find(' ', pos);
    if (blank == std::string::npos) blank = nets.size();
    if (blank > pos) {
      result += NodeName(nets.substr(pos, blank - pos));
      result += ' ';
    }
    pos = blank + 1;
  }
  size_t first = result.find_first_not_of(" \t\r\n\f\v");
  return first == std::string::npos ? std::string() : result.substr(first);
}
