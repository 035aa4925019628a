// Whole runs with broken and hostile mapping files: each gives the error line on the console or
// is passed over, the deck is written without the model's data, and nothing is fetched.
#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <string>

#include "tests/deck_harness.h"

namespace {

// A VHDL-AMS instance U1 of mylib.counter, with a resistor to ground behind it.
const char kDesign[] = R"({ "groups": { "G1": { "internal_id": "7A" } }, "blocks": [ { "name": "TOP",
    "components": [ { "label": "U1", "name": "CNT",
    "attributes": { "SIMULATION MODEL": "VHDL", "VHDL MODEL": "mylib.counter", "PART NUMBER": "PN2" },
    "group": "G1", "number": 1,
    "pins": [ { "name": "RST", "net": "GND" }, { "name": "CLK", "net": "CK" }, { "name": "Q",
        "net": "QO" } ] },
    { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "1K" }, "definition": { "ORDER": "VALUE$" },
    "pins": [ { "name": "A", "net": "QO" }, { "name": "B", "net": "GND" } ] } ] } ] })";

const char kModelsError[] = "Error while reading 'Sym/Models_Info.xml' file\n";
const char kInstancesError[] = "Error while reading 'sym\\Instances_Info.xml' file\n";

// The declaration of counter, its ports CLK and Q, and WIDTH with the default 4; `extra` goes
// in front of the root element, `part` is the text of the part element's first child.
std::string Mapping(const std::string& extra = "", const std::string& part = "<Info/>") {
  return "<?xml version=\"1.0\"?>\n" + extra + "<Models><Part Name=\"PN2\">" + part +
         "<Symbol Name=\"CNT\"><Model Name=\"counter\" Library=\"mylib\" ModelFile=\"\" ModType=\"\">"
         "<Ports><Port Assigned=\"1\">CLK</Port><Port Assigned=\"1\">Q</Port></Ports>"
         "<Params><Param Name=\"WIDTH\" Type=\"integer\" DefValue=\"4\"><V/><A/></Param></Params>"
         "</Model></Symbol></Part></Models>\n";
}

const char kInstances[] =
    "<Instances><Block Name=\"CNT\"><Instance Name=\"$7AI1\"><Model Name=\"counter\" Library=\"mylib\">"
    "<Params><Param Name=\"WIDTH\" "
    "Type=\"integer\">32</Param></Params></Model></Instance></Block></Instances>";

// The deck with the given line for U1.
std::string Deck(const std::string& u1) {
  return "\n* Project TOP\n* Norvane Wirelist Created with Version 6.4.002\n* File created <date>\n"
         "* Inifile   :\n* ConfigFile:  galt\\standard\\vesk.cfg\n* Options   :  -_ -h TOP\n* Levels    "
         ":\n*\n" +
         u1 +
         "\nR1 QO 0 1000.000000\n* Dictionary 1\n* GND=0\n.model counter macro lang=vhdlams "
         "LIB=mylib\n\n*.END\n\n";
}

const char kMapped[] = "YU1 counter GENERIC: WIDTH=\"32\" PORT: CK QO";
const char kUnmapped[] = "YU1 counter PORT: 0 CK QO";

VeskRun RunWith(const std::string& models, const std::string& instances = kInstances) {
  VeskInput input;
  input.deckPath = "genhdl/TOP/TOP.cir";
  input.files["Sym/Models_Info.xml"] = models;
  input.files["sym/Instances_Info.xml"] = instances;
  return RunVesk(kDesign, "-_ -h TOP", input);
}

TEST(XmlRobustnessTest, WellFormedFilesMapTheModel) {
  VeskRun run = RunWith(Mapping());
  ASSERT_EQ(run.rc, 0) << run.errors;
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(run.deck, Deck(kMapped));
}

// A declaration that is unterminated, empty, without any element, or not text at all gives the
// error line and no ports or parameters; the instance file still gives its value.
TEST(XmlRobustnessTest, MalformedDeclarationGivesTheErrorLine) {
  const std::string bad[] = {
      "<Models><Part Name=\"PN2\"><Symbol Name=\"CNT\">",
      "",
      "<?xml version=\"1.0\"?>\n<!-- no element at all -->\n",
      "<Models><Part Name=\"PN2></Part></Models>",
      "<Models></Part></Models>",
      std::string("\0\xff\xfe<M>\x01\x02", 8),
  };
  for (const std::string& text : bad) {
    VeskRun run = RunWith(text);
    EXPECT_EQ(run.rc, 0) << run.errors;
    EXPECT_EQ(run.output, kModelsError) << text;
    EXPECT_EQ(run.deck, Deck("YU1 counter GENERIC: WIDTH=\"32\" PORT: 0 CK QO")) << text;
  }
}

