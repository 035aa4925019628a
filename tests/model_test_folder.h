// A scratch working folder for the model tests, and builders of mapped components.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "design/spice_comp.h"
#include "model/model_files.h"
#include "model/model_mapping.h"

namespace modeltest {

using Pairs = std::vector<std::pair<std::string, std::string>>;

/// Each test runs in an empty folder of its own, with no mapping or parameter file held.
class ModelFolder : public ::testing::Test {
 protected:
  void SetUp() override {
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    root_ = std::filesystem::temp_directory_path() /
            ("vesk-model-" + std::to_string(::getpid()) + "-" + info->test_suite_name() + "-" + info->name());
    std::filesystem::remove_all(root_);
    std::filesystem::create_directories(root_);
    old_ = std::filesystem::current_path();
    std::filesystem::current_path(root_);
    ClearModelMappingCache();
    ResetParameterFiles();
  }
  void TearDown() override {
    ResetParameterFiles();
    ClearModelMappingCache();
    std::filesystem::current_path(old_);
    std::filesystem::remove_all(root_);
  }
  void Write(const std::string& path, const std::string& text) {
    std::filesystem::path target = root_ / path;
    std::filesystem::create_directories(target.parent_path());
    std::ofstream(target, std::ios::binary) << text;
  }
  std::string Read(const std::string& path) {
    std::ifstream in(root_ / path, std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
  }
  bool Exists(const std::string& path) { return std::filesystem::exists(root_ / path); }
  std::filesystem::path root_, old_;
};

/// A component as the hierarchical load leaves it before the mapping runs.
inline SpiceComp MappedComp(const std::string& name, const Pairs& attrs, const std::string& internalName = "$1I1",
                            const std::string& instancePath = "$1I1") {
  SpiceComp comp;
  comp.name = name;
  comp.label = name;
  comp.refName = name;
  comp.hasAttributes = true;
  comp.internalName = internalName;
  comp.instancePath = instancePath;
  for (const auto& [key, value] : attrs) comp.attrs.Set(key, value);
  return comp;
}

}  // namespace modeltest
