// An XML library that fails on demand, for tests.
#pragma once

namespace zqxml {

/// What goes wrong, and how.
enum class DomFault {
  kNone,
  kNoImplementation,        ///< no implementation of "LS" from the start
  kNoWriterImplementation,  ///< none any more once a document has been made
  kCreateDocument,          ///< createDocument throws
  kRelease,                 ///< the document throws when it is released
  kWriteIsFalse,            ///< the writer writes half a text and answers false
  kWriteHasNul,             ///< the writer puts a NUL into the text
  kWrite,                   ///< the writer throws
};

enum class DomException { kDom, kXml, kSaxParse, kStandard };

/// While it lives, the writer's XML library does as it says. One at a time, and no other thread may write.
class ScopedDomFault {
 public:
  explicit ScopedDomFault(DomFault fault, DomException exception = DomException::kStandard);
  ~ScopedDomFault();
  ScopedDomFault(const ScopedDomFault&) = delete;
  ScopedDomFault& operator=(const ScopedDomFault&) = delete;
};

}  // namespace zqxml
