// AnnotationBase: base of the generated annotation classes.
#pragma once

#include <zqxml/message/xn_message_base.h>

#include <cstdint>

namespace zqxml {

/// A message of subsystem Annotation that XMLDecoder::FillAnnotation can fill; adds no fields.
class ZQXML_EXPORT AnnotationBase : public XNMessageBase {
 public:
  /// @{
  /// As the constructors of XNMessageBase: in storage of its own, or in a block of the caller's.
  AnnotationBase(int subsystem, int classIndex) : XNMessageBase(subsystem, classIndex) {}
  AnnotationBase(int subsystem, int classIndex, std::int64_t* block, int blockSize)
      : XNMessageBase(subsystem, classIndex, block, blockSize) {}
  /// @}
};

}  // namespace zqxml
