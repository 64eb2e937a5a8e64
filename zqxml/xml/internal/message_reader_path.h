// The way from the root object of a text to the object that is being read.
#pragma once

#include <zqxml/catalogue/records.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/xml/internal/inline_list.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace zqxml {

/// What an object on the path was opened as.
enum class PathRole : std::uint8_t { kRoot, kMember, kMapKey, kMapValue };

/// The open objects of one parse: the root, and each object inside the one before it.
///
/// Owns what hangs nowhere yet; the destructor ends all of it and takes back list elements that were not
/// finished, so that after a failed parse nothing is left over. The root belongs to the caller. List elements
/// are built where they will stay: as the last element of their vector. That is safe because a vector grows
/// only while its object is the innermost one, when no element of it is open.
class ObjectPath {
 public:
  /// `maxLevels` objects may be open at once, 0 for any number.
  explicit ObjectPath(std::size_t maxLevels) : maxLevels_(maxLevels) {}
  ~ObjectPath() { finish(); }
  ObjectPath(const ObjectPath&) = delete;
  ObjectPath& operator=(const ObjectPath&) = delete;

  bool empty() const { return levels_.empty(); }
  /// Number of open objects, the root included.
  std::size_t size() const { return levels_.size(); }
  /// The innermost object. REQUIRES: !empty().
  XNMessageBase& current() const { return *levels_.back().object; }
  /// The object around the innermost one. REQUIRES: size() > 1.
  XNMessageBase& parent() const { return *levels_[levels_.size() - 2].object; }
  XNMessageBase* root() const { return empty() ? nullptr : levels_[0].object; }
  PathRole role() const { return levels_.back().role; }
  /// The map entry that a key or value object was made for.
  std::uint64_t entry() const { return levels_.back().entry; }

  void openRoot(XNMessageBase& root);
  /// Ends all objects but the root.
  void finish();
  // The following make or take an object in or for the innermost one, clear its set bits and make it the
  // innermost. False when the catalogue does not give a class. Throw std::length_error when too many objects
  // are open.

  /// The sub-object of an FDT_OBJECT field: the one that is there, or a new one that hangs nowhere yet.
  bool openMember(const FieldDef& field);
  /// A new element at the end of an FDT_LIST_OBJECT field's vector, which is given room for `alike` more.
  bool openElement(const FieldDef& field, std::size_t alike);
  /// A new object, of the class that the ClassRef bytes name, for one side of a map entry.
  bool openSide(const char* classRef, PathRole side, std::uint64_t entry);

  // The following close the innermost object. `field` is a field of the object around it.

  /// Into an FDT_OBJECT field, unless that is set already. An object that another slot owns is copied.
  void closeAsMember(const FieldDef& field);
  /// To the end of an FDT_LIST_OBJECT field, likewise.
  void closeAsElement(const FieldDef& field);
  /// Out of the path, to the caller. REQUIRES: role() is that of a map side.
  std::unique_ptr<XNMessageBase> closeSide();

 private:
  struct Level {
    XNMessageBase* object;
    /// The list field (of the object around) whose last element this is; null for an object on the heap.
    const FieldDef* list = nullptr;
    std::uint64_t entry = 0;
    PathRole role = PathRole::kMember;
    /// The object hangs nowhere: the path owns it.
    bool loose = false;
    /// The vector of `list` was made for this element.
    bool madeVector = false;
  };

  void checkDepth();
  void enter(const Level& level);
  Level leave();
  /// The object of a level that was left, free of the path; null when a slot owns it.
  std::unique_ptr<XNMessageBase> detach(const Level& level);
  void discard(const Level& level);
  void dropLastElement(const Level& level);

  InlineList<Level, 8> levels_;
  std::size_t maxLevels_;
};

}  // namespace zqxml
