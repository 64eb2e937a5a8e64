// Object files beside SQLite: 100,000 records of the medium message, appended and read back.
//
// Both contenders store the same bytes, the binary form of the message: here a record of format A each, there
// a row with one blob each. Neither flushes to the disk: what is acknowledged is in the system's hands.
//
//   1. The store alone, acknowledged once. Both are handed the bytes ready made, and hand them back. The peer
//      writes one transaction; ours holds back what it appends (CUlFile::SetAppendBuffer) until the file is
//      closed, which is when both can say that everything is stored. This is the comparison of the stores,
//      and the one with a reach.
//   2. The same with the coding: both make the bytes of an object each time, and an object of the bytes. The
//      coding is one and the same work on both sides, so the ratio comes near 1 the faster the stores are.
//   3. Each record acknowledged by itself, which is what AddObjectToFile does without more: the peer writes a
//      transaction per row, with the journal that is fastest at that (WAL).
#include <bench/job_data.h>
#include <bench/our_messages.h>
#include <sqlite3.h>
#include <stdlib.h>
#include <time.h>
#include <unistd.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/binary/internal/record_format.h>
#include <zqxml/binary/xn_message_base_file_handler.h>
#include <zqxml/platform/file.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml::bench {
namespace {

constexpr int kRounds = 5;

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "object_file_bench: %s\n", what);
  std::exit(1);
}

/// Seconds of this process's CPU, the system's part included: the machine's other work does not count.
double cpuSeconds() {
  timespec now = {};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

template <class Work>
double timeOf(Work work) {
  const double start = cpuSeconds();
  work();
  return cpuSeconds() - start;
}

/// What the contenders store.
struct Load {
  std::unique_ptr<XNMessageBase> message = ourMessage(jobReport(20));
  BinaryBuffer bytes;
  int records = 0;
};

/// What `bytes` hold is decoded and freed again.
void decode(const void* bytes, std::size_t size) {
  BinaryBuffer buffer;
  buffer.SetReadBuffer(static_cast<const char*>(bytes), size, true);
  const std::unique_ptr<XNMessageBase> object(BinarySerializer::unserialize(buffer, nullptr, false));
  require(object != nullptr, "a record does not decode");
}

constexpr unsigned kHeldBack = 1U << 16;

void appendOurs(const std::string& path, Load& load, bool encodes, unsigned heldBack) {
  CUlFile file(path, CUlFile::Mode::kReadWrite);
  require(!file.SetAppendBuffer(heldBack).IsError(), "there is no memory");
  XNMessageBaseFileHandler handler(&file);
  const std::string_view bytes(load.bytes.getBuffer(), load.bytes.getDataSize());
  std::uint64_t written = 0;
  for (int i = 0; i < load.records; ++i) {
    const bool stored = encodes ? handler.AddObjectToFile(*load.message) == FileHandlerSuccess
                                : !record::appendA(file, bytes, written).IsError();
    require(stored, "a record is not written");
  }
  require(!file.Close().IsError(), "the records are not written");
}

void readOurs(const std::string& path, const Load& load, bool decodes) {
  CUlFile file(path);
  XNMessageBaseFileHandler handler(&file);
  BinaryBuffer bytes;
  XNMessageBase* object = nullptr;
  int count = 0;
  const auto next = [&] { return decodes ? handler.GetObjectFromFile(object) : record::readA(file, bytes); };
  for (; next() == FileHandlerSuccess; ++count) {
    if (decodes)
      require(std::unique_ptr<XNMessageBase>(object) != nullptr, "a record does not decode");
    else
      require(bytes.getDataSize() == load.bytes.getDataSize(), "a record has another size");
  }
  require(count == load.records, "records are missing");
}

class Database {
 public:
  explicit Database(const std::string& path) {
    require(sqlite3_open(path.c_str(), &handle_) == SQLITE_OK, "the database does not open");
    run("PRAGMA synchronous = OFF");
    run("CREATE TABLE IF NOT EXISTS records (id INTEGER PRIMARY KEY, data BLOB NOT NULL)");
  }
  ~Database() { sqlite3_close(handle_); }
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  void run(const char* sql) {
    require(sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr) == SQLITE_OK, sqlite3_errmsg(handle_));
  }
  sqlite3_stmt* prepare(const char* sql) {
    sqlite3_stmt* statement = nullptr;
    require(sqlite3_prepare_v2(handle_, sql, -1, &statement, nullptr) == SQLITE_OK, sqlite3_errmsg(handle_));
    return statement;
  }

 private:
  sqlite3* handle_ = nullptr;
};

