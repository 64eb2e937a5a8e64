#include <zqxml/annotation/internal/password_registry.h>
#include <zqxml/catalogue/generated/Annotation.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/logging/xml_log_context.h>

#include <array>
#include <atomic>

namespace zqxml {
namespace {

/// The routines of one direction by encryption type. QUIRK: type 11 has no entry, although the enumeration
/// has it.
using RoutineTable = std::array<std::atomic<PasswordRoutine>, 11>;
RoutineTable encryptionRoutines{};
RoutineTable decryptionRoutines{};

std::atomic<PasswordRoutine>* entry(RoutineTable& table, int type) {
  const auto index = static_cast<std::size_t>(type);
  return type >= 0 && index < table.size() ? &table[index] : nullptr;
}

PasswordRoutine find(RoutineTable& table, int type) {
  const std::atomic<PasswordRoutine>* found = entry(table, type);
  return found == nullptr ? nullptr : found->load(std::memory_order_acquire);
}

/// False when the type has no entry.
bool store(RoutineTable& table, int type, PasswordRoutine routine) {
  std::atomic<PasswordRoutine>* found = entry(table, type);
  if (found != nullptr) found->store(routine, std::memory_order_release);
  return found != nullptr;
}

}  // namespace

const char* passwordTypeName(int type) {
  constexpr short kAnnotation = Annotation::Password::kSubsystem;
  int classIndex = 0;
  if (!catalogue::classIndexFromName("PasswordEncryptType", kAnnotation, classIndex)) return "";
  const char* name = catalogue::enumeratorName(*catalogue::classAt(kAnnotation, classIndex), type);
  return name == nullptr ? "" : name;
}

PasswordRoutine encryptionRoutine(int type) {
  return find(encryptionRoutines, type);
}
PasswordRoutine decryptionRoutine(int type) {
  return find(decryptionRoutines, type);
}

void XMLDecoder::registerPasswordEncAlgo(Annotation::PasswordEncryptType type, PasswordRoutine routine) {
  const int number = static_cast<int>(type);
  if (store(encryptionRoutines, number, routine)) {
    if (!debugEnabled(10)) return;
    logDebug("XMLDecoder::registerPasswordEncAlgo", 10,
             "Successfully Registered Password Encryption Algorithm for type = [%d] [%s]", number,
             passwordTypeName(number));
  } else {
    logDebug("XMLDecoder::registerPasswordEncAlgo", 10,
             "Password Encryption Algorithm for type [%d] out of range ", number);
  }
}

void XMLDecoder::registerPasswordDecAlgo(Annotation::PasswordEncryptType type, PasswordRoutine routine) {
  const int number = static_cast<int>(type);
  // QUIRK: the lines speak of encryption, although this registers decryption.
  if (store(decryptionRoutines, number, routine)) {
    logDebug("XMLDecoder::registerPasswordDecAlgo", 10,
             "Successfully Registered Password Encryption Algorithm for type = [%d]", number);
  } else {
    logDebug("XMLDecoder::registerPasswordDecAlgo", 10,
             "Password Encryption Algorithm type [%d] out of range", number);
  }
}

PasswordRoutine XMLDecoder::GetRegisteredPasswordEncAlgo(Annotation::PasswordEncryptType type) {
  return encryptionRoutine(static_cast<int>(type));
}

PasswordRoutine XMLDecoder::GetRegisteredPasswordDecAlgo(Annotation::PasswordEncryptType type) {
  return decryptionRoutine(static_cast<int>(type));
}

}  // namespace zqxml
