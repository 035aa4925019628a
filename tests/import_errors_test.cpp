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
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","net":")"
     R"(y","nets":["z"]}]}]}]})",
     "blocks[0].components[0].pins[1].nets: give either net or nets, not both"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","nets":)"
     R"("z"}]}]}]})",
     "blocks[0].components[0].pins[1].nets: expected a list"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","nets":)"
     R"(["z",3]}]}]}]})",
     "blocks[0].components[0].pins[1].nets[1]: expected text"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","width")"
     R"(:"4"}]}]}]})",
     "blocks[0].components[0].pins[1].width: expected a whole number"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","width")"
     R"(:-4}]}]}]})",
     "blocks[0].components[0].pins[1].width: number out of range"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","connec)"
     R"(ted":1}]}]}]})",
     "blocks[0].components[0].pins[1].connected: expected true or false"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","bus":f)"
     R"(alse}]}]}]})",
     "blocks[0].components[0].pins[1].bus: expected text"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","net":4)"
     R"(}]}]}]})",
     "blocks[0].components[0].pins[1].net: expected text"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","name":)"
     R"("C"}]}]}]})",
     "blocks[0].components[0].pins[1].name: duplicate key"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","net":"x"},{"name":"B","extra")"
     R"(:{"a":1,"a":2}}]}]}]})",
     "blocks[0].components[0].pins[1].extra.a: duplicate key"},
    {R"({"blocks":[{"name":"A"},{"name":"B","nets":[{"label":"a"},{"label":"b"},{"label":"c","global":"yes"})"
     R"(]}]})",
     "blocks[1].nets[2].global: expected true or false"},
    {R"({"blocks":[{"name":"A","nets":[{"label":"a","attributes":{"P":2}}]}]})",
     "blocks[0].nets[0].attributes.P: expected text"},
    {R"({"blocks":[{"name":"A","nets":[{"global":true}]}]})",
     "blocks[0].nets[0].label: missing required field"},
    {R"({"blocks":[{"name":"A","nets":[{"label":"a","number":"2"}]}]})",
     "blocks[0].nets[0].number: expected a whole number"},
    {R"({"blocks":[{"name":"A","ports":[{"net":"a"}]}]})", "blocks[0].ports[0].name: missing required field"},
    {R"({"blocks":[{"name":"A","ports":[{"name":"P","net":"a"},{"name":"Q","nets":[true]}]}]})",
     "blocks[0].ports[1].nets[0]: expected text"},
    {R"({"blocks":[{"name":"A","ports":[{"name":"P","attributes":{"S":{}}}]}]})",
     "blocks[0].ports[0].attributes.S: expected text"},
    {R"({"blocks":[{"name":"A","ports":[{"name":"P","connected":"no"}]}]})",
     "blocks[0].ports[0].connected: expected true or false"},
    {R"({"blocks":[{"name":"A","components":[3]}]})", "blocks[0].components[0]: expected an object"},
    {R"({"blocks":[{"name":"A","nets":["a"]}]})", "blocks[0].nets[0]: expected an object"},
    {R"({"blocks":[{"name":"A","components":{}}]})", "blocks[0].components: expected a list"},
    {R"({"blocks":[{"components":[]}]})", "blocks[0].name: missing required field"},
    {R"({"blocks":[{"name":"A"},{"name":"B","components":[{"label":"R"},{"label":"S"},{"label":"T","pins":[{)"
     R"("name":"A","net":"x"},{"name":"B","nets":["y",{}]}]}]}]})",
     "blocks[1].components[2].pins[1].nets[1]: expected text"},
    {R"({"symbols":{"S":{"K":1}},"blocks":[]})", "symbols.S.K: expected text"},
    {R"({"symbols":{"S":3},"blocks":[]})", "symbols.S: expected an object"},
    {R"({"groups":{"G":{"internal_id":4}},"blocks":[]})", "groups.G.internal_id: expected text"},
    {R"({"groups":{"G":{"type":"t"}},"blocks":[]})", "groups.G.type: expected a whole number"},
    {"{\"blocks\":[{\"name\":\"A\",\n \"components\":[{\"label\":\"R\",}]}]}",
     "line 2, column 29: not JSON: syntax error while parsing object key - unexpected '}'; expected string "
     "literal"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","label":"S"}]}]})",
     "blocks[0].components[0].label: duplicate key"},
    {R"([1,2])", "(document): expected an object"},
    {R"({"blocks":{}})", "blocks: expected a list"},
    {R"({"snapshot":3,"blocks":[]})", "snapshot: expected text"},
    {R"({"testbenches":{"t":3},"blocks":[]})", "testbenches.t: expected text"},
    // Repeated keys in large objects (a set of the keys), and places inside lists within an item.
    {R"({"blocks":[{"name":"A","components":[{"label":"R","attributes":{"K0":"v","K1":"v","K2":"v","K3":"v",)"
     R"("K4":"v","K5":"v","K6":"v","K7":"v","K8":"v","K9":"v","K10":"v","K11":"v","K12":"v","K13":"v","K14":)"
     R"("v","K15":"v","K16":"v","K17":"v","K18":"v","K19":"v","K3":"w"}}]}]})",
     "blocks[0].components[0].attributes.K3: duplicate key"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","pins":[{"name":"A","u0":0,"u1":1,"u2":2,"u3":3,"u)"
     R"(4":4,"u5":5,"u6":6,"u7":7,"u8":8,"u9":9,"u10":10,"u11":11,"u12":12,"u13":13,"u14":14,"u15":15,"u16":)"
     R"(16,"u16":1}]}]}]})",
     "blocks[0].components[0].pins[0].u16: duplicate key"},
    {R"({"groups":{"G0":{},"G1":{},"G2":{},"G3":{},"G4":{},"G5":{},"G6":{},"G7":{},"G8":{},"G9":{},"G10":{},)"
     R"("G11":{},"G12":{},"G13":{},"G14":{},"G15":{},"G16":{},"G17":{},"G18":{},"G19":{},"G7":{}},"blocks":[)"
     R"(]})",
     "groups.G7: duplicate key"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R",)"
     R"("pins":[{"name":"A","x":[[1,{"a":1,"a":2}]]}]}]}]})",
     "blocks[0].components[0].pins[0].x[0][1].a: duplicate key"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R","x":[1,"t",null,{"b":1,"b":1}]}]}]})",
     "blocks[0].components[0].x[3].b: duplicate key"},
    {R"({"blocks":[{"name":"A","nets":[{"label":"a"},{"label":"b","attributes":{"P":"1"},"number":1,"number")"
     R"(:2}]}]})",
     "blocks[0].nets[1].number: duplicate key"},
    {R"({"blocks":[{"name":"A","components":[{"label":"R"}],"extra":[{"k":1,"k":2}]}]})",
     "blocks[0].extra[0].k: duplicate key"},
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
