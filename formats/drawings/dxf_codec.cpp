#include "formats/drawings/dxf_codec.h"

#include <zbr-formats/types.h>

#include <atomic>

namespace zbr::formats {
namespace {

std::atomic<const DxfCodec*> codecInUse{nullptr};

}  // namespace

void SetDxfCodec(const DxfCodec& codec) {
  codecInUse.store(&codec, std::memory_order_release);
}

const DxfCodec& DxfCodecFor(const std::string& file) {
  const DxfCodec* const codec = codecInUse.load(std::memory_order_acquire);
  if (codec == nullptr) throw Failure(file, "this program was built without DXF");
  return *codec;
}

}  // namespace zbr::formats
