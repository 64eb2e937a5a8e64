/// @file
/// XMLMetaData: the values of a message as a flat list of paths and texts, and a message from such a list.
///
/// catalogue/xpath_data.h tells what a path is; only subsystems whose schema names roots have any. The list
/// stands for the objects below the fields of a root; values in the root itself have no path. Nothing throws
/// but std::bad_alloc; what fails is told by the result and a line of the message log, of level 0 unless it
/// says otherwise.
#pragma once

#include <zqxml/catalogue/xpath_data.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/platform/export.h>

#include <string>
#include <vector>

namespace zqxml {

class FieldDef;

/// Result of XMLMetaData's two main operations.
enum XMLSubsystemStatus : int {
  XML_SUBSYSTEM_OK = 0,      ///< done
  XML_SUBSYSTEM_FAILED = 1,  ///< not, or not all; the log tells why
};

/// One value of a message.
struct XPathMetaData {
  int id = 0;         ///< id of the path
  std::string xpath;  ///< the path; not looked at when a message is made
  /// As getStringFromFld gives it: numbers in decimal, byte strings and passwords in Base64.
  std::string value;
  int type = 0;  ///< 10,000 and a number for the kind of the value; not looked at either
  /// The field has the annotation SingleInstanced; false for an element of a list.
  bool singleInstanced = false;
  bool reserved = false;  ///< false
};

/// The list of a message's values, and back.
///
/// QUIRK: an object keeps the paths of the subsystem that it first worked with, so that it serves one:
/// another subsystem's messages are then read and filled by the paths of the first. It belongs to one thread;
/// the static operations serve any.
class ZQXML_EXPORT XMLMetaData {
 public:
  /// Appends an item for every set value with a path below an object of `msg`, in the order of the fields;
  /// for a list one item per element. Objects in the root whose field is not annotated with GenPath are
  /// passed over unless `all` is true. Values without a path leave no item and no line. QUIRK: lists of
  /// objects are passed over, with a line at level 25, although they have paths.
  ///
  /// XML_SUBSYSTEM_FAILED, `out` as it was, for null, a subsystem without paths and a message without class.
  /// Objects below the 1,000th level are logged and passed over.
  XMLSubsystemStatus getXpathMetaData(XNMessageBase* msg, std::vector<XPathMetaData>& out, bool all);

  /// Sets the value of each item by its id, and makes the objects on the way to it. A value of a list is its
  /// new last element; a list of objects on the way gets a new element for every item. `msg` stays where it
  /// is.
  ///
  /// Texts are taken whole, so that byte strings and passwords hold the text as it stands (QUIRK: it is not
  /// read as Base64, though it is told so). Numbers are read as a stream reads them: what follows the number
  /// is not looked at, and none, or one that does not fit, is a failure. A bool is true for "true" in any
  /// case and for "1". QUIRK: for ulonglong nothing is set, and nothing is appended to a list of bool; that
  /// is no failure.
  ///
  /// An id without a path is logged and passed over. XML_SUBSYSTEM_FAILED for null, a subsystem without
  /// paths, a message without class; and at the first item whose value does not fit (a line at level 15) or
  /// whose path the class of `msg` does not have: what was set before stays set, and no object that was made
  /// for the failed item is left.
  XMLSubsystemStatus setXpathMetaData(XNMessageBase*& msg, std::vector<XPathMetaData> items, short subsystem);

  /// Whether the subsystem has a path of this id. A subsystem without paths gives a line at level 10.
  static bool doesXPathIDExist(short subsystem, int id);
  /// The path of an id: true. False, and `xpath` as it was, when there is none; a subsystem without paths
  /// gives a line and empties `xpath`.
  static bool getXPathFromID(short subsystem, int id, std::string& xpath);

 private:
  friend struct XMLMetaDataTestAccess;

  void getXPathMetaDataHelper(const XNMessageBase& msg, std::vector<XPathMetaData>& out, std::string& prefix,
                              int level) const;
  void addValues(const XNMessageBase& msg, const FieldDef& field, std::vector<XPathMetaData>& out,
                 std::string& prefix) const;
  /// Sets the value at the end of `fieldPath`, whose numbers from `level` on begin at `msg`.
  static bool setXpathMetaDataHelper(XNMessageBase* msg, const short* fieldPath, int level, int depth,
                                     const std::string& value);
  /// Place of an id below `count`, -1 when it is not there.
  static int getXPathFieldsInfoIndex(const XPathIDHelper* helper, int count, int id);
  /// Id of a path of `data_`, -1 (which no path has) when it is not there.
  int getXPathIDFromXPath(const std::string& xpath) const;
  /// Whether the field's record has GenPath.
  static bool hasXPath(const FieldDef& field);
  /// The kind of a field's values, as the consumers of the list count.
  static int getAppType(char fieldType);

  const XPathData* data_ = nullptr;
};

}  // namespace zqxml
