#include <limits>

#include "TavuroCommon/TavuroCommon.h"

namespace tavuro {

ByteBuffer::ByteBuffer(const void* bytes, std::size_t size) {
  append(bytes, size);
}

ByteBuffer::ByteBuffer(std::vector<std::uint8_t> bytes) noexcept
    : bytes_(std::move(bytes)) {}

std::shared_ptr<ByteBuffer> ByteBuffer::newInstance() {
  return std::make_shared<ByteBuffer>();
}

void ByteBuffer::append(const void* bytes, std::size_t size) {
  if (size == 0) return;
  const auto* first = static_cast<const std::uint8_t*>(bytes);
  bytes_.insert(bytes_.end(), first, first + size);
}

void ByteBuffer::resize(std::size_t size) { bytes_.resize(size); }

std::size_t bytesPerPixel(PixelFormat format) noexcept {
  switch (format) {
    case PixelFormat::Gray8: return 1;
    case PixelFormat::RGB8: return 3;
    case PixelFormat::RGBA8:
    case PixelFormat::BGRA8: return 4;
  }
  return 0;
}

std::shared_ptr<const Picture> Picture::make(std::uint32_t width,
                                             std::uint32_t height,
                                             PixelFormat format,
                                             std::vector<std::uint8_t> pixels) {
  const std::size_t perPixel = bytesPerPixel(format);
  if (perPixel == 0) return nullptr;
  const std::size_t maxSize = std::numeric_limits<std::size_t>::max();
  if (width != 0 && height > maxSize / width) return nullptr;
  const std::size_t count = static_cast<std::size_t>(width) * height;
  if (count != 0 && perPixel > maxSize / count) return nullptr;
  if (pixels.size() != count * perPixel) return nullptr;

  auto picture = std::make_shared<Picture>();
  picture->width_ = width;
  picture->height_ = height;
  picture->format_ = format;
  picture->pixels_ = std::move(pixels);
  return picture;
}

Image::~Image() = default;

std::shared_ptr<Image> Image::newInstance() { return std::make_shared<Image>(); }

std::shared_ptr<Image> Image::newInstance(std::shared_ptr<const Picture> image,
                                          std::shared_ptr<ByteBuffer> data) {
  auto record = newInstance();
  record->setImage(std::move(image));
  record->setData(std::move(data));
  return record;
}

}  // namespace tavuro
