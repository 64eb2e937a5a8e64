// MessageReader: turns the events of an XML text into a message object.
//
// It knows nothing of where the events come from. There is no schema: each name is hashed and looked up in
// the class of the object that is being read, and an element or attribute whose name is not there is passed
// over. What it builds on is the catalogue, so the same events give the same object whatever wrote the text.
#pragma once

#include <zqxml/catalogue/records.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/xml/encoding_flags.h>
#include <zqxml/xml/internal/field_finder.h>
#include <zqxml/xml/internal/message_reader_path.h>
#include <zqxml/xml/internal/message_reader_values.h>
#include <zqxml/xml/internal/name_view.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace zqxml {

class ZqXMLContextInfo;

/// Serves one parse, on one thread, and is not reset for another. `Char` is what its source gives: char for
/// UTF-8, char16_t for UTF-16. Views need to hold for the length of a call only.
///
/// Failure: a root element without a class, and objects nested too deep, throw (std::exception); the source
/// of events then has to stop, and what it still gives without a root is passed over, as is an end without a
/// start. Everything else is logged and passed over. The root object holds what was read
/// until then, and objects that hang nowhere end with the reader.
template <class Char>
class BasicMessageReader {
 public:
  using View = std::basic_string_view<Char>;
  using Name = NameView<Char>;
  using AttributeViews = std::span<const BasicAttributeView<Char>>;

  /// Reads into `root`, which stays the caller's; null to make an object of the class that the root element
  /// names. `maxLevels` objects may be nested, 0 for any number, in the elements that so many take at most.
  explicit BasicMessageReader(XNMessageBase* root, std::size_t maxLevels);

  /// `alike` elements of that name are known to follow, one behind the other: there may be more. Attributes
  /// is AttributeViews or ScannedAttributes<Char>.
  template <class Attributes = AttributeViews>
  void start(Name name, const Attributes& attributes, std::size_t alike = 0);
  void end(Name name);
  /// A part of a text; one text may come in several.
  void characters(View text) {
    if (capturing_) text_ += text;
  }
  /// Whether a text at this place is more than passed over.
  bool takesCharacters() const { return capturing_; }

  /// The object read into, or the one made, which belongs to the caller; null while there is none.
  XNMessageBase* root() const { return path_.root(); }

  /// Ends what is unfinished, which needs the root to be there: before the destructor, when the root ends
  /// earlier. No event may follow.
  void finish() {
    entries_.clear();
    path_.finish();
  }

  /// For passwords; the context is borrowed.
  void setEncodingFlags(const EncodingFlags& flags) { values_.flags = flags; }
  void setContextInfo(ZqXMLContextInfo* context) { values_.context = context; }

 private:
  /// One side of a map entry: not there yet, a number, a string, or an object.
  using Side = std::variant<std::monostate, std::int64_t, std::string, std::unique_ptr<XNMessageBase>>;
  /// A map entry being read. An entry inside the value of another one has a frame of its own.
  struct MapEntry {
    const FieldDef* field = nullptr;
    /// Number of the entry, so that an object on the path knows whether the entry it was made for still is.
    std::uint64_t number = 0;
    /// Size of the path when the entry began: its last object has the map.
    std::size_t depth = 0;
    Side key;
    Side value;
    /// The key is done, the value is next.
    bool valueSide = false;

    /// Element type of its key, or of its value: FDT_INT64, FDT_STRING or FDT_OBJECT.
    FieldDataType typeOf(PathRole side) const {
      const FieldDataType map = field->getType();
      return side == PathRole::kMapKey ? FieldDef::getMapKeyType(map) : FieldDef::getMapValueType(map);
    }
    /// The same of the side in progress.
    FieldDataType sideType() const { return typeOf(valueSide ? PathRole::kMapValue : PathRole::kMapKey); }
    Side& side() { return valueSide ? value : key; }
  };
  struct MapInsert;

  // Elements.
  void checkDepth();
  template <class Attributes>
  void openRoot(Name name, const Attributes& attributes);
  template <class Attributes>
  bool openObject(const FieldDef& field, const Attributes& attributes, std::size_t alike);
  template <class Attributes>
  bool processAttributes(const Attributes& attributes);
  void readVal(const FieldDef* field, View value, std::size_t alike);
  bool endObject(std::uint32_t hash);
  void endUnknown(View name, bool wasCapturing);
  /// The field of the object's class, null for none.
  const FieldDef* find(const XNMessageBase& object, std::uint32_t hash);

  // Maps.
  bool inMap() const { return !entries_.empty(); }
  void openEntry(const FieldDef& field);
  void openMapValue();
  bool capturesSide(std::uint32_t hash) const;
  void readSide(View text);
  void endKeyObject();
  void endValueObject();
  bool isPlain(PathRole side) const;
  bool takeSide(PathRole role);
  void processMapEnd(const FieldDef& field);
  /// Forgets the entries of objects that are about to leave the path.
  void dropEntries(std::size_t depth);
  const char* mapName() const;

  std::size_t maxLevels_;
  /// Elements that are open.
  std::size_t depth_ = 0;
  ObjectPath path_;
  FieldFinder finder_;
  /// The latest answer of find(): elements of one name follow each other, and most end where they begin.
  struct {
    const _ClassDef* classDef = nullptr;
    const FieldDef* field = nullptr;
    std::uint32_t hash = 0;
  } found_;
  FieldTextReader<Char> values_;
  std::vector<MapEntry> entries_;
  std::uint64_t entryCount_ = 0;
  /// The field of the last entry that began.
  FieldDef mapField_;
  std::basic_string<Char> text_;
  std::basic_string<Char> rootTag_;
  std::basic_string<Char> skipTag_;
  bool started_ = false;
  bool skipping_ = false;
  /// The element now open is a value held as text.
  bool capturing_ = false;
};

/// What a SAX parser gives its events to.
using MessageReader = BasicMessageReader<char16_t>;
using AttributeView = BasicAttributeView<char16_t>;

}  // namespace zqxml
