// The generator run in-process on an imported design, its deck written to a string: the same
// text, once the post pass has run over it, as the program's deck.
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>
#include <string>

#include "design/spice_project.h"
#include "gen/dialect_of.h"
#include "gen/flavours.h"
#include "post/post_process.h"
#include "tests/deck_harness.h"

namespace {

// Runs in `folder` for as long as it lives.
class WorkingFolder {
 public:
  explicit WorkingFolder(const std::string& folder) {
    char buffer[4096];
    previous_ = ::getcwd(buffer, sizeof buffer) ? buffer : ".";
    ok_ = ::chdir(folder.c_str()) == 0;
  }
  ~WorkingFolder() {
    if (::chdir(previous_.c_str()) != 0) ADD_FAILURE() << "cannot go back to " << previous_;
  }
  bool ok() const { return ok_; }

 private:
  std::string previous_;
  bool ok_ = false;
};

TEST(GeneratorInProcess, WritesTheDeckToTheStreamHandedIn) {
  const std::string design = R"({ "blocks": [ { "name": "TOP", "components": [
      { "label": "R1", "name": "RES.1", "attributes": { "VALUE": "1K" }, "definition": { "ORDER": "VALUE$" },
        "pins": [ { "name": "A", "net": "IN" }, { "name": "B", "net": "GND" } ] } ] } ] })";
  VeskRun run = RunVesk(design, "TOP");
  ASSERT_EQ(run.rc, 0) << run.output;

  WorkingFolder here(run.folder);
  ASSERT_TRUE(here.ok());
  ::setenv("SOURCE_DATE_EPOCH", "0", 1);
  ::setenv("GALT_HOME", "galt", 1);
  CSpiceGen parser;
  const char* const argv[] = {"vesk", "TOP"};
  const char* group = nullptr;
  parser.ParseArguments(&group, 2, argv);
  WireOptions options = parser.options;
  options.dialect = DialectOf(options);
  PspiceGen gen(options);
  SpiceProject project;
  gen.SetDatabaseName("TOP");
  ASSERT_TRUE(gen.LoadProject("TOP", project, options));
  ASSERT_EQ(gen.ReadConfigFile(), 0);
  std::ostringstream deck;
  gen.Run(project, deck);
  EXPECT_EQ(gen.circuitPath, "TOP.cir");

  PostSettings settings{gen.options, gen.config, gen.internalNames, gen.currentInstance};
  EXPECT_EQ(MaskDate(PostProcessText(deck.str(), settings)), run.deck);
  EXPECT_NE(deck.str().find("\nR1 1 0 1000.000000\n"), std::string::npos) << deck.str();
}

}  // namespace
