#include "TavuroCommon/TavuroCommon.h"

namespace tavuro {

Image::~Image() = default;

std::shared_ptr<Image> Image::newInstance() {
  return std::make_shared<Image>();
}

std::shared_ptr<Image> Image::newInstance(std::shared_ptr<const Picture> image,
                                          std::shared_ptr<ByteBuffer> data) {
  auto record = newInstance();
  record->setImage(std::move(image));
  record->setData(std::move(data));
  return record;
}

}  // namespace tavuro
