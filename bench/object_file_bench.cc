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
#include <bench/report.h>
#include <sqlite3.h>
#include <stdlib.h>
#include <time.h>
#include <unistd.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/binary/internal/record_format.h>
#include <zqxml/binary/xn_message_base_file_handler.h>
#include <zqxml/platform/file.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml::bench {
namespace {

constexpr double kReach = 2;

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

/// The times of a record, one of each round.
class Times {
 public:
  template <class Ours, class Peer>
  void take(int records, Ours runOurs, Peer runPeer) {
    ours_.push_back(timeOf(runOurs) * 1e9 / records);
    peer_.push_back(timeOf(runPeer) * 1e9 / records);
  }
  /// `reach` 0: for information.
  Row row(const char* what, double reach) const {
    return {what, figureOf(ours_), figureOf(peer_), false, reach};
  }

 private:
  std::vector<double> ours_, peer_;
};

void run(Report& report, int records, int rounds) {
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
  for (int round = 0; round < rounds; ++round) {
    for (bool coded : {false, true}) {
      clear();
      append[coded].take(
          records, [&] { appendOurs(ours, load, coded, kHeldBack); },
          [&] { appendPeer(peer, load, coded, true); });
      read[coded].take(
          records, [&] { readOurs(ours, load, coded); }, [&] { readPeer(peer, load, coded); });
    }
    clear();
    single.take(
        records, [&] { appendOurs(ours, load, true, 0); }, [&] { appendPeer(peer, load, true, false); });
  }
  std::filesystem::remove_all(pattern);
  report.fact("SQLite", sqlite3_libversion());
  report.add({"Object files, beside SQLite",
              {append[false].row("append, the store alone", kReach),
               read[false].row("read, the store alone", kReach), append[true].row("append, both encode", 0),
               read[true].row("read, both decode", 0), single.row("append, acknowledged one by one", 0)},
              "ns",
              "ours",
              "SQLite",
              "CPU time of one of " + std::to_string(records) + " records of " +
                  std::to_string(load.bytes.getDataSize()) + " bytes each; neither flushes to the disk."});
}

}  // namespace
}  // namespace zqxml::bench

int main(int argc, char** argv) {
  zqxml::bench::Report report(argc, argv);
  zqxml::bench::run(report, report.isQuick() ? 10000 : 100000, report.isQuick() ? 2 : 5);
  return report.finish();
}
