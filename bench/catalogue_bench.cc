// A catalogue as large as that of a whole product: what it costs to make, to hold and to load, and how long
// look-ups in it take.
//
// Its tables stand in this program, for the look-ups, and in a shared library made like the real one, which
// is compared with a library of an empty catalogue.
#include <bench/measurements.h>
#include <dlfcn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/catalogue/xpath_data.h>
#include <zqxml/message/xn_message_base.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace zqxml::bench {
namespace {

namespace fs = std::filesystem;

constexpr const char* kLoad = "--load";

// --- What look-ups have to give

/// The first record of the name, by a walk over all records.
int walked(const SubsystemDef& row, const char* name) {
  for (int index = 0; index < row.recordCount; ++index) {
    const char* candidate = row.classDefs[index].getName();
    if (candidate != nullptr && std::strcmp(candidate, name) == 0) return index;
  }
  return -1;
}

/// The record of a tag id, by a search of the subsystem's ids that halves what is left.
const _ClassDef* bisected(std::uint32_t tag) {
  const SubsystemDef& row = gSubsystemTable[tag >> 24];
  const std::uint32_t classId = tag & 0xffffff;
  for (int low = 0, high = row.recordCount - 1; low <= high;) {
    const int middle = (low + high) / 2;
    const ClassIdIndexEntry& entry = row.idIndex[middle];
    if (entry.classId == classId) return &row.classDefs[entry.classIndex];
    (classId < entry.classId ? high : low) = classId < entry.classId ? middle - 1 : middle + 1;
  }
  return nullptr;
}

int found(short slot, const char* name) {
  int index = -1;
  return XNMessageBase::getMessageIndexFromName(name, slot, index) ? index : -1;
}

/// A class by its name in a subsystem.
struct Name {
  short slot;
  std::string text;
};

/// The keys of look-ups: in the order of the catalogue, and where it says so, shuffled.
struct Keys {
  std::vector<std::uint32_t> tags, shuffledTags;
  std::vector<Name> names, missingNames;

