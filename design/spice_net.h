// SpiceNet: one connection (net, bus, port, or what stands at a pin) and its chosen name.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "design/tessel.h"

/// Net label to replacement name, filled by the shunts of the block being loaded.
using NetAliasTable = std::map<std::string, std::string>;

class SpiceNet {
 public:
  SpiceNet() = default;
  explicit SpiceNet(const Tessel::IteratorT<const Tessel::IPin>& pin);
  SpiceNet(const Tessel::IteratorT<const Tessel::IPort>& port, const NetAliasTable& aliases);
  explicit SpiceNet(const Tessel::IteratorT<const Tessel::IBus>& bus);
  /// With `walk`, the name lists this and every following net of the iterator.
  /// `readAttributes` false skips the net attributes, for pin entries, which never read them.
  SpiceNet(const Tessel::IteratorT<const Tessel::INet>& net, const NetAliasTable& aliases, bool walk,
           bool readAttributes = true);

  /// A copy keeps name, flags, label and net attributes; signal, members and the
  /// internal name stay empty.
  SpiceNet(const SpiceNet& other);
  SpiceNet& operator=(const SpiceNet& other);
  SpiceNet(SpiceNet&&) noexcept = default;
  SpiceNet& operator=(SpiceNet&&) noexcept = default;

  void FormInternalName(const Tessel::IteratorT<const Tessel::INet>& net);

  void SetName(const std::string& value) { name = value; }
  void SetConnected(bool value) { connected = value; }
  const std::string& Name() const { return name; }
  const std::string& Label() const { return label; }
  const std::string& Signal() const;
  const std::string& InternalName() const;
  bool IsConnected() const { return connected; }
  bool IsGlobal() const { return isGlobal; }
  const std::vector<SpiceNet>& Members() const;
  const std::map<std::string, std::string>& NetAttributes() const;

  std::string name;
  std::string label;
  bool isPort = false;
  bool isGlobal = false;
  bool connected = true;
  bool firstBit = false;
  bool lastBit = false;
  bool busBit = false;
  Tessel::IUIDManager* uidManager = nullptr;

 private:
  /// What only ports and scanned nets carry; absent for the many pin entries.
  struct Details {
    std::string signal;
    std::vector<SpiceNet> members;
    std::map<std::string, std::string> netAttributes;
    std::string internalName;
  };
  Details& Detail();
  std::unique_ptr<Details> details_;
};

/// NetName: the shunt alias of the net's label, else its NET_ALIAS, else the label.
std::string NetName(const Tessel::INet& net, const NetAliasTable& aliases);
