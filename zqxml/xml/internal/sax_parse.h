// The set-up of a parse. Not installed.
#pragma once

#include <zqxml/xml/internal/thread_kept.h>

#include <cstddef>
#include <memory>
#include <string_view>
#include <xercesc/framework/MemBufInputSource.hpp>

namespace zqxml {

class MySAX2Handler;

/// A source over text that is not copied and has to outlive it.
class TextSource : public xercesc::MemBufInputSource {
 public:
  /// Bytes, of the encoding that the text itself says.
  explicit TextSource(std::string_view text);
  /// UTF-16 in native byte order, whose encoding is left to the parser to find out.
  explicit TextSource(std::u16string_view text);

  /// The text as it stands.
  std::string_view bytes() const { return bytes_; }

 private:
  TextSource(const void* bytes, std::size_t size);

  std::string_view bytes_;
};

/// One parse by a SAX2 reader that never validates, loads nothing from outside, expands no entity, and takes
/// no more memory than stands in proportion to its input. Throws what Xerces-C and the handler throw.
///
/// To make a reader takes longer than to read a small text, so a thread keeps one between its parses: one
/// that came to its end without leaving anything behind, small enough, and with memory of Xerces-C's own
/// manager, which may go back at any time. A parse inside another one, from a callback, has a reader of its
/// own.
class SaxParse {
 public:
  /// `inputBytes` is the size of the text to come; the handler is borrowed.
  SaxParse(MySAX2Handler& handler, std::size_t inputBytes);
  ~SaxParse();
  SaxParse(const SaxParse&) = delete;
  SaxParse& operator=(const SaxParse&) = delete;

  /// Reads the whole text.
  void parse(const TextSource& source);

  /// How far parseRootTag came.
  enum class RootTag { noStart, noTag, read };
  /// Reads to the end of the first tag, or of the text if that is an empty element.
  RootTag parseRootTag(const xercesc::InputSource& source);

  /// Bytes of the reader that this thread keeps, 0 for none.
  static std::size_t keptBytes();
  /// Ends the reader that this thread keeps.
  static void dropKept();

  /// What a reader and its memory may have between parses.
  static constexpr std::size_t kMostKept = std::size_t{1} << 20;

 private:
  struct Reader;
  using Kept = ThreadKept<Reader>;

  bool mayKeep() const;

  std::unique_ptr<Reader> reader_;
  bool finished_ = false;
};

}  // namespace zqxml
