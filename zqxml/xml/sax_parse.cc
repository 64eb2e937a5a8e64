#include <zqxml/platform/internal/xerces_ptr.h>
#include <zqxml/xml/internal/parse_arena.h>
#include <zqxml/xml/internal/sax_parse.h>
#include <zqxml/xml/internal/sax_reader.h>
#include <zqxml/xml/internal/xml_start_up_once.h>
#include <zqxml/xml/my_sax2_handler.h>

#include <utility>
#include <xercesc/framework/XMLPScanToken.hpp>

namespace zqxml {

TextSource::TextSource(const void* bytes, std::size_t size)
    : MemBufInputSource(static_cast<const XMLByte*>(bytes), size, u"unknown"),
      bytes_(static_cast<const char*>(bytes), size) {
  setCopyBufToStream(false);
}
TextSource::TextSource(std::string_view text) : TextSource(text.data(), text.size()) {}
TextSource::TextSource(std::u16string_view text) : TextSource(text.data(), text.size() * sizeof(char16_t)) {}

/// A reader with its memory.
struct SaxParse::Reader {
  Reader(std::size_t inputBytes, bool withNamespaces)
      : namespaces(withNamespaces), memory(inputBytes), sax(memory, withNamespaces) {}

  const bool namespaces;
  ParseArena memory;
  SaxReader sax;
};

SaxParse::SaxParse(MySAX2Handler& handler, std::size_t inputBytes) : reader_(Kept::take()) {
  const bool namespaces = !XmlStartUp::process().validationDisabled();
  if (reader_ != nullptr && reader_->namespaces == namespaces)
    reader_->memory.startAgain(inputBytes);
  else
    reader_ = std::make_unique<Reader>(inputBytes, namespaces);
  reader_->sax.attach(handler);
}

SaxParse::~SaxParse() {
  if (!mayKeep()) return;
  reader_->sax.detach();
  Kept::keep(std::move(reader_));
}

bool SaxParse::mayKeep() const {
  return finished_ && reader_->sax.isLikeNew() && reader_->memory.inUse() <= kMostKept &&
         internal::platformMemoryIsLasting() && Kept::get() == nullptr;
}

void SaxParse::parse(const TextSource& source) {
  reader_->sax.lookAheadIn(source.bytes());
  reader_->sax.parse(source);
  finished_ = true;
}

SaxParse::RootTag SaxParse::parseRootTag(const xercesc::InputSource& source) {
  xercesc::XMLPScanToken token;
  if (!reader_->sax.parseFirst(source, token)) return RootTag::noStart;
  if (!reader_->sax.parseNext(token)) return RootTag::noTag;
  reader_->sax.parseReset(token);
  finished_ = true;
  return RootTag::read;
}

std::size_t SaxParse::keptBytes() {
  return Kept::get() == nullptr ? 0 : Kept::get()->memory.inUse();
}

void SaxParse::dropKept() {
  Kept::take();
}

}  // namespace zqxml