  Keys() {
    for (short slot = 1; slot < kSubsystemCount; ++slot) {
      const SubsystemDef& row = gSubsystemTable[slot];
      for (int index = 0; index < row.recordCount; ++index) {
        const _ClassDef& record = row.classDefs[index];
        if (record.getName() == nullptr) continue;
        tags.push_back(makeTagId(slot, record.getClassId()));
        names.push_back({slot, record.getName()});
      }
    }
    shuffledTags = tags;
    std::mt19937 random(1);
    std::shuffle(shuffledTags.begin(), shuffledTags.end(), random);
    std::shuffle(names.begin(), names.end(), random);
    for (const Name& name : names) missingNames.push_back({name.slot, name.text + '_'});
  }
};

void checkLookUps(const Keys& keys) {
  require(keys.tags.size() > 17'000, "the catalogue is not of full size");
  for (const std::uint32_t tag : keys.tags)
    for (const std::uint32_t near : {tag, tag + 1, tag ^ 0x800000, tag & 0xff000000})
      require(XNMessageBase::GetClassDef(near) == bisected(near), "a tag leads to another class");
  for (const std::vector<Name>* names : {&keys.names, &keys.missingNames})
    for (const Name& name : *names)
      require(found(name.slot, name.text.c_str()) == walked(gSubsystemTable[name.slot], name.text.c_str()),
              "a name leads to another class");
}

/// Hands out the keys one after the other, again and again.
template <class Key>
class Cycle {
 public:
  explicit Cycle(const std::vector<Key>& keys) : keys_(&keys) {}
  const Key& next() {
    next_ = next_ + 1 == keys_->size() ? 0 : next_ + 1;
    return (*keys_)[next_];
  }

 private:
  const std::vector<Key>* keys_;
  std::size_t next_ = 0;
};

ComparedTable lookUps(const Keys& keys) {
  ComparedTable table;
  table.table.title = "Full-size catalogue: look-ups";
  table.table.note =
      "Among 18,482 classes, every answer compared before with that of the searches named here.";
  const auto add = [&](const std::string& name, const auto& from, double reach, auto lookUp) {
    measure(name,
            [cycle = Cycle(from), lookUp]() mutable { ::benchmark::DoNotOptimize(lookUp(cycle.next())); });
    table.comparisons.push_back({name, name, "", true, reach});
  };
  const auto byTag = [](std::uint32_t tag) { return XNMessageBase::GetClassDef(tag); };
  const auto byName = [](const Name& name) { return found(name.slot, name.text.c_str()); };
  add("tag to class, in order", keys.tags, 30, byTag);
  add("tag to class, any order", keys.shuffledTags, 30, byTag);
  add("the same by bisection", keys.shuffledTags, 0, bisected);
  add("name to class, any order", keys.names, 100, byName);
  add("name that is not there", keys.missingNames, 100, byName);
  add("the same by a walk", keys.names, 0,
      [](const Name& name) { return walked(gSubsystemTable[name.slot], name.text.c_str()); });
  const XPathData& paths = *XNMessageBase::getXPathData(12);
  static std::vector<XPathEntry> entries(paths.paths, paths.paths + paths.count);
  std::shuffle(entries.begin(), entries.end(), std::mt19937(1));
  add("path to its place, of 24,988", entries, 0,
      [&paths](const XPathEntry& entry) { return catalogue::xpathIndexOfPath(paths, entry.xpath); });
  add("id of a path to its place", entries, 0, [&paths](const XPathEntry& entry) {
    return catalogue::xpathIndexOfId(paths.idHelper, paths.count, entry.id);
  });
  return table;
}

// --- What the catalogue costs

double processorMilliseconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// Loads a library into this process and prints how many milliseconds of processor time that took.
int load(const char* path) {
  const double begin = processorMilliseconds();
  const bool loaded = dlopen(path, RTLD_NOW | RTLD_LOCAL) != nullptr;
  const double end = processorMilliseconds();
  if (!loaded) std::fprintf(stderr, "bench: %s\n", dlerror());
  std::printf("%.6f\n", end - begin);
  return loaded ? 0 : 1;
}

/// What load() prints in a fresh process, which has all that the library needs loaded.
double loadTime(const std::string& self, const std::string& path) {
  std::FILE* out = popen(("exec '" + self + "' " + kLoad + " '" + path + "'").c_str(), "r");
  double time = 0;
  const bool told = out != nullptr && std::fscanf(out, "%lf", &time) == 1;
  require(told && pclose(out) == 0, "a library is not loaded");
  return time;
}

Table loading(const Report& report, const std::string& self) {
  std::vector<double> whole, empty;
  for (int run = 0; run < (report.isQuick() ? 3 : 41); ++run) {
    empty.push_back(loadTime(self, FULL_SIZE_EMPTY_LIBRARY));
    whole.push_back(loadTime(self, FULL_SIZE_LIBRARY));
  }
  const Figure with = figureOf(whole), without = figureOf(empty);
  Table table;
  table.title = "Full-size catalogue: loading the library";
  table.unit = "ms";
  table.note = "Processor time in a fresh process, which has loaded what the library needs.";
  table.rows.push_back({"with the whole catalogue", with, {}, true, 0});
  table.rows.push_back({"with an empty catalogue", without, {}, true, 0});
  table.rows.push_back(
      {"what the catalogue adds", {with.low - without.low, with.median - without.median, 0}, {}, true, 5});
  return table;
}

/// Bytes of a file without its symbols for debuggers, in millions.
double strippedSize(const std::string& path) {
  const fs::path copy = fs::temp_directory_path() / ("zqxml_full_size_" + std::to_string(getpid()));
  const std::string command = "strip -o '" + copy.string() + "' '" + path + "'";
  require(std::system(command.c_str()) == 0, "a library cannot be stripped");
  const auto size = static_cast<double>(fs::file_size(copy));
  fs::remove(copy);
  return size / 1e6;
}

Table sizes() {
  const double whole = strippedSize(FULL_SIZE_LIBRARY);
  const double empty = strippedSize(FULL_SIZE_EMPTY_LIBRARY);
  Table table;
  table.title = "Full-size catalogue: size of the library";
  table.unit = "MB";
  table.rows.push_back({"with the whole catalogue", figureOf({whole}), {}, true, 0});
  table.rows.push_back({"what the catalogue adds", figureOf({whole - empty}), {}, true, 12});
  return table;
}

/// Processor seconds of a program that ends well, and the most memory that it took.
double secondsOf(const std::vector<std::string>& command, double& megabytes) {
  std::vector<char*> words;
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    execv(words[0], words.data());
    _exit(127);
  }
  int status = 0;
  rusage usage{};
  require(child > 0 && wait4(child, &status, 0, &usage) == child && status == 0, "zqcatc fails");
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
  };
  megabytes = static_cast<double>(usage.ru_maxrss) / 1e3;
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

/// Processor seconds of the compiler, over all objects of the tables, as timed_compile.sh has noted them.
double compilerSeconds() {
  double sum = 0;
  int objects = 0;
  for (const auto& entry : fs::recursive_directory_iterator(FULL_SIZE_OBJECTS)) {
    if (entry.path().extension() != ".seconds") continue;
    double user = 0, system = 0;
    std::ifstream file(entry.path());
    require(static_cast<bool>(file >> user >> system), "the time of a compilation is not known");
    sum += user + system;
    ++objects;
  }
  require(objects != 0, "no compilation was timed");
  return sum;
}

Table making(Report& report) {
  std::vector<std::string> command{FULL_SIZE_ZQCATC, "--check", FULL_SIZE_SCHEMA, FULL_SIZE_MADE_SCHEMA};
  double megabytes = 0;
  const double checked = secondsOf(command, megabytes);
  const fs::path out = fs::temp_directory_path() / ("zqxml_full_size_" + std::to_string(getpid()));
  command[1] = "--out=" + out.string();
  const double written = secondsOf(command, megabytes);
  fs::remove_all(out);
  char memory[32];
  std::snprintf(memory, sizeof memory, "%.0f MB", megabytes);
  report.fact("Memory of zqcatc with the full-size catalogue", memory);
  Table table;
  table.title = "Full-size catalogue: making the tables";
  table.unit = "s";
  table.note =
      "Processor time. The compiler's was noted when the build ran it, optimizing as for the library.";
  table.rows.push_back({"zqcatc --check", figureOf({checked}), {}, true, 0});
  table.rows.push_back({"zqcatc --out", figureOf({written}), {}, true, 0});
  table.rows.push_back({"the compiler, all tables", figureOf({compilerSeconds()}), {}, true, 60});
  return table;
}

int run(int argc, char** argv) {
  if (argc == 3 && std::string_view(argv[1]) == kLoad) return load(argv[2]);
  Report report(argc, argv);
  const Keys keys;
  checkLookUps(keys);
  report.add(making(report));
  report.add(sizes());
  report.add(loading(report, fs::read_symlink("/proc/self/exe")));
  return runMeasurements(report, {lookUps(keys)});
}

}  // namespace
}  // namespace zqxml::bench

int main(int argc, char** argv) {
  return zqxml::bench::run(argc, argv);
}
