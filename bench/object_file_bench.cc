// Object files beside SQLite: 100,000 records of the medium message, appended and read back.
//
// Both contenders get the same objects and store the same bytes, the binary form of each: here a record of
// format A each, there a row with one blob each, in one transaction and without a disk flush. The first table
// is storing alone: the peer is handed the bytes ready made, while ours still makes them of the object, and
// makes an object of them. In the second the peer encodes and decodes as well.
#include <bench/job_data.h>
#include <bench/our_messages.h>
#include <sqlite3.h>
#include <stdlib.h>
#include <time.h>
#include <unistd.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/binary/xn_message_base_file_handler.h>
#include <zqxml/platform/file.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
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

void appendOurs(const std::string& path, Load& load) {
  CUlFile file(path, CUlFile::Mode::kReadWrite);
  XNMessageBaseFileHandler handler(&file);
  for (int i = 0; i < load.records; ++i)
    require(handler.AddObjectToFile(*load.message) == FileHandlerSuccess, "a record is not written");
}

void readOurs(const std::string& path, const Load& load) {
  CUlFile file(path);
  XNMessageBaseFileHandler handler(&file);
  XNMessageBase* object = nullptr;
  int count = 0;
  for (; handler.GetObjectFromFile(object) == FileHandlerSuccess; ++count)
    require(std::unique_ptr<XNMessageBase>(object) != nullptr, "a record does not decode");
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

void appendPeer(const std::string& path, Load& load, bool encodes) {
  Database database(path);
  database.run("BEGIN");
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
  database.run("COMMIT");
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
  double ours = 1e9, stored = 1e9, coded = 1e9;
};

void printRow(const char* what, double ours, double peer, int records, bool claimed) {
  const double ratio = peer / ours;
  std::printf("| %-24s | %9.0f ns | %9.0f ns | %5.2f | %6s | %-3s |\n", what, ours * 1e9 / records,
              peer * 1e9 / records, ratio, claimed ? ">= 2.0" : "",
              claimed ? (ratio >= 2 ? "yes" : "NO") : "");
}

void run(int records) {
  Load load;
  load.records = records;
  require(load.message->SerializeBinary(load.bytes) != 0, "the message has no binary form");
  std::string pattern = (std::filesystem::temp_directory_path() / "object-file-bench-XXXXXX").string();
  require(mkdtemp(pattern.data()) != nullptr, "there is no folder for the files");
  const std::string ours = pattern + "/objects", peer = pattern + "/database";
  Times append, read;
  // The contenders take turns, so that they meet the same disturbances.
  for (int round = 0; round < kRounds; ++round) {
    const auto least = [](double& figure, double now) { figure = std::min(figure, now); };
    std::filesystem::remove(ours);
    least(append.ours, timeOf([&] { appendOurs(ours, load); }));
    least(read.ours, timeOf([&] { readOurs(ours, load); }));
    for (bool coded : {false, true}) {
      std::filesystem::remove(peer);
      least(coded ? append.coded : append.stored, timeOf([&] { appendPeer(peer, load, coded); }));
      least(coded ? read.coded : read.stored, timeOf([&] { readPeer(peer, load, coded); }));
    }
  }
  std::filesystem::remove_all(pattern);
  std::printf("%d records of %llu bytes, CPU time a record, least of %d rounds\n", records,
              static_cast<unsigned long long>(load.bytes.getDataSize()), kRounds);
  std::printf("| SQLite %s                 |         ours |         peer | ratio |  reach | met |\n",
              sqlite3_libversion());
  std::printf("|--------------------------|-------------:|-------------:|------:|-------:|-----|\n");
  printRow("append, peer from bytes", append.ours, append.stored, records, false);
  printRow("read, peer to bytes", read.ours, read.stored, records, false);
  printRow("append, both encode", append.ours, append.coded, records, true);
  printRow("read, both decode", read.ours, read.coded, records, true);
  printRow("both, both code", append.ours + read.ours, append.coded + read.coded, records, true);
}

}  // namespace
}  // namespace zqxml::bench

int main() {
  zqxml::bench::run(100000);
}
