// Makes a message, sets fields, serializes it as XML and as bytes, and reads both back.

// [readme]
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/catalogue/generated/ZQGui.h>

#include <iostream>

int main() {
  zqxml::ZQGui::SaveAlert alert;   // make
  alert.setLoginName("operator");  // set
  alert.setAlertLocation("/srv/alerts");
  alert.setUseNetworkShare(1);

  std::string xml;  // serialize
  zqxml::BinaryBuffer bytes;
  if (alert.serialize(xml) != zqxml::XN_MSG_OK || alert.SerializeBinary(bytes) == 0) return 1;

  zqxml::ZQGui::SaveAlert fromXml, fromBytes;  // read back
  if (fromXml.unserialize(xml) != zqxml::XN_MSG_OK || fromBytes.UnserializeBinary(bytes) != 0) return 1;

  std::cout << xml << '\n' << bytes.getDataSize() << " bytes\n" << fromXml.getLoginName() << '\n';
  return fromXml == alert && fromBytes == alert ? 0 : 1;
}
// [readme]
