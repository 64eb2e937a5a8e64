#include <zqxml/catalogue/xpath_data.h>

namespace zqxml::catalogue {

const XPathData* xpathData(short subsystem) {
  for (const XPathData* row = gXPathTable; row->paths != nullptr; ++row)
    if (static_cast<std::int64_t>(row->subsystem) == subsystem) return row;
  return nullptr;
}

int xpathIndexOfId(const XPathIDHelper* helper, int count, int id) {
  const int place = findSorted(helper, count, [id](const XPathIDHelper& entry) {
    return (entry.id > id ? 1 : 0) - (entry.id < id ? 1 : 0);
  });
  return place < 0 ? -1 : helper[place].index;
}

int xpathIndexOfPath(const XPathData& data, std::string_view xpath) {
  return findSorted(data.paths, data.count, [xpath](const XPathEntry& entry) {
    return std::string_view(entry.xpath).compare(xpath);
  });
}

}  // namespace zqxml::catalogue
