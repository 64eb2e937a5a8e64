// The two roads of XML: the fast one, and the reference that goes through the XML library.
#pragma once

#include <zqxml/xml/internal/xml_start_up_once.h>

#include <cstdlib>

namespace zqxml {

/// Opens or closes the fast roads during the life of the object.
class FastXmlRoads {
 public:
  explicit FastXmlRoads(bool open) : before_(XmlStartUp::process().setFastXml(open)) {}
  ~FastXmlRoads() { XmlStartUp::process().setFastXml(before_); }
  FastXmlRoads(const FastXmlRoads&) = delete;
  FastXmlRoads& operator=(const FastXmlRoads&) = delete;

 private:
  bool before_;
};

/// How many random inputs a comparison of the two takes: `usual`, or with ZQXML_ALL_COMPARISONS set in the
/// environment all that it is made for.
inline int comparisons(int usual, int all = 200000) {
  return std::getenv("ZQXML_ALL_COMPARISONS") == nullptr ? usual : all;
}

}  // namespace zqxml
