#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "TavuroCommon/TavuroCommon.h"

namespace {

using tavuro::ByteBuffer;
using tavuro::Image;
using tavuro::Picture;
using tavuro::PixelFormat;
using tavuro::Point;
using tavuro::TavuroError;

TEST(TavuroError, FactoryAndConstructorsKeepAbsentAndEmptyApart) {
  const TavuroError plain;
  const auto made = TavuroError::newInstance();
  for (const TavuroError* e : {&plain, static_cast<const TavuroError*>(made.get())}) {
    EXPECT_EQ(e->errorCode(), 0);
    EXPECT_FALSE(e->errorDescription().has_value());
  }

  const TavuroError noText(-5, std::nullopt);
  EXPECT_EQ(noText.errorCode(), -5);
  EXPECT_FALSE(noText.errorDescription().has_value());

  TavuroError e(tavuro::TavuroErrorCodes::ERROR_Network,
                tavuro::TavuroErrorDescriptions::ERROR_DESC_Network);
  EXPECT_EQ(e.errorDescription(), std::optional<std::string>("Network problem"));
  e.setErrorDescription(std::string());
  ASSERT_TRUE(e.errorDescription().has_value());
  EXPECT_EQ(*e.errorDescription(), "");
  e.setErrorDescription(std::nullopt);
  EXPECT_FALSE(e.errorDescription().has_value());
  e.setErrorCode(42);  // codes are never checked against the table
  EXPECT_EQ(e.errorCode(), 42);
}

TEST(TavuroErrorCodes, CanBeSwitchedOn) {
  // The codes must be usable as case labels; this is what hosts do.
  auto name = [](std::int64_t code) {
    switch (code) {
      case tavuro::TavuroErrorCodes::ERROR_InvalidCredentials: return "credentials";
      case tavuro::TavuroErrorCodes::ERROR_INVALID_PARAMETER: return "parameter";
      default: return "other";
    }
  };
  EXPECT_STREQ(name(-1), "credentials");
  EXPECT_STREQ(name(-29), "parameter");
  EXPECT_STREQ(name(0), "other");
}

void expectDefaultsApartFromPictureAndData(const Image& image) {
  EXPECT_EQ(image.dpi(), 0);
  EXPECT_EQ(image.error(), nullptr);
  EXPECT_FALSE(image.isCorrectAspectRatio());
  EXPECT_EQ(image.aspectRatio(), 0.0F);
  EXPECT_TRUE(image.points().empty());
  EXPECT_FALSE(image.isPassport());
}

TEST(Image, FactoriesGiveDefaults) {
  const Image plain;
  const auto made = Image::newInstance();
  for (const Image* image : {&plain, static_cast<const Image*>(made.get())}) {
    EXPECT_EQ(image->image(), nullptr);
    EXPECT_EQ(image->data(), nullptr);
    expectDefaultsApartFromPictureAndData(*image);
  }

  auto picture = Picture::make(1, 1, PixelFormat::Gray8, {7});
  ASSERT_NE(picture, nullptr);
  const auto withPicture = Image::newInstance(picture, nullptr);
  EXPECT_EQ(withPicture->image(), picture);
  EXPECT_EQ(withPicture->data(), nullptr);
  expectDefaultsApartFromPictureAndData(*withPicture);
}

TEST(Image, SharesItsBufferAndKeepsPointOrder) {
  auto buffer = ByteBuffer::newInstance();
  auto image = Image::newInstance(std::make_shared<Picture>(), buffer);
  buffer->append("\xFF\xD8", 2);
  ASSERT_EQ(image->data()->size(), 2U);
  EXPECT_EQ(image->data()->data()[1], 0xD8);

  const std::vector<Point> points{{3, 4}, {1, 2}, {-0.5, 1e9}};
  image->setPoints(points);
  EXPECT_EQ(image->points(), points);
  image->setPoints({});
  EXPECT_TRUE(image->points().empty());
}

TEST(Picture, AcceptsOnlyMatchingPixelBytes) {
  struct Case {
    std::uint32_t width, height;
    PixelFormat format;
    std::size_t bytes;
    bool accepted;
  };
  const Case cases[] = {
      {2, 3, PixelFormat::RGB8, 18, true},
      {2, 3, PixelFormat::RGB8, 17, false},
      {2, 3, PixelFormat::BGRA8, 24, true},
      {0, 5, PixelFormat::Gray8, 0, true},
      {0xFFFFFFFF, 0xFFFFFFFF, PixelFormat::RGBA8, 4, false},  // size overflows 32 bits
  };
  for (const Case& c : cases) {
    auto picture = Picture::make(c.width, c.height, c.format, std::vector<std::uint8_t>(c.bytes));
    EXPECT_EQ(picture != nullptr, c.accepted) << c.width << "x" << c.height;
    if (picture) {
      EXPECT_EQ(picture->bytesPerRow() * picture->height(), c.bytes);
    }
  }
}

}  // namespace
