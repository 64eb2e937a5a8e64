// A visitor of one's own: makes the names of clients anonymous, wherever in a message they stand.
//
// A visitor knows no class: it is told every field, and finds those that it wants by name and type. What it
// does not touch stays as it is. The same visitor walks a message object, or its XML text.
#include <zqxml/catalogue/generated/JobManager.h>
#include <zqxml/catalogue/generated/ZqEntities.h>
#include <zqxml/traverse/xml_traverse.h>

#include <cstdlib>
#include <iostream>
#include <map>
#include <string>
#include <string_view>

namespace {

class Anonymiser : public zqxml::XmlTraverseHandler {
 public:
  void visit(zqxml::MsgFieldContext& context) override {
    const zqxml::FieldDef& field = context.getField();
    if (!context.isValueSet() || field.getType() != zqxml::FDT_STRING ||
        field.getName() != std::string_view("clientName"))
      return;
    // The place of the value: for this type a std::string.
    const auto* name = static_cast<const std::string*>(field.getFieldAddrResolved(context.getMsgObj()));
    context.replaceValue(substitute(*name));
  }

  std::size_t count() const { return substitutes_.size(); }

 private:
  /// The same name for the same client.
  const std::string& substitute(const std::string& name) {
    return substitutes_.try_emplace(name, "client " + std::to_string(substitutes_.size() + 1)).first->second;
  }

  std::map<std::string, std::string> substitutes_;
};

}  // namespace

int main() {
  zqxml::JobManager::JobListResp list;
  for (const char* client : {"payroll.example", "mail.example", "payroll.example"}) {
    zqxml::JobManager::Job& job = list.addToJobs();
    job.mutableSubclient().mutableClient().setClientName(client);
    job.setDescription("nightly run");
  }

  std::string xml;
  if (list.serialize(xml, true) != zqxml::XN_MSG_OK) return EXIT_FAILURE;
  std::cout << xml << '\n';

  Anonymiser anonymiser;
  zqxml::XmlTraverse walker;
  walker.traverse(list, anonymiser);  // the object
  walker.traverse(xml, anonymiser);   // the text
  std::cout << xml << '\n' << anonymiser.count() << " names\n";

  const auto& jobs = list.getJobs();
  const bool done = jobs[0].getSubclient()->getClient()->getClientName() == "client 1" &&
                    jobs[1].getSubclient()->getClient()->getClientName() == "client 2" &&
                    jobs[2].getSubclient()->getClient()->getClientName() == "client 1" &&
                    xml.find("payroll") == xml.npos;
  return done ? EXIT_SUCCESS : EXIT_FAILURE;
}
