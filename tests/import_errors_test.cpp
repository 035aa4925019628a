// The place and reason that an import names for each kind of bad field, exactly: the JSON path
// of the field (blocks[1].components[2].pins[1].nets[1]) is only made when the field is bad, so
// these pin the text of every path the reader can report.
#include <gtest/gtest.h>

#include <string>

#include "design/db/design_import.h"

namespace {

// A description with one fault, and the whole message it gives.
const std::pair<const char*, const char*> kFaults[] = {
    {R"({"blocks":[{"name":"A","components":[{"name":"R"}]}]})",
     "blocks[0].components[0].label: missing required field"},
    {R"({"blocks":[{"name":"A","components":[{"label":5}]}]})",
     "blocks[0].components[0].label: expected text"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","type":"x"}]}]})",
     "blocks[0].components[0].type: expected a whole number"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","type":-1}]}]})",
     "blocks[0].components[0].type: number out of range"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","name":7}]}]})",
     "blocks[0].components[0].name: expected text"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","partition":[]}]}]})",
     "blocks[0].components[0].partition: expected text"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","child":1}]}]})",
     "blocks[0].components[0].child: expected text"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","attributes":[]}]}]})",
     "blocks[0].components[0].attributes: expected an object"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","attributes":{"V":"1","W":1}}]}]})",
     "blocks[0].components[0].attributes.W: expected text"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","definition":{"K":null}}]}]})",
     "blocks[0].components[0].definition.K: expected text"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","group":3}]}]})",
     "blocks[0].components[0].group: expected text"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","number":1.5}]}]})",
     "blocks[0].components[0].number: expected a whole number"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":{}}]}]})",
     "blocks[0].components[0].pins: expected a list"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[5]}]}]})",
     "blocks[0].components[0].pins[0]: expected an object"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"net":"y"}]}]}]})",
     "blocks[0].components[0].pins[1].name: missing required field"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","net":"y","nets":["z"]}]}]}]})",
     "blocks[0].components[0].pins[1].nets: give either net or nets, not both"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","nets":"z"}]}]}]})",
     "blocks[0].components[0].pins[1].nets: expected a list"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","nets":["z",3]}]}]}]})",
     "blocks[0].components[0].pins[1].nets[1]: expected text"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","width":"4"}]}]}]})",
     "blocks[0].components[0].pins[1].width: expected a whole number"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","width":-4}]}]}]})",
     "blocks[0].components[0].pins[1].width: number out of range"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","connected":1}]}]}]})",
     "blocks[0].components[0].pins[1].connected: expected true or false"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","bus":false}]}]}]})",
     "blocks[0].components[0].pins[1].bus: expected text"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","net":4}]}]}]})",
     "blocks[0].components[0].pins[1].net: expected text"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","name":"C"}]}]}]})",
     "blocks[0].components[0].pins[1].name: duplicate key"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","extra":{"a":1,"a":2}}]}]}]})",
     "blocks[0].components[0].pins[1].extra.a: duplicate key"},
    {R"({"blocks":[{"name":"A"},{"name":"B","nets":[{"label":"a"},{"label":"b"},{"label":"c","global":"yes"}]}]})",
     "blocks[1].nets[2].global: expected true or false"},
    {R"({"blocks":[{"name":"A","nets":[{"label":"a","attributes":{"P":2}}]}]})",
     "blocks[0].nets[0].attributes.P: expected text"},
    {R"({"blocks":[{"name":"A","nets":[{"global":true}]}]})",
     "blocks[0].nets[0].label: missing required field"},
    {R"({"blocks":[{"name":"A","nets":[{"label":"a","number":"2"}]}]})",
     "blocks[0].nets[0].number: expected a whole number"},
    {R"({"blocks":[{"name":"A","ports":[{"net":"a"}]}]})",
     "blocks[0].ports[0].name: missing required field"},
    {R"({"blocks":[{"name":"A","ports":[{"name":"P","net":"a"},{"name":"Q","nets":[true]}]}]})",
     "blocks[0].ports[1].nets[0]: expected text"},
    {R"({"blocks":[{"name":"A","ports":[{"name":"P","attributes":{"S":{}}}]}]})",
     "blocks[0].ports[0].attributes.S: expected text"},
    {R"({"blocks":[{"name":"A","ports":[{"name":"P","connected":"no"}]}]})",
     "blocks[0].ports[0].connected: expected true or false"},
    {R"({"blocks":[{"name":"A","components":[3]}]})",
     "blocks[0].components[0]: expected an object"},
    {R"({"blocks":[{"name":"A","nets":["a"]}]})",
     "blocks[0].nets[0]: expected an object"},
    {R"({"blocks":[{"name":"A","components":{}}]})",
     "blocks[0].components: expected a list"},
    {R"({"blocks":[{"components":[]}]})",
     "blocks[0].name: missing required field"},
    {R"({"blocks":[{"name":"A"},{"name":"B","components":[{"label":"R"},{"label":"S"},{"label":"T","pins":[{"name":"A","net":"x"},{"name":"B","nets":["y",{}]}]}]}]})",
     "blocks[1].components[2].pins[1].nets[1]: expected text"},
    {R"({"symbols":{"S":{"K":1}},"blocks":[]})",
     "symbols.S.K: expected text"},
    {R"({"symbols":{"S":3},"blocks":[]})",
     "symbols.S: expected an object"},
    {R"({"groups":{"G":{"internal_id":4}},"blocks":[]})",
     "groups.G.internal_id: expected text"},
    {R"({"groups":{"G":{"type":"t"}},"blocks":[]})",
     "groups.G.type: expected a whole number"},
    {"{\"blocks\":[{\"name\":\"A\",\n \"components\":[{\"label\":\"R\",}]}]}",
     "line 2, column 29: not JSON: syntax error while parsing object key - unexpected '}'; expected string literal"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","label":"S"}]}]})",
     "blocks[0].components[0].label: duplicate key"},
    {R"([1,2])",
     "(document): expected an object"},
    {R"({"blocks":{}})",
     "blocks: expected a list"},
    {R"({"snapshot":3,"blocks":[]})",
     "snapshot: expected text"},
    {R"({"testbenches":{"t":3},"blocks":[]})",
     "testbenches.t: expected text"},
};

TEST(ImportErrors, EachFaultIsNamedByItsPathAndReason) {
  std::string folder = ::testing::TempDir() + "/vesk-import-errors";
  for (const auto& [json, message] : kFaults) {
    std::string error;
    EXPECT_FALSE(ImportDesign(json, folder, error)) << json;
    EXPECT_EQ(error, message) << json;
  }
}

}  // namespace
