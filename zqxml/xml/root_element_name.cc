#include <zqxml/message/internal/message_access.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/xml/internal/root_element_name.h>

#include <algorithm>
#include <array>
#include <cstdint>

namespace zqxml {
namespace {

constexpr int kDistributedIDA = 119;

/// Class ids, ascending.
constexpr std::array<std::uint32_t, 12> kSystemMonitoringClasses{
    537016,    // SysMonNASContent
    2005286,   // GenericSysMonPlainEvent
    2983808,   // SysMonPolicyAndTemplate
    4009446,   // FetchResMonPoliciesResp
    5000136,   // FetchResMonPoliciesReq
    8796514,   // GenericSysMonEventList
    10565217,  // GenericEventList
    11355575,  // FetchAllNASAuditContent
    11716675,  // RemoveItemsToMonitor
    11885347,  // GenericEvent
    13502116,  // GenericSysMonEvent
    14900576,  // AddItemsToMonitor
};

}  // namespace

std::string rootElementName(const XNMessageBase& msg) {
  const _ClassDef* classDef = MessageAccess::classDef(msg);
  if (classDef != nullptr && msg.getSubsysID() == kDistributedIDA &&
      std::ranges::binary_search(kSystemMonitoringClasses, classDef->getClassId()))
    return std::string("SystemMonitoring_") + classDef->getName();
  return msg.getTagName();
}

}  // namespace zqxml
