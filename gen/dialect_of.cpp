// DialectOf: the flavour switches read once, every flavour's answers set in one place.
#include "gen/dialect_of.h"

namespace {

DeckFrame FrameOf(const WireOptions& o) {
  DeckFrame frame;
  switch (o.wirelistKind) {
    case kHspice:
      // Dracula decks have the root as a definition and no closing lines of their own.
      frame.rootAsDefinition = o.dracula;
      frame.globals = o.dracula ? DeckFrame::kNoGlobals : DeckFrame::kGlobalsBeforeIncludes;
      frame.optionsLine = !o.dracula;
      frame.endMark = !o.dracula;
      break;
    case kBerkeley:
      frame.globals = DeckFrame::kGlobalsBeforeIncludes;
      break;
    case kKelpo:
      frame.hdlIncludes = true;
      // HDL-source decks hold the definitions behind the root's lines and have no end line.
      frame.definitionsBehindRoot = o.hdlSpiceSources;
      frame.generatorStatements = true;
      frame.globals = DeckFrame::kGlobalsAtEnd;
      frame.endMark = !o.hdlSpiceSources;
      break;
    default:
      break;
  }
  return frame;
}

NameRule NameRuleOf(const WireOptions& o) {
  if (o.wirelistKind == kPspice && !o.analogDeps) return NameRule::kPspice;
  if (o.dracula) return NameRule::kDracula;
  if (o.analogDeps) return NameRule::kAnalog;
  if (o.wirelistKind == kHspice || o.wirelistKind == kKelpo ||
      (o.wirelistKind == kBerkeley && o.useNodeNames))
    return NameRule::kWide;
  return NameRule::kAlnum;
}

}  // namespace

Dialect DialectOf(const WireOptions& o) {
  const bool pspice = o.wirelistKind == kPspice;
  const bool hspice = o.wirelistKind == kHspice;
  const bool berkeley = o.wirelistKind == kBerkeley;
  const bool kelpo = o.wirelistKind == kKelpo;
  Dialect d;
  d.flavour = kelpo      ? DeckFlavour::kKelpo
              : hspice   ? DeckFlavour::kHspice
              : berkeley ? DeckFlavour::kBerkeley
                         : DeckFlavour::kPspice;
  d.frame = FrameOf(o);

  d.nameRule = NameRuleOf(o);
  d.namesNetsAtLoad = (pspice || kelpo || hspice) && o.useNodeNames;
  d.globalNetMark = pspice;
  d.hdlModels = kelpo;
  d.genhdlFolder = kelpo;
  d.netUidMap = kelpo;

  d.instanceParameters = pspice || kelpo || hspice || o.analogDeps;
  d.bracedExpressions = !hspice && !o.hdlSpiceSources;

  d.printStyle = pspice ? PrintStyle::kPspice : berkeley ? PrintStyle::kBerkeley : PrintStyle::kAnalysis;
  d.bracketedProbeNodes = pspice && !o.analogDeps;
  d.csdfProbeLine = o.analogDeps || (pspice && o.printWord == ".PROBE");

  d.quoteSet = (o.dracula || hspice || kelpo) ? QuoteSet::kTicks
               : pspice                       ? QuoteSet::kPspice
                                              : QuoteSet::kFromConfig;
  d.quotedValues = !berkeley;
  d.pspiceQuotesAlways = pspice;
  d.completedBraces = kelpo;
  d.paramsKeyword = pspice || o.analogDeps;
  d.dropsParamsKeyword = o.dracula || hspice;

  d.dracula = o.dracula;
  d.hdlSources = o.hdlSpiceSources != 0;
  return d;
}
