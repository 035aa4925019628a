// A design database built from JSON in a temporary folder, and helpers to read walks back.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <string>

#include "design/db/design_import.h"
#include "design/spice_block.h"
#include "design/spice_net.h"
#include "design/spice_project.h"

class DesignFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    static int serial = 0;
    folder_ = std::filesystem::temp_directory_path() /
              ("vesk-design-" + std::to_string(::getpid()) + "-" + std::to_string(serial++));
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    previous_ = std::filesystem::current_path();
    std::filesystem::current_path(folder_);
    netAliases.clear();
    globalNets.clear();
    netDictionary.clear();
    inventedNodes = 0;
  }
  void TearDown() override {
    std::filesystem::current_path(previous_);
    std::filesystem::remove_all(folder_);
  }

  /// Imports `json` as the project's database; fails the test on bad input.
  void Import(const std::string& json) {
    std::string error;
    ASSERT_TRUE(ImportDesign(json, folder_.string(), error)) << error;
  }

  /// Opens the project and loads the root of `group` with `options`.
  SpiceProject& Load(const std::string& group, const WireOptions& options) {
    project_ = std::make_unique<SpiceProject>();
    EXPECT_TRUE(project_->Open("database"));
    project_->SetOptions(options);
    std::string rootPath = options.rootPath;
    project_->FindRoot(group, root_, rootPath);
    return *project_;
  }
  /// Load and the walk that `flatten` chooses.
  SpiceProject& Walk(const std::string& group, const WireOptions& options) {
    SpiceProject& project = Load(group, options);
    if (options.flatten)
      project.WalkFlat(root_, group);
    else
      project.WalkHierarchy(root_, group);
    return project;
  }

  static std::map<std::string, std::string> Nodes(const SpiceBlock& block) {
    std::map<std::string, std::string> sorted;
    for (const auto& entry : block.nodeMap)
      if (!entry.second.empty()) sorted.insert(entry);
    return sorted;
  }
  /// "pin=name" for each pin entry, joined by blanks.
  static std::string Pins(const SpiceComp& comp) {
    std::string text;
    for (const PinEntry& pin : comp.PinNets()) {
      if (!text.empty()) text += ' ';
      text += pin.key + "=" + pin.net.Name();
    }
    return text;
  }
  /// The deck names of a block's components, joined by blanks.
  static std::string RefNames(const SpiceBlock& block) {
    std::string text;
    for (const SpiceComp& comp : block.comps) text += (text.empty() ? "" : " ") + comp.RefName();
    return text;
  }

  std::filesystem::path folder_;
  std::filesystem::path previous_;
  std::unique_ptr<SpiceProject> project_;
  Tessel::ContainerT<const Tessel::IBlock> root_;
};

inline WireOptions Hierarchical() {
  WireOptions options;
  options.flatten = 0;
  return options;
}
