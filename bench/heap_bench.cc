// What a live message costs: heap bytes and blocks of the medium message, decoded from its binary form,
// beside protobuf's generated class decoded from its own.
#include <bench/job_data.h>
#include <bench/our_messages.h>
#include <bench/protobuf_peer.h>
#include <malloc.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/binary/binary_serializer.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

bool counting = false;
std::size_t liveBytes = 0;
std::size_t liveBlocks = 0;

/// A block costs what the allocator sets aside for it, its own word included.
std::size_t cost(void* block) {
  return malloc_usable_size(block) + sizeof(std::size_t);
}
void* counted(void* block) {
  if (block != nullptr && counting) {
    liveBytes += cost(block);
    ++liveBlocks;
  }
  return block;
}
void uncount(void* block) {
  if (block == nullptr || !counting) return;
  liveBytes -= cost(block);
  --liveBlocks;
}

}  // namespace

// Every block of the process passes here: these names come before those of the C library.
extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void __libc_free(void*);

void* malloc(std::size_t size) {
  return counted(__libc_malloc(size));
}
void* calloc(std::size_t count, std::size_t size) {
  return counted(__libc_calloc(count, size));
}
void* realloc(void* block, std::size_t size) {
  uncount(block);
  return counted(__libc_realloc(block, size));
}
void free(void* block) {
  uncount(block);
  __libc_free(block);
}
}

namespace zqxml::bench {
namespace {

struct Heap {
  std::size_t bytes = 0;
  std::size_t blocks = 0;
};

/// What is on the heap after `make` that was not there before, while its result lives.
template <class Make>
Heap heapOf(Make make) {
  make();  // what is made once per process is not the message's
  liveBytes = liveBlocks = 0;
  counting = true;
  const auto made = make();
  counting = false;
  if (made == nullptr) std::exit(1);
  return {liveBytes, liveBlocks};
}

void printRow(const char* what, Heap ours, Heap peer, double byteReach, double blockReach) {
  const double bytes = static_cast<double>(ours.bytes) / static_cast<double>(peer.bytes);
  const double blocks = static_cast<double>(ours.blocks) / static_cast<double>(peer.blocks);
  std::printf("| %-6s bytes  | %8zu | %8zu | %5.2f | %7s | %-3s |\n", what, ours.bytes, peer.bytes, bytes,
              byteReach == 0 ? "" : "<= 1.35",
              byteReach == 0       ? ""
              : bytes <= byteReach ? "yes"
                                   : "NO");
  std::printf("| %-6s blocks | %8zu | %8zu | %5.2f | %7s | %-3s |\n", what, ours.blocks, peer.blocks, blocks,
              blockReach == 0 ? "" : "<= 0.50",
              blockReach == 0        ? ""
              : blocks <= blockReach ? "yes"
                                     : "NO");
}

template <class Data>
void measure(const char* what, const Data& data, double byteReach, double blockReach) {
  BinaryBuffer binary;
  if (BinarySerializer::serialize(*ourMessage(data), binary) == 0) std::exit(1);
  const std::unique_ptr<google::protobuf::Message> generated = generatedMessage(data);
  const std::string protobuf = generated->SerializeAsString();
  const Heap ours = heapOf(
      [&] { return std::unique_ptr<XNMessageBase>(BinarySerializer::unserialize(binary, nullptr, false)); });
  const Heap peer = heapOf([&] {
    std::unique_ptr<google::protobuf::Message> message(generated->New());
    if (!message->ParseFromString(protobuf)) message.reset();
    return message;
  });
  printRow(what, ours, peer, byteReach, blockReach);
}

}  // namespace
}  // namespace zqxml::bench

int main() {
  std::printf("sizeof(XNMessageBase) = %zu bytes\n", sizeof(zqxml::XNMessageBase));
  std::printf("| live message  |     ours |     peer | ratio |   reach | met |\n");
  std::printf("|---------------|---------:|---------:|------:|--------:|-----|\n");
  zqxml::bench::measure("small", zqxml::bench::soleEntry(), 0, 0);
  zqxml::bench::measure("medium", zqxml::bench::jobReport(20), 1.35, 0.5);
  zqxml::bench::measure("large", zqxml::bench::jobReport(5000), 0, 0);
}
