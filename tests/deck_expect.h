// Pieces of designs and of expected whole decks, for the deck tests that run the built program.
#pragma once

#include <sstream>
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

/// Pins as JSON array items: "A=IN B" is pin A on net IN and pin B without a net.
inline std::string PinItems(const std::string& pins) {
  std::istringstream words(pins);
  std::string word, items;
  while (words >> word) {
    size_t equals = word.find('=');
    items += std::string(items.empty() ? "" : ", ") + R"({ "name": ")" + word.substr(0, equals) + "\"" +
             (equals == std::string::npos ? "" : R"(, "net": ")" + word.substr(equals + 1) + "\"") + " }";
  }
  return items;
}

/// A component as JSON: its label, part name, the body of its attribute object (none when
/// empty), its pins as for PinItems, and further members such as `"type": 2, "child": "SUB"`.
inline std::string Part(const std::string& label, const std::string& name, const std::string& attributes,
                        const std::string& pins, const std::string& extra = "") {
  return R"({ "label": ")" + label + R"(", "name": ")" + name + "\", " +
         (attributes.empty() ? "" : R"("attributes": { )" + attributes + " }, ") +
         (extra.empty() ? "" : extra + ", ") + R"("pins": [ )" + PinItems(pins) + " ] }";
}

}  // namespace deckexpect
