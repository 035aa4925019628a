// The answers DialectOf gives for each flavour switch and the switches that change them.
#include "gen/dialect_of.h"

#include <gtest/gtest.h>

#include <string>

namespace {

WireOptions Switches(int32_t kind, bool dracula = false, bool hdl = false, bool analog = false,
                     bool nodeNames = false) {
  WireOptions o;
  o.wirelistKind = kind;
  o.dracula = dracula;
  o.hdlSpiceSources = hdl ? 1 : 0;
  o.analogDeps = analog;
  o.useNodeNames = nodeNames;
  return o;
}

TEST(DialectOf, TheDefaultsAreThoseOfTheDefaultSwitches) {
  const Dialect built = DialectOf(WireOptions());
  const Dialect plain;
  EXPECT_EQ(built.flavour, plain.flavour);
  EXPECT_EQ(built.nameRule, plain.nameRule);
  EXPECT_EQ(built.printStyle, plain.printStyle);
  EXPECT_EQ(built.quoteSet, plain.quoteSet);
  EXPECT_EQ(built.namesNetsAtLoad, plain.namesNetsAtLoad);
  EXPECT_EQ(built.globalNetMark, plain.globalNetMark);
  EXPECT_EQ(built.instanceParameters, plain.instanceParameters);
  EXPECT_EQ(built.bracedExpressions, plain.bracedExpressions);
  EXPECT_EQ(built.bracketedProbeNodes, plain.bracketedProbeNodes);
  EXPECT_EQ(built.csdfProbeLine, plain.csdfProbeLine);
  EXPECT_EQ(built.quotedValues, plain.quotedValues);
  EXPECT_EQ(built.pspiceQuotesAlways, plain.pspiceQuotesAlways);
  EXPECT_EQ(built.completedBraces, plain.completedBraces);
  EXPECT_EQ(built.paramsKeyword, plain.paramsKeyword);
  EXPECT_EQ(built.dropsParamsKeyword, plain.dropsParamsKeyword);
  EXPECT_EQ(built.frame.globals, plain.frame.globals);
  EXPECT_EQ(built.frame.endMark, plain.frame.endMark);
}

TEST(DialectOf, EachFlavourAndItsModes) {
  struct Case {
    const char* name;
    WireOptions switches;
    DeckFlavour flavour;
    NameRule names;
    PrintStyle prints;
    QuoteSet quotes;
    DeckFrame::Globals globals;
    bool endMark;
    bool paramsKeyword;
    bool dropsParams;
  };
  const Case cases[] = {
      {"-p", Switches(kPspice), DeckFlavour::kPspice, NameRule::kPspice, PrintStyle::kPspice,
       QuoteSet::kPspice, DeckFrame::kNoGlobals, true, true, false},
      {"-p -9", Switches(kPspice, false, false, true), DeckFlavour::kPspice, NameRule::kAnalog,
       PrintStyle::kPspice, QuoteSet::kPspice, DeckFrame::kNoGlobals, true, true, false},
      {"-m", Switches(kHspice), DeckFlavour::kHspice, NameRule::kWide, PrintStyle::kAnalysis,
       QuoteSet::kTicks, DeckFrame::kGlobalsBeforeIncludes, true, false, true},
      {"-e", Switches(kHspice, true), DeckFlavour::kHspice, NameRule::kDracula, PrintStyle::kAnalysis,
       QuoteSet::kTicks, DeckFrame::kNoGlobals, false, false, true},
      {"-s", Switches(kBerkeley), DeckFlavour::kBerkeley, NameRule::kAlnum, PrintStyle::kBerkeley,
       QuoteSet::kFromConfig, DeckFrame::kGlobalsBeforeIncludes, true, false, false},
      {"-s -n", Switches(kBerkeley, false, false, false, true), DeckFlavour::kBerkeley, NameRule::kWide,
       PrintStyle::kBerkeley, QuoteSet::kFromConfig, DeckFrame::kGlobalsBeforeIncludes, true, false, false},
      {"-e -s", Switches(kBerkeley, true), DeckFlavour::kBerkeley, NameRule::kDracula, PrintStyle::kBerkeley,
       QuoteSet::kTicks, DeckFrame::kGlobalsBeforeIncludes, true, false, true},
      {"-_", Switches(kKelpo), DeckFlavour::kKelpo, NameRule::kWide, PrintStyle::kAnalysis, QuoteSet::kTicks,
       DeckFrame::kGlobalsAtEnd, true, false, false},
      {"-__", Switches(kKelpo, false, true), DeckFlavour::kKelpo, NameRule::kWide, PrintStyle::kAnalysis,
       QuoteSet::kTicks, DeckFrame::kGlobalsAtEnd, false, false, false},
  };
  for (const Case& c : cases) {
    const Dialect d = DialectOf(c.switches);
    EXPECT_EQ(d.flavour, c.flavour) << c.name;
    EXPECT_EQ(d.nameRule, c.names) << c.name;
    EXPECT_EQ(d.printStyle, c.prints) << c.name;
    EXPECT_EQ(d.quoteSet, c.quotes) << c.name;
    EXPECT_EQ(d.frame.globals, c.globals) << c.name;
    EXPECT_EQ(d.frame.endMark, c.endMark) << c.name;
    EXPECT_EQ(d.paramsKeyword, c.paramsKeyword) << c.name;
    EXPECT_EQ(d.dropsParamsKeyword, c.dropsParams) << c.name;
  }
}

TEST(DialectOf, KelpoFramesAndTheSpecialModes) {
  const Dialect kelpo = DialectOf(Switches(kKelpo));
  EXPECT_TRUE(kelpo.frame.hdlIncludes && kelpo.frame.generatorStatements && kelpo.hdlModels &&
              kelpo.genhdlFolder && kelpo.netUidMap);
  EXPECT_FALSE(DialectOf(Switches(kPspice)).netUidMap);
  EXPECT_FALSE(kelpo.frame.definitionsBehindRoot);
  const Dialect sources = DialectOf(Switches(kKelpo, false, true));
  EXPECT_TRUE(sources.frame.definitionsBehindRoot && sources.hdlSources);
  EXPECT_FALSE(sources.bracedExpressions);
  const Dialect dracula = DialectOf(Switches(kHspice, true));
  EXPECT_TRUE(dracula.frame.rootAsDefinition && dracula.dracula);
  EXPECT_FALSE(dracula.frame.optionsLine);
  EXPECT_TRUE(DialectOf(Switches(kHspice)).frame.optionsLine);
  // The .PROBE/CSDF line of flat decks: Pspice with .PROBE, or any dialect under -9.
  WireOptions print = Switches(kPspice);
  print.printWord = ".PRINT";
  EXPECT_FALSE(DialectOf(print).csdfProbeLine);
  EXPECT_TRUE(DialectOf(Switches(kBerkeley, false, false, true)).csdfProbeLine);
  EXPECT_FALSE(DialectOf(Switches(kBerkeley)).csdfProbeLine);
}

}  // namespace
