// The shared growable byte buffer that image records carry.
#include "TavuroCommon/TavuroCommon.h"

namespace tavuro {

ByteBuffer::ByteBuffer(const void* bytes, std::size_t size) {
  append(bytes, size);
}

ByteBuffer::ByteBuffer(std::vector<std::uint8_t> bytes) noexcept : bytes_(std::move(bytes)) {}

std::shared_ptr<ByteBuffer> ByteBuffer::newInstance() {
  return std::make_shared<ByteBuffer>();
}

void ByteBuffer::append(const void* bytes, std::size_t size) {
  if (size == 0) return;
  const auto* first = static_cast<const std::uint8_t*>(bytes);
  bytes_.insert(bytes_.end(), first, first + size);
}

void ByteBuffer::resize(std::size_t size) {
  bytes_.resize(size);
}

}  // namespace tavuro
