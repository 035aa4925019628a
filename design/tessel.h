// The connectivity database interface that the netlister reads the design through.
//
// Everything here is an abstract contract; the SQLite-backed implementation lives in
// design/db/ and is created by OpenTessel. Handles (ContainerT) and iterators (IteratorT)
// are cheap value types that stay valid while the TesselPI object lives.
#pragma once

#include <cstdint>
#include <list>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace Tessel {

/// The library's string: a value string that converts to a C string (never null).
class String {
 public:
  String() = default;
  String(const char* text) : text_(text ? text : "") {}
  String(std::string text) : text_(std::move(text)) {}
  String& operator=(const char* text) {
    text_ = text ? text : "";
    return *this;
  }
  operator const char*() const { return text_.c_str(); }
  String operator+(const char* tail) const { return String(text_ + (tail ? tail : "")); }
  bool IsEmpty() const { return text_.empty(); }
  const std::string& str() const { return text_; }
  std::string& str() { return text_; }

 private:
  std::string text_;
};

/// Outcome of an operation. Converts to true on success.
class Result {
 public:
  Result() = default;
  static Result Ok() { return Result(true, ""); }
  static Result Fail(std::string description) { return Result(false, std::move(description)); }
  virtual ~Result() = default;
  operator bool() const { return success != 0; }
  String GetDescription(bool) const { return String(description_); }

  unsigned char success = 1;

 private:
  Result(bool ok, std::string description) : success(ok ? 1 : 0), description_(std::move(description)) {}
  std::string description_;
};

/// Identity of an object within its owner. word1 packs a 24-bit number (low bits) and
/// an 8-bit number (top bits).
struct Index {
  uint32_t word0 = 0;
  uint32_t word1 = 0;
  uint32_t Low24() const { return word1 & 0xFFFFFFu; }
  uint32_t Top8() const { return word1 >> 24; }
};

enum ECompType { eCompAll = 0, eCompPrimitive = 1, eCompHierarchical = 2 };
enum EAttributeType { eAttrDefinition = 1, eAttrInstance = 2 };
// Callers may ask for a group type the library does not name; every int is a valid value.
enum EGroupType : int { eGroupInternal = 2 };
enum ESearchParams { eSearchPlain = 0 };

/// A set of enumeration bits.
template <class E, int N>
class BitContainerT {
 public:
  BitContainerT() = default;
  BitContainerT(E value) : bits_(static_cast<unsigned>(value)) {}
  static BitContainerT FromBits(unsigned bits) {
    BitContainerT b;
    b.bits_ = bits;
    return b;
  }
  bool operator&(E value) const { return (bits_ & static_cast<unsigned>(value)) != 0; }
  unsigned Bits() const { return bits_; }

 private:
  unsigned bits_ = 0;
};

/// Whether objects of type T answer IsValid themselves.
template <class T, class = void>
struct HasIsValid : std::false_type {};
template <class T>
struct HasIsValid<T, std::void_t<decltype(std::declval<T&>().IsValid())>> : std::true_type {};

/// A copyable handle to a design object; copies refer to the same object.
template <class T>
class ContainerT {
 public:
  ContainerT() = default;
  explicit ContainerT(std::shared_ptr<T> object) : object_(std::move(object)) {}
  T* operator->() const { return object_.get(); }
  T& operator*() const { return *object_; }
  bool Empty() const { return !object_; }
  /// Fails for an empty handle, and for a handle that a failed operation left holding the
  /// invalid object of its kind.
  Result IsValid() const {
    if (!object_) return Result::Fail("empty handle");
    if constexpr (HasIsValid<T>::value) return object_->IsValid();
    return Result::Ok();
  }
  const std::shared_ptr<T>& Shared() const { return object_; }

 private:
  std::shared_ptr<T> object_;
};

/// The moving part of an iterator, supplied by the implementation.
template <class T>
class CursorT {
 public:
  virtual ~CursorT() = default;
  /// The current object; past the end, an object whose IsValid fails (never null).
  virtual T* Current() const = 0;
  virtual bool AtEnd() const = 0;
  virtual void Advance() = 0;
  virtual std::unique_ptr<CursorT> Clone() const = 0;
};

/// Walks a sequence. A copy walks on independently of its source.
template <class T>
class IteratorT {
 public:
  IteratorT() = default;
  explicit IteratorT(std::unique_ptr<CursorT<T>> cursor) : cursor_(std::move(cursor)) {}
  IteratorT(const IteratorT& other) : cursor_(other.cursor_ ? other.cursor_->Clone() : nullptr) {}
  IteratorT(IteratorT&&) noexcept = default;
  IteratorT& operator=(const IteratorT& other) {
    if (this != &other) cursor_ = other.cursor_ ? other.cursor_->Clone() : nullptr;
    return *this;
  }
  IteratorT& operator=(IteratorT&&) noexcept = default;

