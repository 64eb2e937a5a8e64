#include <pthread.h>
#include <unistd.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/logging/internal/message_container.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/logging/xml_logger_helper.h>
#include <zqxml/platform/critical_section.h>
#include <zqxml/platform/platform_info.h>
#include <zqxml/xml/xml_decoder.h>
#include <zqxml/xml/xml_encoder.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string>

namespace zqxml {
namespace {

std::atomic<XmlLoggerHelper*> processHelper = nullptr;
constinit ZqCriticalSection helperSection;

/// Lets a fork wait till the first use is over, so that its child finds no lock that is never left.
void holdStillAcrossForks() {
  // What the first use takes locks of has to be asked to hold still after it, and so has to say so before it.
  const ZqThreadPool pool;
  XNMessageBase::Initialize();
  // Threads that come here together say so more than once, which does no harm: the section is recursive.
  pthread_atfork([] { helperSection.enter(); }, [] { helperSection.leave(); },
                 [] { new (&helperSection) ZqCriticalSection; });
}

/// A block with a copy; null without memory, and for a null `bytes`.
char* copyBytes(const void* bytes, std::size_t size, std::size_t room) {
  auto* const copy =
      bytes == nullptr ? nullptr : static_cast<char*>(std::malloc(std::max<std::size_t>(room, 1)));
  if (copy != nullptr && size != 0) std::memcpy(copy, bytes, size);
  return copy;
}

char* copyText(std::string_view text) {
  char* const copy = copyBytes(text.data(), text.size(), text.size() + 1);
  if (copy != nullptr) copy[text.size()] = '\0';
  return copy;
}

/// A buffer of the C heap with a copy of all bytes; null without memory.
BinaryBuffer* copyBuffer(const BinaryBuffer* source) {
  void* const block = std::malloc(sizeof(BinaryBuffer));
  if (block == nullptr) return nullptr;
  auto* const copy = new (block) BinaryBuffer;
  if (source == nullptr || source->getBuffer() == nullptr || source->getBufferSize() == 0) return copy;
  const std::size_t capacity = source->getBufferSize();
  const std::size_t content = source->getDataSize();
  if (const char* bytes = copyBytes(source->getBuffer(), capacity, capacity)) {
    copy->SetReadBuffer(bytes, capacity, true);
    // What lies behind the content is of some message before: it must not show.
    if (content != 0) copy->setDataSize(std::min(content, capacity));
    return copy;
  }
  std::destroy_at(copy);
  std::free(block);
  return nullptr;
}

/// The text of a line but for the message.
std::string lineText(const char* format, std::span<const FormatArg> arguments) {
  // formatText knows no %b, and leaves the placeholder as it stands.
  std::string text = formatText(std::string_view(format), arguments);
  text.resize(std::min({text.size(), text.find('\0'), XmlLoggerHelper::kLongestText}));
  return text;
}

/// Codes a message. False, and the line has none, when a password routine of the application throws; that
/// there is no memory goes on to the caller.
template <class Code>
bool codes(Code code) try {
  code();
  return true;
} catch (const std::bad_alloc&) {
  throw;
} catch (...) {
  return false;
}

/// The message as XML with nothing in it that a log must not show; empty when there is none.
std::string maskedXml(BinaryBuffer& buffer) {
  EncodingFlags flags;
  flags.encoding_options = MASK_PASSWORDS | MASK_SENSITIVE;
  XNMessageBase::Initialize();
  std::unique_ptr<XNMessageBase> message;
  codes([&] { message.reset(XMLDecoder(flags).UnserializeBinary(buffer)); });
  std::string xml;
  if (message != nullptr) XMLEncoder(flags, nullptr).serialize(*message, xml);
  return xml;
}

/// Puts the XML into its place; a text that was cut before it has none.
void insertXml(std::string& text, const std::string& xml) {
  constexpr std::string_view kPlaceholder = XmlLoggerHelper::kPlaceholder;
  // QUIRK: the first one in the text, be it an argument's: where the format has it is not known any more.
  if (const std::size_t at = text.find(kPlaceholder); at != std::string::npos) {
    text.replace(at, kPlaceholder.size(), "   " + xml + "   ");
    return;
  }
  // A text that was cut before the placeholder may have the rest of one in an argument.
  constexpr std::string_view kRest = kPlaceholder.substr(1);
  const std::size_t at = text.find(kRest);
  if (at != std::string::npos) text.replace(at, kRest.size(), "  " + xml + "   ");
}

}  // namespace

XmlLoggerHelper* XmlLoggerHelper::getXmlLoggerInstance() noexcept try {
  if (XmlLoggerHelper* known = processHelper.load(std::memory_order_acquire)) return known;
  holdStillAcrossForks();
  const ZqCriticalSectionLock lock(helperSection);
  if (processHelper.load(std::memory_order_relaxed) == nullptr)
    processHelper.store(new XmlLoggerHelper, std::memory_order_release);
  return processHelper.load(std::memory_order_relaxed);
} catch (...) {
  return nullptr;
}

XmlLoggerHelper::XmlLoggerHelper() {
  ZQPI_Focus::setFocus(ZQPI_Focus::getFocus(), 1, false);
  initThreadPool("XmlLoggerHelper", 300, 20, 20, 20);
  // The message log asks for the focus of the thread that uses it first; those of the pool have none.
  XmlLogContext::instance();
}

void XmlLoggerHelper::writeToLog(const char* function, int level, std::int64_t contextValue,
                                 const char* format, BinaryBuffer* message,
                                 std::span<const FormatArg> arguments) noexcept try {
  // What a sink logs is dropped. On a thread of its own the line would not be known for that, and bring the
  // next one.
  if (EvDebug::getDebugLevel() < level || EvDebug::isInsideSink()) return;
  if (format == nullptr) format = "";
  const std::string text = lineText(format, arguments);
  auto* const container = static_cast<messageContainer*>(std::calloc(1, sizeof(messageContainer)));
  if (container == nullptr) return;
  container->threadId = static_cast<std::uint32_t>(gettid());
  container->functionName = copyText(function == nullptr ? "" : function);
  container->contextValue = contextValue;
  container->level = level;
  container->buffer = copyBuffer(message);
  container->format = copyText(text);
  container->showsMessage = std::string_view(format).find(kPlaceholder) != std::string_view::npos;
  if (getCurrentAvailableThreadCount() == 0) {
    writeThroughTreadPool(container);
  } else if (doWork(&writeThroughTreadPool, container) == kRefused) {
    // QUIRK: a thread that was free a moment ago and is not any more, or cannot be started, costs the line.
    deAllocateMessageContainer(container);
  }
} catch (...) {
  // There is no memory for the text: the line is lost.
}

void XmlLoggerHelper::writeToLog(const char* function, int level, std::int64_t contextValue,
                                 const char* format, XNMessageBase* message,
                                 std::span<const FormatArg> arguments) noexcept try {
  BinaryBuffer buffer;
  // QUIRK: before the level is looked at, so that what this writes into the object and the log does not
  // depend on it.
  if (message != nullptr && !codes([&] { message->SerializeBinary(buffer); }))
    buffer.SetWriteBuffer(nullptr, 0, false);
  writeToLog(function, level, contextValue, format, &buffer, arguments);
} catch (...) {
  // There is no memory for the binary form: the line is lost.
}

unsigned XmlLoggerHelper::writeThroughTreadPool(void* argument) noexcept {
  if (argument == nullptr) return 1;
  const std::unique_ptr<messageContainer, decltype(&deAllocateMessageContainer)> container(
      static_cast<messageContainer*>(argument), &deAllocateMessageContainer);
  if (container->buffer == nullptr || container->format == nullptr) return 0;
  try {
    // Also for a line that will not show it: a message that cannot be read tells so in the log.
    const std::string xml = maskedXml(*container->buffer);
    std::string text = container->format;
    if (container->showsMessage) insertXml(text, xml);
    EvDebug::DebugLvl(container->functionName, container->level, container->contextValue, "%s", text);
  } catch (...) {
    // There is no memory for the message or its line, and nobody who could be told.
  }
  return 0;
}

void XmlLoggerHelper::deAllocateMessageContainer(messageContainer* container) noexcept {
  if (container == nullptr) return;
  std::free(container->functionName);
  std::free(container->format);
  delete container->object;
  if (container->buffer != nullptr) {
    std::free(container->buffer->getBuffer());
    std::destroy_at(container->buffer);
    std::free(container->buffer);
  }
  std::free(container);
}

}  // namespace zqxml
