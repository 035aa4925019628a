// A design database imported from JSON into a temporary folder and opened through the Tessel
// interface, with helpers that read whole sequences back as text.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "design/db/design_import.h"
#include "design/tessel.h"

class DatabaseTest : public ::testing::Test {
 protected:
  using BlockHandle = Tessel::ContainerT<const Tessel::IBlock>;

  void SetUp() override {
    static int serial = 0;
    folder_ = std::filesystem::temp_directory_path() /
              ("vesk-db-test-" + std::to_string(::getpid()) + "-" + std::to_string(serial++));
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
  }
  void TearDown() override {
    snapshot_ = {};
    uid_ = {};
    tessel_.reset();
    std::filesystem::remove_all(folder_);
  }

  /// Imports `json` into the folder (snapshot `snapshot` when not empty); fails the test on bad input.
  void Import(const std::string& json, const std::string& snapshot = "") {
    std::string error;
    ASSERT_TRUE(ImportDesign(json, folder_.string(), error, snapshot)) << error;
  }

  /// Opens the folder's database at `location` and asks for the snapshot `name`.
  Tessel::Result OpenAt(const std::string& location, const std::string& name = "Qor") {
    tessel_ = std::make_unique<Tessel::TesselPI>();
    Tessel::ProjectData data;
    data.location = location.c_str();
    data.clientName = "QorSimNetlister";
    tessel_->OpenTessel(data);
    Tessel::Result result = tessel_->GetSnapshotByName(snapshot_, name.c_str());
    if (result) snapshot_->GetUIDManager(uid_);
    return result;
  }

  /// Imports `json` and opens its snapshot "Qor"; fails the test when either goes wrong.
  void Open(const std::string& json) {
    Import(json);
    Tessel::Result result = OpenAt(Location());
    ASSERT_TRUE(result) << result.GetDescription(false).operator const char*();
  }

  std::string Location() const { return (folder_ / "database").string(); }

  /// The block that a search for `name` finds first; an empty handle when there is none.
  BlockHandle Block(const std::string& name) {
    Tessel::ListT<Tessel::BlockInfo> hits;
    BlockHandle block;
    if (!snapshot_->FindBlock(hits, name.c_str(), Tessel::eSearchPlain) || hits.IsEmpty()) return block;
    snapshot_->GetBlock(block, hits.GetIterator()->index);
    return block;
  }

  /// The default config of a block, through its config index and the UID manager.
  Tessel::ContainerT<const Tessel::IConfig> Config(const BlockHandle& block) {
    Tessel::Index index;
    block->GetDefaultConfigIndex(index);
    Tessel::ContainerT<const Tessel::IConfig> config;
    uid_.GetConfig(config, index);
    return config;
  }

  /// The name (or label) of each object that `it` yields, walking a copy of it.
  template <class T>
  static std::vector<std::string> Names(Tessel::IteratorT<T> it) {
    std::vector<std::string> names;
    for (; it->IsValid(); it++) names.push_back(NameOf(*it.operator->()));
    return names;
  }

  static std::string NameOf(const Tessel::IComp& comp) {
    Tessel::String label;
    comp.GetLabel(label);
    return label.str();
  }
  static std::string NameOf(const Tessel::INet& net) {
    Tessel::String label;
    net.GetLabel(label);
    return label.str();
  }
  static std::string NameOf(const Tessel::IObject& object) {
    Tessel::String name;
    object.GetName(name);
    return name.str();
  }
  static std::string NameOf(const Tessel::IBus& bus) {
    Tessel::String label;
    bus.GetLabel(label);
    return label.str();
  }

  /// The component of `block` with label `label`, reached through the block.
  static Tessel::IteratorT<const Tessel::IComp> Comp(const BlockHandle& block, const std::string& label) {
    Tessel::IteratorT<const Tessel::IComp> it;
    block->GetIterComps(it, Tessel::eCompAll);
    while (it->IsValid() && NameOf(*it.operator->()) != label) it++;
    return it;
  }
  static Tessel::IteratorT<const Tessel::INet> Net(const BlockHandle& block, const std::string& label) {
    Tessel::IteratorT<const Tessel::INet> it;
    block->GetIterNets(it);
    while (it->IsValid() && NameOf(*it.operator->()) != label) it++;
    return it;
  }
  static Tessel::IteratorT<const Tessel::IPort> Port(const BlockHandle& block, const std::string& name) {
    Tessel::IteratorT<const Tessel::IPort> it;
    block->GetIterPorts(it);
    while (it->IsValid() && NameOf(*it.operator->()) != name) it++;
    return it;
  }

  /// True when a handle holds an object that answers.
  template <class T>
  static bool Usable(const Tessel::ContainerT<T>& handle) {
    return !handle.Empty() && handle->IsValid();
  }

  std::filesystem::path folder_;
  std::unique_ptr<Tessel::TesselPI> tessel_;
  Tessel::ContainerT<const Tessel::ISnapshot> snapshot_;
  Tessel::IUIDManager uid_;
};
