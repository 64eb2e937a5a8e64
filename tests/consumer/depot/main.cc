// A message of a subsystem that the installed library does not know, through the installed library.

#include <zqxml/catalogue/generated/Fleet.h>
#include <zqxml/catalogue/generated/ZQGui.h>
#include <zqxml/xml/xml_decoder.h>

#include <cstdio>
#include <memory>
#include <string>

int main() {
  zqxml::Fleet::Van van;
  van.setPlate("ZQ 42");
  van.mutableStops() = {"north", "south"};
  std::string xml;
  if (van.serialize(xml, true) != zqxml::XN_MSG_OK) return 1;
  const std::unique_ptr<zqxml::XNMessageBase> made(zqxml::XMLDecoder().unSerialize(xml));
  const bool same = made != nullptr && *made == van;
  const bool keepsTheRest = zqxml::XNMessageBase::GetClassDef(zqxml::ZQGui::SaveAlert::kTagId) != nullptr;
  std::printf("depot: %s %s\n", xml.c_str(), same && keepsTheRest ? "good" : "lost");
  return same && keepsTheRest ? 0 : 1;
}