// Nesting far beyond any design makes the file unreadable instead of exhausting the stack.
TEST(XmlRobustnessTest, DeepNesting) {
  auto start = std::chrono::steady_clock::now();
  std::string deep;
  for (int i = 0; i < 100000; ++i) deep += "<d>";
  VeskRun nested = RunWith(Mapping("", deep));
  EXPECT_EQ(nested.rc, 0);
  EXPECT_EQ(nested.output, kModelsError);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

// Entities are refused: ten levels of tenfold expansion would make 10^10 characters.
TEST(XmlRobustnessTest, EntityExpansionIsRefused) {
  std::string laughs = "<!DOCTYPE Models [<!ENTITY a \"aaaaaaaaaa\">";
  for (char c = 'b'; c <= 'k'; ++c) {
    std::string ten;
    for (int i = 0; i < 10; ++i) ten += "&" + std::string(1, static_cast<char>(c - 1)) + ";";
    laughs += "<!ENTITY " + std::string(1, c) + " \"" + ten + "\">";
  }
  laughs += "]>\n";
  auto start = std::chrono::steady_clock::now();
  VeskRun run = RunWith(Mapping(laughs, "<Info>&k;</Info>"));
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
  EXPECT_EQ(run.rc, 0);
  EXPECT_EQ(run.output, kModelsError);
  EXPECT_EQ(run.deck, Deck("YU1 counter GENERIC: WIDTH=\"32\" PORT: 0 CK QO"));

  // The same in the instance file, with the entity in the value that would be read.
  VeskRun instances =
      RunWith(Mapping(), "<?xml version=\"1.0\"?>\n" + laughs +
                             std::string(kInstances).replace(std::string(kInstances).find("32"), 2, "&k;"));
  EXPECT_EQ(instances.output, kInstancesError);
  EXPECT_EQ(instances.deck, Deck("YU1 counter GENERIC: WIDTH=\"4\" PORT: CK QO"));
}

// External entities are neither read from disk nor fetched over the network: a listening socket
// sees no connection, and the text of the local file reaches no output.
TEST(XmlRobustnessTest, ExternalEntitiesAreNeverFetched) {
  int listener = ::socket(AF_INET, SOCK_STREAM, 0);
  ASSERT_GE(listener, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  ASSERT_EQ(::bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
  ASSERT_EQ(::listen(listener, 8), 0);
  socklen_t length = sizeof address;
  ASSERT_EQ(::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length), 0);
  const std::string url = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port));

  VeskInput input;
  input.deckPath = "genhdl/TOP/TOP.cir";
  input.files["secret.txt"] = "SECRET-TEXT";
  input.files["sym/Instances_Info.xml"] = kInstances;
  const std::string doctypes[] = {
      "<!DOCTYPE Models [<!ENTITY x SYSTEM \"secret.txt\">]>\n",
      "<!DOCTYPE Models [<!ENTITY x SYSTEM \"" + url + "/x.txt\">]>\n",
      "<!DOCTYPE Models [<!ENTITY % p SYSTEM \"" + url + "/p.dtd\"> %p;]>\n",
  };
  for (const std::string& doctype : doctypes) {
    input.files["Sym/Models_Info.xml"] = Mapping(doctype, "<Info>&x;</Info>");
    VeskRun run = RunVesk(kDesign, "-_ -h TOP", input);
    EXPECT_EQ(run.rc, 0) << doctype;
    EXPECT_EQ(run.output, kModelsError) << doctype;
    EXPECT_EQ(run.deck, Deck("YU1 counter GENERIC: WIDTH=\"32\" PORT: 0 CK QO")) << doctype;
    EXPECT_EQ(run.Read("genhdl/TOP/netUidMap").find("SECRET"), std::string::npos);
  }

  // An external document type is not loaded; the document itself maps as usual.
  input.files["Sym/Models_Info.xml"] = Mapping("<!DOCTYPE Models SYSTEM \"" + url + "/models.dtd\">\n");
  VeskRun external = RunVesk(kDesign, "-_ -h TOP", input);
  EXPECT_EQ(external.output, "");
  EXPECT_EQ(external.deck, Deck(kMapped));

  pollfd pending{listener, POLLIN, 0};
  EXPECT_EQ(::poll(&pending, 1, 0), 0) << "a mapping file made the program connect";
  ::close(listener);
}

}  // namespace