  /// Never null: a finished or empty iterator yields an invalid object.
  T* operator->() const;
  void operator++(int) {
    if (cursor_ && !cursor_->AtEnd()) cursor_->Advance();
  }
  operator bool() const { return cursor_ && !cursor_->AtEnd(); }
  Result IsValid() const { return *this ? Result::Ok() : Result::Fail("iterator finished"); }

 private:
  std::unique_ptr<CursorT<T>> cursor_;
};

/// A list record used for search hits, group memberships and attributes.
template <class T>
class ListT {
 public:
  class Iterator {
   public:
    Iterator() = default;
    Iterator(const std::vector<T>* items, size_t pos) : items_(items), pos_(pos) {}
    Result IsValid() const {
      return items_ && pos_ < items_->size() ? Result::Ok() : Result::Fail("list finished");
    }
    const T* operator->() const { return &(*items_)[pos_]; }
    void operator++(int) { ++pos_; }

   private:
    const std::vector<T>* items_ = nullptr;
    size_t pos_ = 0;
  };
  Iterator GetIterator() const { return Iterator(&items, 0); }
  bool IsEmpty() const { return items.empty(); }

  std::vector<T> items;
};

struct ProjectData {
  String location;
  String clientName;
  unsigned char flag = 0;
};

struct BlockInfo {
  Index index;
};

struct GroupInfo {
  Index index;
  operator const Index&() const { return index; }
};

struct Attribute {
  String name;
  String value;
  int32_t level = 0;
};
using ListAttribute = ListT<Attribute>;

struct CompDataQor {
  int32_t number = 0;
};
struct NetDataQor {
  int32_t number = 0;
};

class IBlock;
class IComp;
class INet;
class IPin;
class IPort;
class IBus;
class IPath;
class IConfig;
class IGroup;
class INetQor;

class IObject {
 public:
  virtual ~IObject() = default;
  virtual Result IsValid() const = 0;
  virtual Result GetName(String& name) const = 0;
  virtual Result GetIndex(Index& index) const = 0;
};

class IBlock : public IObject {
 public:
  virtual Result GetIterComps(IteratorT<const IComp>& it,
                              const BitContainerT<ECompType, 1>& filter) const = 0;
  virtual Result GetIterNets(IteratorT<const INet>& it) const = 0;
  virtual Result GetIterPorts(IteratorT<const IPort>& it) const = 0;
  virtual Result GetComp(ContainerT<const IComp>& comp, const Index& index) const = 0;
  virtual Result GetNet(ContainerT<const INet>& net, const Index& index) const = 0;
  virtual Result GetDefaultConfigIndex(Index& index) const = 0;
};

class IComp : public IObject {
 public:
  virtual Result GetType(BitContainerT<ECompType, 1>& type) const = 0;
  virtual Result GetLabel(String& label) const = 0;
  virtual Result GetPartitionName(String& partition) const = 0;
  virtual Result GetInstanceIndex(Index& index) const = 0;
  virtual Result GetPath(ContainerT<const IPath>& path) const = 0;
  virtual Result GetParentBlock(ContainerT<const IBlock>& block) const = 0;
  virtual Result GetChildBlock(ContainerT<const IBlock>& block) const = 0;
  virtual Result GetAttribute(const String& key, String& value, EAttributeType level) const = 0;
  virtual Result GetAttributes(ListAttribute& attributes) const = 0;
  /// A number that two components share only when GetAttributes gives both the same list,
  /// so that a walk can read each distinct list once; false when the source has none.
  virtual bool GetAttributeListsId(uint64_t& /*id*/) const { return false; }
  virtual Result GetPinsCount(int& count) const = 0;
  virtual Result GetIterPins(IteratorT<const IPin>& it) const = 0;
  virtual Result GetListGroups(ListT<GroupInfo>& groups, EGroupType type) const = 0;
};

class INet : public IObject {
 public:
  virtual Result GetLabel(String& label) const = 0;
  virtual Result IsGlobal(bool& global) const = 0;
  virtual Result GetAttribute(const String& key, String& value, EAttributeType level) const = 0;
  /// False when the net has no attribute at all: a reader of many nets can skip asking.
  virtual bool HasAttributes() const = 0;
  virtual Result GetInstanceIndex(Index& index) const = 0;
  virtual Result GetParentBlock(ContainerT<const IBlock>& block) const = 0;
  virtual Result GetListGroups(ListT<GroupInfo>& groups, EGroupType type) const = 0;
};

