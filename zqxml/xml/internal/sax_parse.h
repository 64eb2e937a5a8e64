// The set-up of a parse. Not installed.
#pragma once

#include <zqxml/xml/internal/parse_arena.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/sax2/SAX2XMLReader.hpp>
#include <xercesc/util/SecurityManager.hpp>

namespace zqxml {

class MySAX2Handler;

/// A source over text that is not copied and has to outlive it.
class TextSource : public xercesc::MemBufInputSource {
 public:
  /// Bytes, of the encoding that the text itself says.
  explicit TextSource(std::string_view text);
  /// UTF-16 in native byte order, whose encoding is left to the parser to find out.
  explicit TextSource(std::u16string_view text);

  /// Bytes of the text.
  std::size_t size() const { return size_; }

 private:
  TextSource(const void* bytes, std::size_t size);

  std::size_t size_;
};

/// A SAX2 reader that never validates, loads nothing from outside, expands no entity, and takes no more
/// memory than stands in proportion to its input. Throws what Xerces-C throws.
class SaxParse {
 public:
  /// `inputBytes` is the size of the text to come; the handler is borrowed.
  SaxParse(MySAX2Handler& handler, std::size_t inputBytes);

  xercesc::SAX2XMLReader& reader() { return *reader_; }

 private:
  ParseArena memory_;
  xercesc::SecurityManager security_;
  std::unique_ptr<xercesc::SAX2XMLReader> reader_;
};

}  // namespace zqxml