/// `together`: in one transaction; otherwise in one each.
void appendPeer(const std::string& path, Load& load, bool encodes, bool together) {
  Database database(path);
  database.run(together ? "BEGIN" : "PRAGMA journal_mode = WAL");
  sqlite3_stmt* insert = database.prepare("INSERT INTO records (data) VALUES (?)");
  BinaryBuffer own;
  for (int i = 0; i < load.records; ++i) {
    if (encodes) require(load.message->SerializeBinary(own) != 0, "the message is not encoded");
    const BinaryBuffer& bytes = encodes ? own : load.bytes;
    sqlite3_bind_blob(insert, 1, bytes.getBuffer(), static_cast<int>(bytes.getDataSize()), SQLITE_STATIC);
    require(sqlite3_step(insert) == SQLITE_DONE && sqlite3_reset(insert) == SQLITE_OK,
            "a row is not written");
  }
  sqlite3_finalize(insert);
  if (together) database.run("COMMIT");
}

void readPeer(const std::string& path, const Load& load, bool decodes) {
  Database database(path);
  sqlite3_stmt* select = database.prepare("SELECT data FROM records ORDER BY id");
  std::vector<char> copy(load.bytes.getDataSize());
  int count = 0;
  for (; sqlite3_step(select) == SQLITE_ROW; ++count) {
    const void* data = sqlite3_column_blob(select, 0);
    const auto size = static_cast<std::size_t>(sqlite3_column_bytes(select, 0));
    require(size == copy.size(), "a row has another size");
    if (decodes)
      decode(data, size);
    else
      std::copy_n(static_cast<const char*>(data), size, copy.data());  // out of the database's page
  }
  sqlite3_finalize(select);
  require(count == load.records, "rows are missing");
}

/// Of `kRounds` times, the least.
struct Times {
  double ours = 1e9, peer = 1e9;

  template <class Ours, class Peer>
  void take(Ours runOurs, Peer runPeer) {
    ours = std::min(ours, timeOf(runOurs));
    peer = std::min(peer, timeOf(runPeer));
  }
};

void printRow(const char* what, const Times& times, int records, bool claimed) {
  const double ratio = times.peer / times.ours;
  std::printf("| %-31s | %9.0f ns | %9.0f ns | %5.2f | %6s | %-3s |\n", what, times.ours * 1e9 / records,
              times.peer * 1e9 / records, ratio, claimed ? ">= 2.0" : "",
              claimed ? (ratio >= 2 ? "yes" : "NO") : "");
}

void run(int records) {
  Load load;
  load.records = records;
  require(load.message->SerializeBinary(load.bytes) != 0, "the message has no binary form");
  std::string pattern = (std::filesystem::temp_directory_path() / "object-file-bench-XXXXXX").string();
  require(mkdtemp(pattern.data()) != nullptr, "there is no folder for the files");
  const std::string ours = pattern + "/objects", peer = pattern + "/database";
  const auto clear = [&] {
    for (const auto& file : std::filesystem::directory_iterator(pattern)) std::filesystem::remove(file);
  };
  Times append[2], read[2], single;
  // The contenders take turns, so that they meet the same disturbances.
  for (int round = 0; round < kRounds; ++round) {
    for (bool coded : {false, true}) {
      clear();
      append[coded].take([&] { appendOurs(ours, load, coded, kHeldBack); },
                         [&] { appendPeer(peer, load, coded, true); });
      read[coded].take([&] { readOurs(ours, load, coded); }, [&] { readPeer(peer, load, coded); });
    }
    clear();
    single.take([&] { appendOurs(ours, load, true, 0); }, [&] { appendPeer(peer, load, true, false); });
  }
  std::filesystem::remove_all(pattern);
  std::printf("%d records of %llu bytes, CPU time a record, least of %d rounds\n", records,
              static_cast<unsigned long long>(load.bytes.getDataSize()), kRounds);
  std::printf("| SQLite %-24s |         ours |         peer | ratio |  reach | met |\n",
              sqlite3_libversion());
  std::printf("|---------------------------------|-------------:|-------------:|------:|-------:|-----|\n");
  printRow("append, the store alone", append[false], records, true);
  printRow("read, the store alone", read[false], records, true);
  printRow("append, both encode", append[true], records, false);
  printRow("read, both decode", read[true], records, false);
  printRow("append, acknowledged one by one", single, records, false);
}

}  // namespace
}  // namespace zqxml::bench

int main() {
  zqxml::bench::run(100000);
}