class IPin : public IObject {
 public:
  virtual Result GetWidth(int& width) const = 0;
  virtual Result IsConnected(bool& connected) const = 0;
  virtual Result GetIterNetsConnected(IteratorT<const INet>& it) const = 0;
  virtual Result GetIterBusesConnected(IteratorT<const IBus>& it) const = 0;
};

class IPort : public IObject {
 public:
  virtual Result IsConnected(bool& connected) const = 0;
  virtual Result GetAttribute(const String& key, String& value, int level) const = 0;
  virtual Result GetIterNetsConnected(IteratorT<const INet>& it) const = 0;
  virtual Result GetIterBusesConnected(IteratorT<const IBus>& it) const = 0;
};

class IBus {
 public:
  virtual ~IBus() = default;
  virtual Result IsValid() const = 0;
  virtual Result GetLabel(String& label) const = 0;
};

class IPath : public IObject {
 public:
  virtual Result GetBlock(ContainerT<const IBlock>& block) const = 0;
  virtual Result GetIterComps(IteratorT<const IComp>& it) const = 0;
  virtual Result GetParentComp(ContainerT<const IComp>& comp) const = 0;
  virtual Result GetHierarchicalName(String& name, char separator) const = 0;
};

class IConfig {
 public:
  virtual ~IConfig() = default;
  virtual Result GetIterPaths(IteratorT<const IPath>& it) const = 0;
  virtual Result GetPath(ContainerT<const IPath>& path, const Index& index) const = 0;
  virtual Result GetIterComps(IteratorT<const IComp>& it) const = 0;
};

class IGroup {
 public:
  virtual ~IGroup() = default;
  virtual Result GetAttribute(const String& key, String& value) const = 0;
};

class INetQor {
 public:
  virtual ~INetQor() = default;
  virtual Result IsValid() const = 0;
  virtual Result GetData(NetDataQor& data) const = 0;
};

class IBlockViewQor {
 public:
  virtual ~IBlockViewQor() = default;
  static Result Init(ContainerT<const IBlockViewQor>& view, const IBlock& block, const IGroup& group);
  virtual Result GetCompData(const IComp& comp, CompDataQor& data) const = 0;
  virtual Result GetIterNetsQor(const INet& net, IteratorT<const INetQor>& it) const = 0;
};

class IUIDManager;

class ISnapshot {
 public:
  virtual ~ISnapshot() = default;
  virtual Result GetUIDManager(IUIDManager& manager) const = 0;
  virtual Result FindBlock(ListT<BlockInfo>& hits, const String& name,
                           const BitContainerT<ESearchParams, 1>& params) const = 0;
  virtual Result GetBlock(ContainerT<const IBlock>& block, const Index& index) const = 0;
  virtual Result GetDefaultConfig(ContainerT<const IConfig>& config, const String& blockName) const = 0;
};

/// Resolves configs and groups by index. Default-constructed managers answer nothing.
class IUIDManager {
 public:
  virtual ~IUIDManager() = default;
  virtual Result GetConfig(ContainerT<const IConfig>& config, const Index& index) const;
  virtual Result GetGroup(ContainerT<const IGroup>& group, const Index& index) const;

  /// The implementation that answers for this manager; set by ISnapshot::GetUIDManager.
  std::shared_ptr<const IUIDManager> impl;
};

class TesselImpl;

/// The database root object. The project stays open while it lives, or until Release.
class TesselPI {
 public:
  TesselPI();
  virtual ~TesselPI();
  TesselPI(const TesselPI&) = delete;
  TesselPI& operator=(const TesselPI&) = delete;

  Result OpenTessel(ProjectData& data);
  Result GetSnapshotByName(ContainerT<const ISnapshot>& snapshot, const String& name);
  /// Lets go of the open design; it is freed once no handle holds it. Later questions fail.
  void Release();

 private:
  std::shared_ptr<TesselImpl> impl_;
};

/// Objects that a finished iterator hands out: every question fails.
template <class T>
T* InvalidObject();
template <>
const IComp* InvalidObject<const IComp>();
template <>
const INet* InvalidObject<const INet>();
template <>
const IPin* InvalidObject<const IPin>();
template <>
const IPort* InvalidObject<const IPort>();
template <>
const IBus* InvalidObject<const IBus>();
template <>
const IPath* InvalidObject<const IPath>();
template <>
const IBlock* InvalidObject<const IBlock>();
template <>
const INetQor* InvalidObject<const INetQor>();

template <class T>
T* IteratorT<T>::operator->() const {
  return cursor_ ? cursor_->Current() : InvalidObject<T>();
}

}  // namespace Tessel
