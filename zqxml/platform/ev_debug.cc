#include <pthread.h>
#include <spdlog/common.h>
#include <spdlog/details/log_msg.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_sinks.h>
#include <stdlib.h>
#include <unistd.h>
#include <zqxml/platform/ev_debug.h>
#include <zqxml/platform/platform_info.h>

#include <algorithm>
#include <atomic>
#include <limits>
#include <mutex>
#include <utility>
#include <vector>

namespace zqxml {
namespace {

constexpr char kPattern[] = "%Y-%m-%d %H:%M:%S.%e %v";

}  // namespace

// Guarded by the mutex of State.
struct EvDebugFileInstance::Impl {
  std::string name;  // of the log
  std::string path;
  std::size_t size = std::size_t{5} << 20;
  std::unique_ptr<spdlog::sinks::rotating_file_sink_st> sink;

  // Opens the file, with the size as it is now. Throws when that fails.
  void open() {
    constexpr std::size_t kOlderFiles = 3;
    sink.reset();
    sink = std::make_unique<spdlog::sinks::rotating_file_sink_st>(path, size, kOlderFiles);
    sink->set_pattern(kPattern);
  }
};

namespace {

thread_local bool insideSink = false;

// What all logs share. It is never destroyed: lines may come from the destructors of the process's last
// objects.
struct State {
  std::mutex mutex;
  std::shared_ptr<const EvDebug::Sink> sink;
  std::vector<std::string> names;  // of the logs; a log's id is its place, from 1
  spdlog::sinks::stderr_sink_st standardError;

  State() {
    standardError.set_pattern(kPattern);
    // Without this, a child forked while another thread writes would find the mutex locked for ever.
    pthread_atfork([] { get().mutex.lock(); }, [] { get().mutex.unlock(); }, [] { get().mutex.unlock(); });
  }

  static State& get() {
    static State* const state = new State;
    return *state;
  }
};

// What a message holds cannot pass for an entry of its own, or steer a terminal. Terminals take the controls
// from U+0080 to U+009F, of two bytes in UTF-8, for commands too.
std::string withoutControls(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  unsigned char before = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '\n') {
      out += "\n\t";
    } else if (before == 0xC2 && byte >= 0x80 && byte < 0xA0) {
      out.back() = '?';
    } else if (c == '\t' || (byte >= 0x20 && byte != 0x7F)) {
      out += c;
    } else {
      out += '?';
    }
    before = byte;
  }
  return out;
}

// All of an entry but the time.
std::string asEntry(const LogLine& line) {
  return formatText("%u %2d %s%s - %s", line.threadId, line.level, line.prefix,
                    withoutControls(line.function), withoutControls(line.text));
}

void putTo(spdlog::sinks::sink& sink, const std::string& entry) {
  sink.log(spdlog::details::log_msg("", spdlog::level::info, entry));
  sink.flush();
}

}  // namespace

EvDebugFileInstance::EvDebugFileInstance() noexcept = default;

EvDebugFileInstance::~EvDebugFileInstance() = default;

EvDebugFileInstance::Impl& EvDebugFileInstance::impl() {
  if (!impl_) impl_ = std::make_unique<Impl>();
  return *impl_;
}

std::string EvDebugFileInstance::path() const {
  const std::lock_guard<std::mutex> lock(State::get().mutex);
  return impl_ ? impl_->path : std::string();
}

std::atomic<int> EvDebug::level_{0};

void EvDebug::setSink(Sink sink) noexcept try {
  auto shared = sink ? std::make_shared<const Sink>(std::move(sink)) : nullptr;
  const std::lock_guard<std::mutex> lock(State::get().mutex);
  State::get().sink.swap(shared);
} catch (...) {
  // Only memory can have run out; the sink stays as it was.
}

bool EvDebug::isInsideSink() noexcept {
  return insideSink;
}

unsigned EvDebug::getLogId(const char* name) noexcept try {
  const std::string wanted = name == nullptr ? "" : name;
  State& state = State::get();
  const std::lock_guard<std::mutex> lock(state.mutex);
  auto found = std::find(state.names.begin(), state.names.end(), wanted);
  if (found == state.names.end()) found = state.names.insert(found, wanted);
  return static_cast<unsigned>(found - state.names.begin()) + 1;
} catch (...) {
  return 0;
}

bool EvDebug::initialize(unsigned logId, std::int64_t, bool, const std::string& directory) noexcept try {
  if (file_ == nullptr) return false;
  std::string folder = directory;
  if (folder.empty()) {
    const char* named = secure_getenv("ZQXML_LOG_DIR");
    folder = named != nullptr ? named : "";
  }
  if (folder.empty()) ZQPlatformInfo().getText("EventManager", "LogDirectory", folder);

  State& state = State::get();
  const std::lock_guard<std::mutex> lock(state.mutex);
  EvDebugFileInstance::Impl& file = file_->impl();
  if (logId == 0 || logId > state.names.size()) return false;
  file.name = state.names[logId - 1];
  if (folder.empty()) return false;
  std::string fileName = file.name;
  std::replace(fileName.begin(), fileName.end(), '/', '_');
  file.path = folder + "/" + fileName + ".log";
  file.open();
  return true;
} catch (...) {
  return false;
}

void EvDebug::setLogFileSize(std::uint64_t mebibytes) noexcept try {
  if (file_ == nullptr) return;
  const std::lock_guard<std::mutex> lock(State::get().mutex);
  EvDebugFileInstance::Impl& file = file_->impl();
  constexpr std::size_t kUnlimited = std::numeric_limits<std::size_t>::max();
  const bool limited = mebibytes != 0 && mebibytes <= kUnlimited >> 20;
  file.size = limited ? static_cast<std::size_t>(mebibytes) << 20 : kUnlimited;
  if (file.sink) file.open();
} catch (...) {
  // The file could be opened once and cannot be now: lines go to standard error.
}

void EvDebug::handleMsgEventDebug_NEW(const char* prefix, const char* function, int level, int,
                                      std::int64_t contextValue, const char* format,
                                      std::span<const FormatArg> arguments) noexcept try {
  if (level > getDebugLevel() || insideSink) return;
  const std::string text = formatText(std::string_view(format == nullptr ? "" : format), arguments);
  State& state = State::get();
  std::unique_lock<std::mutex> lock(state.mutex);
  EvDebugFileInstance::Impl* const file = file_ != nullptr ? file_->impl_.get() : nullptr;
  const std::string log = file != nullptr ? file->name : std::string();
  const LogLine line{
      function == nullptr ? "" : function, level, text, static_cast<std::uint32_t>(gettid()), contextValue,
      prefix == nullptr ? "" : prefix,     log};
  if (const auto sink = state.sink) {
    lock.unlock();
    insideSink = true;
    try {
      (*sink)(line);
    } catch (...) {
      // A log that fails does not fail its caller.
    }
    insideSink = false;
    return;
  }
  const std::string entry = asEntry(line);
  if (file != nullptr && file->sink) {
    try {
      return putTo(*file->sink, entry);
    } catch (...) {
      // The disk is full, say: standard error is what remains.
    }
  }
  putTo(state.standardError, entry);
} catch (...) {
  // Out of memory, or standard error cannot be written: nobody is left who could be told.
}

}  // namespace zqxml
