#include "velquor/data/geometry_catalogue.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "velquor/frame/resources.h"

namespace velquor {
namespace {

struct CatalogueEntry {
  std::uint8_t code;
  const char* name;
  std::int16_t key;
};

// The catalogue as the library documents it: code, display name, sort key (tenths of a degree).
// clang-format off
constexpr CatalogueEntry kCatalogue[] = {
    {0, "d8", 450},           {1, "45/0", 450},         {2, "d0", 450},
    {3, "0/45", 450},         {4, "15°", 150},          {5, "20°", 200},
    {6, "22.5°", 225},        {7, "25°", 250},          {8, "45°", 450},
    {9, "72.5°", 725},        {10, "75°", 750},         {11, "110°", 1100},
    {12, "SCI", 450},         {13, "SCE", 450},         {14, "SCI/100", 450},
    {15, "SCE/100", 450},     {16, "SCI/0", 450},       {17, "SCE/0", 450},
    {18, "SCI/ADJ", 450},     {19, "SCE/ADJ", 450},     {20, "Left", 450},
    {21, "Center", 450},      {22, "Right", 450},       {23, "LCenter", 450},
    {24, "RCenter", 450},     {25, "0°", 0},            {26, "Reflectivity", 450},
    {27, "White Bkgd", 450},  {28, "Black Bkgd", 450},  {29, "Over White", 450},
    {30, "Over Black", 450},  {31, "Diffuse Tran", 450}, {32, "White Ref", 450},
    {33, "Black Ref", 450},   {34, "Over White", 450},  {35, "Over Black", 450},
    {36, "Average", 450},     {37, "Corr. Lam.", 450},  {38, "Retain", 450},
    {39, "Production", 450},  {40, "105°", 1050},       {41, "-15°", -150},
    {42, "M0", 450},          {43, "M1", 450},          {44, "M2", 450},
    {45, "M3", 450},
};
// clang-format on

TEST(GeometryCatalogue, EveryCodeHasItsNameStringAndKey) {
  static_assert(std::size(kCatalogue) == kAngleCodeCount);
  for (const CatalogueEntry& e : kCatalogue) {
    EXPECT_EQ(GetAngleName(e.code), e.name) << "code " << int(e.code);
    EXPECT_EQ(LoadStringResource(432u + e.code), e.name) << "string " << 432 + e.code;
    EXPECT_EQ(GetAngleKey(e.code), e.key) << "code " << int(e.code);
    EXPECT_EQ(GetAngleKeyDegrees(e.code), e.key / 10.0) << "code " << int(e.code);
  }
}

TEST(GeometryCatalogue, UncataloguedCodesHaveNoNameAndSortLikeFortyFive) {
  // String 478 follows the block and must not be taken for code 46's name.
  for (int code : {46, 47, 100, 255}) {
    EXPECT_EQ(GetAngleName(static_cast<std::uint8_t>(code)), "") << code;
    EXPECT_EQ(GetAngleKey(static_cast<std::uint8_t>(code)), 450) << code;
  }
}

TEST(GeometryCatalogue, StandardGeometryIsCodesZeroToThreeAndEight) {
  for (int code = 0; code < 256; ++code) {
    const bool expected = code == 0 || code == 1 || code == 2 || code == 3 || code == 8;
    EXPECT_EQ(IsStandardGeometry(static_cast<std::uint8_t>(code)), expected) << code;
  }
}

}  // namespace
}  // namespace velquor
