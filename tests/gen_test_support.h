// Small builders shared by the generator tests: components, pins, blocks, a scratch folder.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "design/spice_block.h"
#include "design/spice_comp.h"
#include "gen/spice_gen.h"

namespace gentest {

using Pairs = std::vector<std::pair<std::string, std::string>>;

inline SpiceNet Net(const std::string& name, bool connected = true) {
  SpiceNet net;
  net.name = name;
  net.connected = connected;
  return net;
}

/// A component with upper-case attributes and pins (key, net name; "" = unconnected).
inline SpiceComp Comp(const std::string& ref, const Pairs& attrs, const Pairs& pins = {}, int kind = 1) {
  SpiceComp comp;
  comp.refName = ref;
  comp.label = ref;
  comp.kind = kind;
  comp.hasAttributes = true;
  for (const auto& [key, value] : attrs) comp.attrs.Set(key, value);
  for (const auto& [key, net] : pins) comp.pinNets.push_back({key, Net(net, !net.empty())});
  return comp;
}

/// A generator with its deck in memory and a fresh node scope.
inline void Ready(CSpiceGen& gen) {
  gen.out.OpenInMemory();
  inventedNodes = 0;
  gen.nextNodeNumber = 0;
  gen.nodes.clear();
}

inline std::string ReadText(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream text;
  text << in.rdbuf();
  return text.str();
}

/// Runs each test in an empty folder of its own.
class ScratchFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    root_ = std::filesystem::temp_directory_path() /
            ("vesk-gen-" + std::to_string(::getpid()) + "-" + info->test_suite_name() + "-" + info->name());
    std::filesystem::remove_all(root_);
    std::filesystem::create_directories(root_);
    old_ = std::filesystem::current_path();
    std::filesystem::current_path(root_);
  }
  void TearDown() override {
    std::filesystem::current_path(old_);
    std::filesystem::remove_all(root_);
  }
  void Write(const std::string& path, const std::string& text) {
    std::filesystem::path target = root_ / path;
    std::filesystem::create_directories(target.parent_path());
    std::ofstream(target, std::ios::binary) << text;
  }
  std::filesystem::path root_, old_;
};

}  // namespace gentest
