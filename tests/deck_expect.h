// Pieces of expected whole decks, for the deck tests that run the built program.
#pragma once

#include <string>

namespace deckexpect {

/// The comment header of a deck named after block TOP, as it stands after both passes: the
/// empty line that the post-process pass puts first, the header lines with their trailing
/// blanks trimmed, and the empty line behind the date, which the probe pass of a
/// hierarchical deck drops.
inline std::string Head(const std::string& options, bool probePassRan = false) {
  return std::string("\n") +
         "* Project TOP\n"
         "* Norvane Wirelist Created with Version 6.4.002\n"
         "* File created <date>\n" +
         (probePassRan ? "" : "\n") +
         "* Inifile   :\n"
         "* ConfigFile:  galt\\standard\\vesk.cfg\n"
         "* Options   :  " +
         options +
         "\n"
         "* Levels    :\n"
         "*\n";
}

/// A design of one block TOP holding `components` and, when given, `nets`: each the text of a
/// JSON array's items.
inline std::string TopDesign(const std::string& components, const std::string& nets = "") {
  return R"({ "blocks": [ { "name": "TOP", )" + (nets.empty() ? "" : R"("nets": [ )" + nets + " ], ") +
         R"("components": [ )" + components + " ] } ] }";
}

}  // namespace deckexpect
