// Shapes of a catalogue that a form does not carry through.
#pragma once

#include <unordered_map>
#include <vector>

#include "snapshot.h"

namespace zqxml::zqcatc {

/// A class, and a field of it.
struct Member {
  const ClassShot* owner = nullptr;
  const FieldShot* field = nullptr;
};

/// The classes that messages hold as sub-objects, be it in a list or a map, each with a field that does.
std::unordered_map<const ClassShot*, Member> heldClasses(const Snapshot& catalogue);

/// The classes whose objects readers make for a list or a map, with their defaults set.
std::unordered_map<const ClassShot*, Member> elementClasses(const Snapshot& catalogue);

/// A list or map of a sub-object whose XML element has the name of an object field of the object around it:
/// its end tag closes the sub-object.
struct EarlyEnd {
  Member inner;
  Member around;
};
std::vector<EarlyEnd> earlyEnds(const Snapshot& catalogue);

/// Whether the objects of a field may hold a field of the field's own name, at any depth. An XML reader that
/// does not know the field passes over its element up to the first end tag of that name, which is then an
/// inner one. `budget` bounds the work of all questions together; when it is used up the answer is true.
class SelfNaming {
 public:
  explicit SelfNaming(const Snapshot& catalogue) : catalogue_(catalogue) {}
  bool holds(const FieldShot& field);

 private:
  const Snapshot& catalogue_;
  long budget_ = 20'000'000;
};

/// Types of fields that are elements on their own in XML and no objects: lists and maps of anything else.
bool isListOrMapOfValues(unsigned type);
/// Types whose elements in XML open an object: a sub-object or a list of them.
bool opensObject(unsigned type);

}  // namespace zqxml::zqcatc
