// The pins of a large block: from a few thousand components on, a block's pins are read in two
// halves at once. Each component must still get its own pins, whatever lies between: excluded
// components, which take none, and primitives among the instances.
#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "tests/deck_harness.h"

namespace {

// TOP: `count` components on a chain of nets N0, N1, ...; component i joins N<i> and N<i+1>.
// Every seventh is a resistor, every 1000th an excluded resistor, the others instances of LEAF.
std::string ChainDesign(int count) {
  std::ostringstream json;
  json << R"({"symbols": {"RES.1": {"PREFIX": "R", "ORDER": "VALUE$"}},)"
       << R"("blocks": [{"name": "LEAF", "ports": [{"name": "A", "net": "A"}, {"name": "B", "net": "B"}],)"
       << R"("components": [{"label": "RL", "name": "RES.1", "attributes": {"VALUE": "1K"},)"
       << R"("pins": [{"name": "A", "net": "A"}, {"name": "B", "net": "B"}]}]},)"
       << R"({"name": "TOP", "components": [)";
  for (int i = 0; i < count; ++i) {
    if (i > 0) json << ",";
    std::string pins = R"("pins": [{"name": "A", "net": "N)" + std::to_string(i) + R"("}, {"name": "B", "net": "N)" +
                       std::to_string(i + 1) + R"("}])";
    if (i % 1000 == 999)
      json << R"({"label": "E)" << i << R"(", "name": "RES.1", "attributes": {"VALUE": "1", "EXCLUDE": "yes"}, )"
           << pins << "}";
    else if (i % 7 == 3)
      json << R"({"label": "R)" << i << R"(", "name": "RES.1", "attributes": {"VALUE": "2K"}, )" << pins << "}";
    else
      json << R"({"label": "X)" << i << R"(", "type": 2, "child": "LEAF", )" << pins << "}";
  }
  json << "]}]}";
  return json.str();
}

TEST(BlockPins, EachComponentOfALargeBlockGetsItsOwnNets) {
  for (int count : {20, 9001}) {
    VeskRun run = RunVesk(ChainDesign(count), "-h TOP");
    ASSERT_EQ(run.rc, 0) << count << ": " << run.output;
    // The nodes of the nets, from the dictionary lines "* N12=13" behind the top level.
    std::map<std::string, std::string> node;
    std::map<std::string, std::vector<std::string>> lines;  // deck name -> its words
    std::istringstream deck(run.deck);
    for (std::string line; std::getline(deck, line);) {
      if (line.rfind("* N", 0) == 0 && line.find('=') != std::string::npos) {
        node[line.substr(2, line.find('=') - 2)] = line.substr(line.find('=') + 1);
        continue;
      }
      if (line.empty() || (line[0] != 'X' && line[0] != 'R')) continue;
      std::istringstream words(line);
      std::vector<std::string> split;
      for (std::string word; words >> word;) split.push_back(word);
      lines[split[0]] = split;
    }
    int checked = 0;
    for (int i = 0; i < count; ++i) {
      const std::string from = "N" + std::to_string(i), to = "N" + std::to_string(i + 1);
      if (i % 1000 == 999) {
        EXPECT_EQ(lines.count("E" + std::to_string(i)) + lines.count("RE" + std::to_string(i)), 0u) << i;
        continue;
      }
      const std::string name = (i % 7 == 3 ? "R" : "X") + std::to_string(i);
      auto found = lines.find(name);
      ASSERT_NE(found, lines.end()) << count << ": " << name;
      const std::vector<std::string>& words = found->second;
      ASSERT_GE(words.size(), 4u) << name;
      ASSERT_TRUE(node.count(from) && node.count(to)) << name;
      EXPECT_EQ(words[1], node[from]) << name;
      EXPECT_EQ(words[2], node[to]) << name;
      EXPECT_EQ(words[3], i % 7 == 3 ? "2.000000K" : "LEAF") << name;
      ++checked;
    }
    EXPECT_EQ(checked, count - count / 1000) << count;
  }
}

}  // namespace
