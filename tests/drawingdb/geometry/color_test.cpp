#include "drawingdb/color.h"

#include <gtest/gtest.h>

namespace {

TEST(Color, Palette) {
    const struct {
        int index;
        std::uint32_t rgb;
    } cases[] = {
        {0, 0x000000},   {1, 0xFF0000},   {2, 0xFFFF00},   {5, 0x0000FF},   {7, 0xFFFFFF},   {8, 0x808080},
        {9, 0xC0C0C0},   {10, 0xFF0000},  {11, 0xFF7F7F},  {12, 0xA50000},  {13, 0xA55252},  {14, 0x7F0000},
        {16, 0x4C0000},  {18, 0x260000},  {19, 0x261313},  {20, 0xFF3F00},  {21, 0xFF9F7F},  {30, 0xFF7F00},
        {50, 0xFFFF00},  {90, 0x00FF00},  {110, 0x00FF7F}, {130, 0x00FFFF}, {170, 0x0000FF}, {210, 0xFF00FF},
        {240, 0xFF003F}, {250, 0x333333}, {252, 0x848484}, {255, 0xFFFFFF},
    };
    for (const auto& c : cases)
        EXPECT_EQ(OdCmEntityColor::lookUpRGB(static_cast<std::uint8_t>(c.index)), c.rgb) << c.index;
}

TEST(Color, NearestNumber) {
    for (int i = 1; i < 256; ++i) {
        const std::uint32_t rgb = OdCmEntityColor::lookUpRGB(static_cast<std::uint8_t>(i));
        EXPECT_EQ(OdCmEntityColor::lookUpRGB(OdCmEntityColor::lookUpIndex(rgb)), rgb) << i;
    }
    EXPECT_EQ(OdCmEntityColor::lookUpIndex(0xFE0101), 1);
    EXPECT_EQ(OdCmEntityColor::lookUpIndex(0x7F7F7E), 8);
}

TEST(Color, DxfGroupsRoundTrip) {
    const struct {
        int index;
        std::int32_t trueColor;
        const wchar_t* book;
        OdCmEntityColor::ColorMethod method;
    } cases[] = {
        {256, -1, L"", OdCmEntityColor::kByLayer}, {0, -1, L"", OdCmEntityColor::kByBlock},
        {257, -1, L"", OdCmEntityColor::kNone},    {1, -1, L"", OdCmEntityColor::kByIndex},
        {255, -1, L"", OdCmEntityColor::kByIndex}, {30, 0xFF8000, L"", OdCmEntityColor::kByRgb},
        {5, 0, L"", OdCmEntityColor::kByRgb},      {132, 0x00A0C0, L"RAL CLASSIC$RAL 5021", OdCmEntityColor::kByRgb},
    };
    for (const auto& c : cases) {
        const OdCmColor color = OdCmColor::fromDxf(c.index, c.trueColor, c.book);
        EXPECT_EQ(color.colorMethod(), c.method) << c.index;
        EXPECT_EQ(color.colorIndex(), c.index);
        EXPECT_EQ(color.dxfTrueColor(), c.trueColor) << c.index;
        EXPECT_EQ(color.bookName(), c.book);
    }
    // What a file must not have but does.
    EXPECT_EQ(OdCmColor::fromIndex(-3), OdCmColor::fromIndex(3)) << "a layer that is off";
    EXPECT_TRUE(OdCmColor::fromIndex(4711).isByLayer());
    EXPECT_TRUE(OdCmColor::fromIndex(std::numeric_limits<int>::min()).isByLayer());
    EXPECT_EQ(OdCmColor::fromDxf(3, 0x1000000), OdCmColor::fromIndex(3));
    // A new true colour gets the nearest number for programs that know no other.
    EXPECT_EQ(OdCmColor::fromRgb(0, 0, 250).colorIndex(), 5);
    EXPECT_EQ(OdCmColor::fromDxf(30, 0x0000FA), OdCmColor::fromRgb(0, 0, 250));
}

TEST(Color, NamesRoundTrip) {
    const struct {
        OdCmColor color;
        const wchar_t* name;
    } cases[] = {
        {OdCmColor(), L"ByLayer"},
        {OdCmColor::fromMethod(OdCmEntityColor::kByBlock), L"ByBlock"},
        {OdCmColor::fromMethod(OdCmEntityColor::kForeground), L"Foreground"},
        {OdCmColor::fromMethod(OdCmEntityColor::kNone), L"None"},
        {OdCmColor::fromIndex(1), L"red"},
        {OdCmColor::fromIndex(7), L"white"},
        {OdCmColor::fromIndex(8), L"color 8"},
        {OdCmColor::fromIndex(255), L"color 255"},
        {OdCmColor::fromRgb(255, 0, 0), L"255,0,0"},
        {OdCmColor::fromRgb(1, 2, 3), L"1,2,3"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.color.colorNameForDisplay(), c.name);
        EXPECT_EQ(OdCmColor::fromDisplayName(c.name), c.color);
    }
    EXPECT_EQ(OdCmColor::fromDxf(5, 0x00A0C0, L"RAL CLASSIC$RAL 5021").colorNameForDisplay(), L"RAL 5021");
    EXPECT_EQ(OdCmColor::fromDisplayName(L" BY LAYER "), OdCmColor());
    EXPECT_EQ(OdCmColor::fromDisplayName(L"30"), OdCmColor::fromIndex(30));
    EXPECT_EQ(OdCmColor::fromDisplayName(L" 1, 2 ,3 "), OdCmColor::fromRgb(1, 2, 3));
    for (const wchar_t* text :
         {L"", L"256", L"-1", L"1,2", L"1,2,256", L"1,2,3,4", L"color", L"color red", L"1.5", L"reddish"})
        EXPECT_FALSE(OdCmColor::fromDisplayName(text)) << text;
}

}  // namespace
