// Picture, the decoded picture that image records carry, and the sizes of
// its pixel formats.
#include <limits>

#include "TavuroCommon/TavuroCommon.h"

namespace tavuro {

std::size_t bytesPerPixel(PixelFormat format) noexcept {
  switch (format) {
    case PixelFormat::Gray8: return 1;
    case PixelFormat::RGB8: return 3;
    case PixelFormat::RGBA8:
    case PixelFormat::BGRA8: return 4;
  }
  return 0;
}

std::shared_ptr<const Picture> Picture::make(std::uint32_t width, std::uint32_t height,
                                             PixelFormat format, std::vector<std::uint8_t> pixels) {
  const std::size_t perPixel = bytesPerPixel(format);
  if (perPixel == 0) return nullptr;
  // The expected size must not wrap around, or a short buffer could pass.
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

}  // namespace tavuro
