// One item of a block (a component, net or port) as the description reader collected it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vdb {

/// A small JSON tree in flat arrays that are kept from one item to the next: once the first items
/// have sized them, reading an item allocates nothing. Nodes are numbered in document order; the
/// children of a list or object are chained through `next`.
class ItemTree {
 public:
  static constexpr uint32_t kNoNode = 0xFFFFFFFFu;
  enum class Kind : uint8_t { kNull, kBool, kInt, kUnsigned, kFloat, kText, kObject, kArray };

  struct Node {
    Kind kind;
    bool boolean;
    uint32_t keyBegin, keyLength;    // the member's key in an object, in the text
    uint32_t textBegin, textLength;  // a text value, in the text
    uint64_t bits;                   // an integer value (kInt: as int64_t)
    uint32_t first, last, next;      // children of a list or object, and the next sibling
    uint32_t count;                  // how many children
  };

  /// A value of the tree, with the few questions the design builder asks of one.
  class Value {
   public:
    Value(const ItemTree* tree, uint32_t node) : tree_(tree), node_(node) {}
    bool is_object() const { return N().kind == Kind::kObject; }
    bool is_array() const { return N().kind == Kind::kArray; }
    bool is_string() const { return N().kind == Kind::kText; }
    bool is_boolean() const { return N().kind == Kind::kBool; }
    bool is_number_integer() const { return N().kind == Kind::kInt || N().kind == Kind::kUnsigned; }
    std::string_view Text() const { return tree_->Slice(N().textBegin, N().textLength); }
    // An unsigned number beyond the signed range reads as the signed number of the same bits, as
    // the document library gives it; range checks then refuse it.
    int64_t Int() const { return static_cast<int64_t>(N().bits); }
    bool Bool() const { return N().boolean; }
    size_t size() const { return N().count; }
    /// The member `key` of an object; false when there is none.
    bool Member(std::string_view key, Value& member) const;
    /// The first child of a list or object and the next sibling; Valid() is false past the end.
    Value First() const { return Value(tree_, N().first); }
    Value Next() const { return Value(tree_, N().next); }
    bool Valid() const { return node_ != kNoNode; }
    /// The key of a member of an object.
    std::string_view Key() const { return tree_->Slice(N().keyBegin, N().keyLength); }

   private:
    const Node& N() const { return tree_->nodes_[node_]; }
    const ItemTree* tree_;
    uint32_t node_;
  };

  void Clear() {
    nodes_.clear();
    text_.clear();
  }
  /// Adds a value under `parent` (kNoNode for the root) with the key `key` (ignored outside an
  /// object); the caller then sets its value through At().
  uint32_t Add(uint32_t parent, Kind kind, std::string_view key);
  Node& At(uint32_t node) { return nodes_[node]; }
  /// Keeps `text` and gives where it is, for Node::textBegin and textLength.
  uint32_t Keep(std::string_view text) {
    uint32_t begin = static_cast<uint32_t>(text_.size());
    text_.append(text);
    return begin;
  }
  Value Root() const { return Value(this, 0); }
  /// Whether the object `node` already has a member `key`.
  bool HasKey(uint32_t node, std::string_view key) const;

 private:
  std::string_view Slice(uint32_t begin, uint32_t length) const { return {text_.data() + begin, length}; }
  std::vector<Node> nodes_;
  std::string text_;
};

inline uint32_t ItemTree::Add(uint32_t parent, Kind kind, std::string_view key) {
  uint32_t id = static_cast<uint32_t>(nodes_.size());
  Node node{kind, false, 0, 0, 0, 0, 0, kNoNode, kNoNode, kNoNode, 0};
  if (parent != kNoNode && nodes_[parent].kind == Kind::kObject) {
    node.keyBegin = Keep(key);
    node.keyLength = static_cast<uint32_t>(key.size());
  }
  nodes_.push_back(node);
  if (parent != kNoNode) {
    Node& p = nodes_[parent];
    if (p.first == kNoNode) {
      p.first = id;
    } else {
      nodes_[p.last].next = id;
    }
    p.last = id;
    p.count++;
  }
  return id;
}

inline bool ItemTree::Value::Member(std::string_view key, Value& member) const {
  for (uint32_t at = N().first; at != kNoNode; at = tree_->nodes_[at].next) {
    const Node& n = tree_->nodes_[at];
    if (n.keyLength == key.size() && tree_->Slice(n.keyBegin, n.keyLength) == key) {
      member = Value(tree_, at);
      return true;
    }
  }
  return false;
}

inline bool ItemTree::HasKey(uint32_t node, std::string_view key) const {
  Value member(this, kNoNode);
  return Value(this, node).Member(key, member);
}

}  // namespace vdb
