#include <zqxml/annotation/annotation_record.h>

#include <array>

#include "diff_change.h"
#include "diff_fields.h"
#include "field_forms.h"

namespace zqxml::zqcatc {

namespace {

struct NamedFlag {
  AnnotationFlag flag;
  std::string_view name;
};

constexpr std::array kFlags{
    NamedFlag{annotation_flag::kPassword, "Password"},
    NamedFlag{annotation_flag::kZQTime, "ZQTime"},
    NamedFlag{annotation_flag::kSuppress, "Suppress"},
    NamedFlag{annotation_flag::kXDate, "XDate"},
    NamedFlag{annotation_flag::kGenPath, "GenPath"},
    NamedFlag{annotation_flag::kHideInReports, "HideInReports"},
    NamedFlag{annotation_flag::kSingleInstanced, "SingleInstanced"},
    NamedFlag{annotation_flag::kCommandParam, "CommandParam"},
    NamedFlag{annotation_flag::kText, "Text"},
    NamedFlag{annotation_flag::kSearchCriteriaDef, "SearchCriteriaDef"},
    NamedFlag{annotation_flag::kStoredProcedure, "StoredProcedure"},
    NamedFlag{annotation_flag::kIndexAttr, "IndexAttr"},
    NamedFlag{annotation_flag::kMarkAsCDATA, "MarkAsCDATA"},
    NamedFlag{annotation_flag::kSensitive, "Sensitive"},
};

unsigned bits(const AnnotationRecord& record, AnnotationFlag flag) {
  return record.flags(flag.byte) & flag.mask;
}

/// "Sensitive added, XDate removed", or that what stands behind a flag changed.
std::string flagChanges(const AnnotationRecord& before, const AnnotationRecord& after) {
  std::string text;
  for (const NamedFlag& named : kFlags) {
    const unsigned old = bits(before, named.flag);
    const unsigned now = bits(after, named.flag);
    if (old == now) continue;
    text += cat(text.empty() ? "" : ", ", named.name,
                old == 0   ? " added"
                : now == 0 ? " removed"
                           : " changed");
  }
  return text.empty() ? "what they say" : text;
}

/// What a password field's record is to the codecs.
void comparePassword(bool hadRecord, bool hasRecord, const AnnotationRecord& before,
                     const AnnotationRecord& after, Change& change) {
  if (hadRecord != hasRecord) {
    change.xml("without a record the password is left out")
        .binary("without a record the field has no value on the wire, and its reader gives up the message");
  } else if ((before.passwordType() == 0) != (after.passwordType() == 0)) {
    change.xml("without a type the password is left out")
        .binary("with a type the bytes are encrypted, and without one they are taken for the plain text");
  } else if (before.passwordType() != after.passwordType()) {
    change.note("a stored password tells its type itself; both sides need the routines of both types");
  }
}

}  // namespace

void compareAnnotations(const std::optional<std::string>& before, const std::optional<std::string>& after,
                        unsigned type, const Position& place, std::string_view what,
                        std::vector<Finding>& changes) {
  if (before == after) return;
  const AnnotationRecord old(before.has_value() ? std::string_view(*before) : std::string_view());
  const AnnotationRecord now(after.has_value() ? std::string_view(*after) : std::string_view());
  Change change("annotation", place, cat("annotations of ", what, " changed (", flagChanges(old, now), ")"));
  if (isPassword(type)) comparePassword(before.has_value(), after.has_value(), old, now, change);
  if (kNumberTypes.contains(type) && (old.dateType() != now.dateType() || old.isTime() != now.isTime()))
    change.xml(
        "a readable text holds a date, a time or a number, and only a reader that expects it reads it");
  if (old.isSensitive() != now.isSensitive()) {
    change.note(now.isSensitive() ? "masked texts show it no more"
                                  : "masked texts show it from now on, in logs too");
  }
  if (old.isCdata() != now.isCdata()) change.note("readers take an attribute and a CDATA section alike");
  if (change.isSafe()) change.note("no form depends on it");
  changes.push_back(change.finding());
}

}  // namespace zqxml::zqcatc
