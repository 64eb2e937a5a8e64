// A reader of Xerces-C for the parses of a thread, one after the other. Not installed.
#pragma once

#include <zqxml/xml/internal/message_reader.h>

#include <cstddef>
#include <string_view>
#include <vector>
#include <xercesc/parsers/SAX2XMLReaderImpl.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax2/DefaultHandler.hpp>
#include <xercesc/util/SecurityManager.hpp>

namespace zqxml {

class MySAX2Handler;
class ParseArena;

/// The SAX2 reader that XMLReaderFactory makes, set up to validate nothing, to load nothing from outside and
/// to expand no entity.
///
/// What its scanner finds goes straight to the message reader of a handler, which gets what it would get as
/// the content handler; the lists and names that SAX2 makes of it are left out. Errors go to the handler.
/// It also notes what could show in a later parse. Throws what Xerces-C throws; belongs to one thread at a
/// time.
class SaxReader final : public xercesc::SAX2XMLReaderImpl {
 public:
  /// The memory outlives it. Without `namespaces`, prefixes and declarations are part of plain names.
  SaxReader(ParseArena& memory, bool namespaces);

  /// Events and errors go to `handler` from now on, which outlives the parse or is taken away after it.
  void attach(MySAX2Handler& handler);
  void detach();
  /// The bytes of the text to come, where the lengths of lists are looked up; empty for none. They outlive
  /// the parse.
  void lookAheadIn(std::string_view text) { text_ = text; }

  /// Whether the parse since attach() has left the reader as a new one would be: it met no error, document
  /// type, XML 1.1 or name of a schema. Xerces-C resets most of that, but not all.
  bool isLikeNew() const { return likeNew_; }

  // What the scanner calls; all else is as in the base.
  void startElement(const xercesc::XMLElementDecl& declaration, unsigned uri, const XMLCh* prefix,
                    const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, XMLSize_t count, bool isEmpty,
                    bool isRoot) override;
  void endElement(const xercesc::XMLElementDecl& declaration, unsigned uri, bool isRoot,
                  const XMLCh* prefix) override;
  /// Of the root and below it: white space around the root is ignorable, and other text there is an error.
  void docCharacters(const XMLCh* text, XMLSize_t length, bool section) override;
  void XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
               const XMLCh* actualEncoding) override;
  void resetDocType() override;
  void error(unsigned code, const XMLCh* domain, ErrTypes type, const XMLCh* text, const XMLCh* systemId,
             const XMLCh* publicId, XMLFileLoc line, XMLFileLoc column) override;

 private:
  /// Elements of one name behind one another, from which on a list is taken for a long one.
  static constexpr std::size_t kRun = 16;

  /// Knows where the scanner is.
  struct Place final : xercesc::DefaultHandler {
    const xercesc::Locator* locator = nullptr;
    void setDocumentLocator(const xercesc::Locator* given) override { locator = given; }
  };

  const NameView<char16_t>& nameOf(const xercesc::XMLElementDecl& declaration);
  std::size_t alikeBehind(const xercesc::XMLElementDecl& declaration);
  bool isDeclaration(const xercesc::XMLAttr& attribute) const;

  void chargeDefault(std::u16string_view value);

  ParseArena& memory_;
  const bool namespaces_;
  xercesc::SecurityManager security_;
  MessageReader* target_ = nullptr;
  std::vector<AttributeView> attributes_;  // far fewer bytes than the scanner has for them
  /// The latest element's, and its name.
  const xercesc::XMLElementDecl* declaration_ = nullptr;
  NameView<char16_t> name_;
  std::size_t depth_ = 0;
  /// Elements of the latest one's name, on its level and without any other between them, itself included.
  std::size_t run_ = 0;
  std::size_t runDepth_ = 0;
  Place place_;
  std::string_view text_;
  /// A line of the text that the scanner has reached, and where it begins.
  XMLFileLoc line_ = 1;
  std::size_t lineStart_ = 0;
  /// How far elements were counted: no part of the text is looked at twice.
  std::size_t looked_ = 0;
  bool likeNew_ = true;
};

}  // namespace zqxml
