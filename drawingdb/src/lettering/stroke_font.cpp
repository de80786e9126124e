// The built-in single-stroke font.
//
// A glyph is drawn on a grid where capitals are 12 high, small letters 8, and descenders reach 4 below the baseline:
//
//     glyph  = stroke *( ";" stroke )
//     stroke = point *( " " step )
//     step   = point          a straight line
//            | "h" point      a quarter of an ellipse that leaves horizontally and arrives vertically
//            | "v" point      one that leaves vertically and arrives horizontally
//     point  = number "," number
//
// Where a glyph begins on the grid does not matter: it is moved so that the same room lies on both sides. Accented
// letters and the like are put together from parts, each with a scale and an offset.

#include "drawingdb/stroke_font.h"

#include <algorithm>
#include <bitset>
#include <charconv>
#include <memory>
#include <string_view>
#include <unordered_map>

#include "drawingdb/src/lettering/text_codes.h"

namespace drawingdb {

namespace {

constexpr double kCapitalHeight = 12.0;
constexpr double kSideBearing = 1.5;
constexpr double kBlankAdvance = 8.0;

struct DrawnGlyph {
    char32_t character;
    std::string_view drawing;
};

// Accents are drawn about x = 0, as they stand above a small letter.
constexpr char32_t kGrave = 0x300, kAcute = 0x301, kCircumflex = 0x302, kTilde = 0x303, kMacron = 0x304,
                   kDiaeresis = 0x308, kRing = 0x30A, kCedilla = 0x327;
constexpr char32_t kDotlessI = 0x131;
constexpr std::string_view kBox = "0,0 0,12 7,12 7,0 0,0";

constexpr DrawnGlyph kDrawn[] = {
    {U'!', "0,12 0,4;0,1 0,0"},
    {U'"', "0,12 0,9;3,12 3,9"},
    {U'#', "2.5,12 1,0;6.5,12 5,0;0,8 7.5,8;0,4 7,4"},
    {U'$', "7,8.5 v3.5,11 h0,8.5 v3.5,6 h7,3.5 v3.5,1 h0,3.5;3.5,13 3.5,-1"},
    {U'%', "8,12 0,0;0,10 v1.75,12 h3.5,10 v1.75,8 h0,10;4.5,2 v6.25,4 h8,2 v6.25,0 h4.5,2"},
    {U'&', "8,0 1.5,8 0.9,9.5 v3,12 h5,9.8 5,9 4,7.4 0.9,5.2 0,3.2 v3.2,0 h6.6,2.2 8,4.8"},
    {U'\'', "0,12 0,9"},
    {U'(', "3,13 1.3,10.8 0.3,8 0,5 0.3,2 1.3,-0.8 3,-3"},
    {U')', "0,13 1.7,10.8 2.7,8 3,5 2.7,2 1.7,-0.8 0,-3"},
    {U'*', "3,10 3,4;0.4,8.5 5.6,5.5;0.4,5.5 5.6,8.5"},
    {U'+', "4,10 4,2;0,6 8,6"},
    {U',', "0.8,1 0.8,0 0,-2"},
    {U'-', "0,5 5,5"},
    {U'.', "0,1 0,0"},
    {U'/', "0,-1 6,13"},
    {U'0', "0,8 v3.5,12 h7,8 7,4 v3.5,0 h0,4 0,8"},
    {U'1', "0,9.5 3,12 3,0"},
    {U'2', "0.3,9 v3.6,12 h7,8.8 6.4,6.8 0,0 7.2,0"},
    {U'3', "0.3,9.8 v3.5,12 h6.6,9.2 v3.5,6.5 2.2,6.5;3.5,6.5 h7,3.2 v3.5,0 h0,2.6"},
    {U'4', "5.4,0 5.4,12 0,3.5 7.5,3.5"},
    {U'5', "6.5,12 1,12 0.5,6.8 v3.4,7.7 h7,4 v3.4,0 h0,2.4"},
    {U'6', "6.4,10.3 v3.9,12 h0,6 0,3.8 v3.5,0 h7,3.7 v3.5,7.4 h0,3.8"},
    {U'7', "0,12 7,12 2.6,0"},
    {U'8', "3.5,6.4 h0.5,9.2 v3.5,12 h6.5,9.2 v3.5,6.4 h0,3.2 v3.5,0 h7,3.2 v3.5,6.4"},
    {U'9', "0.6,1.7 v3.1,0 h7,6 7,8.2 v3.5,12 h0,8.3 v3.5,4.6 h7,8.2"},
    {U':', "0,8 0,7;0,1 0,0"},
    {U';', "0.8,8 0.8,7;0.8,1 0.8,0 0,-2"},
    {U'<', "7,10 0,6 7,2"},
    {U'=', "0,8 7,8;0,4 7,4"},
    {U'>', "0,10 7,6 0,2"},
    {U'?', "0,9 v3.2,12 h6.4,9 5.8,7.4 3.8,5.8 3.2,4.4 3.2,3.5;3.2,1 3.2,0"},
    {U'@', "7.2,6 v5.2,8.2 h3.2,6 v5.2,3.8 h7.2,6;7.2,8.2 7.2,5.2 v8.6,3.8 h10,6.5 v5.2,12 h0,6 v5.2,0 8,1"},
    {U'A', "0,0 4.2,12 8.4,0;1.5,4.2 6.9,4.2"},
    {U'B', "0,0 0,12 4,12 h6.9,9.2 v4,6.4 0,6.4;4,6.4 h7.4,3.2 v4,0 0,0"},
    {U'C', "8,9.2 v4.4,12 h0,8 0,4 v4.4,0 h8,2.8"},
    {U'D', "0,0 0,12 3.8,12 h8,7.6 8,4.4 v3.8,0 0,0"},
    {U'E', "7,12 0,12 0,0 7,0;0,6.3 5.4,6.3"},
    {U'F', "7,12 0,12 0,0;0,6.3 5.4,6.3"},
    {U'G', "8,9.2 v4.4,12 h0,8 0,4 v4.4,0 h8.2,3.6 8.2,5.6 5,5.6"},
    {U'H', "0,0 0,12;8,0 8,12;0,6.3 8,6.3"},
    {U'I', "0,0 0,12"},
    {U'J', "5,12 5,3 v2.5,0 h0,3"},
    {U'K', "0,0 0,12;7.6,12 0,4.6;2.8,7.3 8,0"},
    {U'L', "0,12 0,0 6.6,0"},
    {U'M', "0,0 0,12 4.6,3.5 9.2,12 9.2,0"},
    {U'N', "0,0 0,12 8,0 8,12"},
    {U'O', "0,7.6 v4.3,12 h8.6,7.6 8.6,4.4 v4.3,0 h0,4.4 0,7.6"},
    {U'P', "0,0 0,12 4.2,12 h7.4,8.9 v4.2,5.8 0,5.8"},
    {U'Q', "0,7.6 v4.3,12 h8.6,7.6 8.6,4.4 v4.3,0 h0,4.4 0,7.6;5.4,3 9,-1"},
    {U'R', "0,0 0,12 4.2,12 h7.4,8.9 v4.2,5.8 0,5.8;3.8,5.8 7.8,0"},
    {U'S', "7.2,9.2 v3.7,12 h0.2,9.2 v3.7,6.3 h7.4,3.2 v3.7,0 h0,2.8"},
    {U'T', "0,12 8,12;4,12 4,0"},
    {U'U', "0,12 0,4 v4,0 h8,4 8,12"},
    {U'V', "0,12 4.2,0 8.4,12"},
    {U'W', "0,12 2.8,0 5.6,10 8.4,0 11.2,12"},
    {U'X', "0,0 8,12;0,12 8,0"},
    {U'Y', "0,12 4,6 8,12;4,6 4,0"},
    {U'Z', "0,12 7.6,12 0,0 7.6,0"},
    {U'[', "2.6,13 0,13 0,-3 2.6,-3"},
    {U'\\', "0,13 6,-1"},
    {U']', "0,13 2.6,13 2.6,-3 0,-3"},
    {U'^', "0,8 3,12 6,8"},
    {U'_', "0,-2 8,-2"},
    {U'`', "0,12 2,9.8"},
    {U'a', "6,8 6,0;6,5 v3,8 h0,5 0,3 v3,0 h6,3"},
    {U'b', "0,12 0,0;0,5 v3,8 h6,5 6,3 v3,0 h0,3"},
    {U'c', "5.6,6.2 v3,8 h0,5 0,3 v3,0 h5.6,1.8"},
    {U'd', "6,12 6,0;6,5 v3,8 h0,5 0,3 v3,0 h6,3"},
    {U'e', "0,4.4 6,4.4 6,5 v3,8 h0,5 0,3 v3,0 h5.6,1.8"},
    {U'f', "4.4,12 3.8,12 h1.8,10 1.8,0;0,8 4,8"},
    {U'g', "6,8 6,-1 v3,-4 h0.4,-2;6,5 v3,8 h0,5 0,3 v3,0 h6,3"},
    {U'h', "0,12 0,0;0,5 v3,8 h5.8,5.2 5.8,0"},
    {U'i', "0,8 0,0;0,11.5 0,10.5"},
    {U'j', "1.8,8 1.8,-2 v0,-4;1.8,11.5 1.8,10.5"},
    {U'k', "0,12 0,0;5.4,8 0,3;1.9,4.8 5.8,0"},
    {U'l', "0,12 0,1.4 v1.4,0"},
    {U'm', "0,8 0,0;0,5 v2.6,8 h5,5.4 5,0;5,5 v7.6,8 h10,5.4 10,0"},
    {U'n', "0,8 0,0;0,5 v3,8 h5.8,5.2 5.8,0"},
    {U'o', "0,5 v3.1,8 h6.2,5 6.2,3 v3.1,0 h0,3 0,5"},
    {U'p', "0,8 0,-4;0,5 v3,8 h6,5 6,3 v3,0 h0,3"},
    {U'q', "6,8 6,-4;6,5 v3,8 h0,5 0,3 v3,0 h6,3"},
    {U'r', "0,8 0,0;0,4.8 v3,8 3.8,8"},
    {U's', "5,6.3 v2.6,8 h0.2,6 v2.6,4.1 h5.2,2 v2.6,0 h0,1.7"},
    {U't', "1.8,11 1.8,2 v3.6,0 4.4,0;0,8 4.2,8"},
    {U'u', "0,8 0,2.8 v2.8,0 h5.8,3;5.8,8 5.8,0"},
    {U'v', "0,8 3,0 6,8"},
    {U'w', "0,8 2.2,0 4.4,7 6.6,0 8.8,8"},
    {U'x', "0,8 5.6,0;0,0 5.6,8"},
    {U'y', "0,8 3.1,0;6.2,8 2.2,-2.6 v0.4,-4"},
    {U'z', "0,8 5.4,8 0,0 5.4,0"},
    {U'{', "3.4,13 h1.6,11 1.6,7 0,5 1.6,3 1.6,-1 v3.4,-3"},
    {U'|', "0,13 0,-3"},
    {U'}', "0,13 h1.8,11 1.8,7 3.4,5 1.8,3 1.8,-1 v0,-3"},
    {U'~', "0,5 0.6,6.4 1.8,7 3,6.7 5,5.3 6.2,5 7.4,5.6 8,7"},

    {U'¡', "0,8 0,7;0,4 0,-4"},
    {U'¢', "5.6,6.2 v3,8 h0,5 0,3 v3,0 h5.6,1.8;3,10 3,-2"},
    {U'£', "7,9.6 v4.8,12 h2.2,9 2.2,2 0,0 7.2,0;0.4,6 5.4,6"},
    {U'¥', "0,12 4,6 8,12;4,6 4,0;1,5.5 7,5.5;1,3 7,3"},
    {U'¦', "0,13 0,6.5;0,3.5 0,-3"},
    {U'«', "3,8 0,4.5 3,1;6.4,8 3.4,4.5 6.4,1"},
    {U'¬', "0,7 7,7 7,4"},
    {U'§',
     "6,10.4 v3.3,12 h0.8,10.2 v2.4,8.6 5,7 h6.4,5.4 v3.8,3.7;0.8,1.6 v3.5,0 h6,1.8 v4.4,3.4 1.8,5 h0.4,6.6 v3,8.3"},
    {U'°', "0,10 v2,12 h4,10 v2,8 h0,10"},
    {U'±', "4,11 4,4;0,7.5 8,7.5;0,1.5 8,1.5"},
    {U'µ', "0,8 0,-4;0,2.8 v2.8,0 h5.8,3;5.8,8 5.8,0"},
    {U'·', "0,6.5 0,5.5"},
    {U'»', "0,8 3,4.5 0,1;3.4,8 6.4,4.5 3.4,1"},
    {U'¿', "6.4,-1 v3.2,-4 h0,-1 0.6,0.6 2.6,2.2 3.2,3.6 3.2,4.5;3.2,7 3.2,8"},
    {U'Æ', "11,12 5.4,12 0,0;5.4,12 5.4,0 11,0;5.4,6.3 9.8,6.3;1.9,4.2 5.4,4.2"},
    {U'Ð', "0,0 0,12 3.8,12 h8,7.6 8,4.4 v3.8,0 0,0;-1.6,6.3 3.2,6.3"},
    {U'×', "0.5,2.5 7.5,9.5;0.5,9.5 7.5,2.5"},
    {U'Ø', "0,7.6 v4.3,12 h8.6,7.6 8.6,4.4 v4.3,0 h0,4.4 0,7.6;0.6,-0.8 8,12.8"},
    {U'Þ', "0,0 0,12;0,9.6 4.2,9.6 h7.4,6.4 v4.2,3.2 0,3.2"},
    {U'ß', "0,0 0,9.2 v2.9,12 h5.8,9.4 v3.6,6.8 h6.6,3.4 v3.4,0 2.4,0"},
    {U'æ', "6,5 v3,8 h0,5 0,3 v3,0 h6,3;6,5 6,3;6,4.4 12,4.4 12,5 v9,8 h6,5;6,3 v9,0 h11.6,1.8"},
    {U'ð', "0,4 v3.1,7.4 h6.2,4 v3.1,0 h0,4;6.2,4 6,7.5 1.8,12;1.2,9.4 5.4,11.2"},
    {U'÷', "0,6 8,6;4,10 4,9;4,3 4,2"},
    {U'ø', "0,5 v3.1,8 h6.2,5 6.2,3 v3.1,0 h0,3 0,5;0.2,-0.8 6,8.8"},
    {U'þ', "0,12 0,-4;0,5 v3,8 h6,5 6,3 v3,0 h0,3"},

    {kDotlessI, "0,8 0,0"},
    {kGrave, "-1.6,11.6 0.8,9.4"},
    {kAcute, "1.6,11.6 -0.8,9.4"},
    {kCircumflex, "-2,9.4 0,11.6 2,9.4"},
    {kTilde, "-2.4,9.6 -1.7,10.8 -0.8,11 0.8,10 1.7,10.2 2.4,11.4"},
    {kMacron, "-2.4,10.6 2.4,10.6"},
    {kDiaeresis, "-1.5,11.2 -1.5,10.2;1.5,11.2 1.5,10.2"},
    {kRing, "-1.3,10.6 v0,11.9 h1.3,10.6 v0,9.3 h-1.3,10.6"},
    {kCedilla, "0,0 -0.4,-1.2 h1.2,-2.2 v-0.4,-3.2 -1.2,-3.2"},

    {U'–', "0,5 7,5"},
    {U'—', "0,5 12,5"},
    {U'‘', "0.8,12 0,10 0,9"},
    {U'’', "0.8,12 0.8,11 0,9"},
    {U'“', "0.8,12 0,10 0,9;3.6,12 2.8,10 2.8,9"},
    {U'”', "0.8,12 0.8,11 0,9;3.6,12 3.6,11 2.8,9"},
    {U'•', "0,6 v2,8 h4,6 v2,4 h0,6"},
    {U'…', "0,1 0,0;4,1 4,0;8,1 8,0"},
    {U'€', "8,9.6 v5,12 h1.2,8 1.2,4 v5,0 h8,2.4;0,7.2 6,7.2;0,4.8 5.4,4.8"},
    {kDiameterSign, "0,6 v4.5,10.5 h9,6 v4.5,1.5 h0,6;1,1 8,11"},
    // Of geometric tolerances.
    {U'∠', "10,0 0,0 9,7"},
    {U'⟂', "0,0 11,0;5.5,0 5.5,11"},
    {U'⏥', "0,2 4,10 14,10 10,2 0,2"},
    {U'⌓', "0,3 v6,9 h12,3 0,3"},
    {U'⌒', "0,3 v6,9 h12,3"},
    {U'○', "0,6 v5,11 h10,6 v5,1 h0,6"},
    {U'∥', "0,0 4,12;5,0 9,12"},
    {U'⌭', "1,0 6,12;8,0 13,12;3.8,6 v7,9.2 h10.2,6 v7,2.8 h3.8,6"},
    {U'↗', "0,0 9,12;5.5,9.6 9,12 7.7,8 5.5,9.6"},
    {U'⌰', "0,0 6,12;3,9 6,12 5.4,7.8 3,9;6,0 12,12;9,9 12,12 11.4,7.8 9,9;0,0 6,0"},
    {U'⌯', "2,10 10,10;0,6 12,6;2,2 10,2"},
    {U'⌖', "2.5,6 v6,9.5 h9.5,6 v6,2.5 h2.5,6;0,6 12,6;6,0 6,12"},
    {U'⏤', "0,6 12,6"},
    {U'≤', "7,11 0,7 7,3;0,1 7,1"},
    {U'≥', "0,11 7,7 0,3;0,1 7,1"},
};

struct Part {
    char32_t character = 0;
    double scale = 1.0;
    double dx = 0.0;
    double dy = 0.0;
};

struct ComposedGlyph {
    char32_t character;
    Part parts[3];
};

// What is put together from parts at given places. In superscripts and fractions digits are small.
constexpr double kSmall = 0.55;
constexpr double kRaised = 5.4;
constexpr ComposedGlyph kComposed[] = {
    {U'¨', {{kDiaeresis}}},
    {U'©', {{U'o', 1.5}, {U'c', 0.7, 2.7, 3.2}}},
    {U'ª', {{U'a', kSmall, 0.0, kRaised}, {U'-', 0.7, 0.0, 0.0}}},
    {U'\u00AD', {{U'-'}}},
    {U'®', {{U'o', 1.5}, {U'R', 0.5, 2.8, 3.0}}},
    {U'¯', {{kMacron}}},
    {U'²', {{U'2', kSmall, 0.0, kRaised}}},
    {U'³', {{U'3', kSmall, 0.0, kRaised}}},
    {U'´', {{kAcute}}},
    {U'¸', {{kCedilla}}},
    {U'¹', {{U'1', kSmall, 0.0, kRaised}}},
    {U'º', {{U'o', kSmall, 0.0, kRaised}, {U'-', 0.7, 0.0, 0.0}}},
    {U'¼', {{U'1', kSmall, 0.0, kRaised}, {U'/', 1.0, 2.0, 0.0}, {U'4', kSmall, 6.5, 0.0}}},
    {U'½', {{U'1', kSmall, 0.0, kRaised}, {U'/', 1.0, 2.0, 0.0}, {U'2', kSmall, 6.5, 0.0}}},
    {U'¾', {{U'3', kSmall, 0.0, kRaised}, {U'/', 1.0, 3.5, 0.0}, {U'4', kSmall, 8.0, 0.0}}},
    {U'\u03BC', {{U'µ'}}},
    {U'\u2010', {{U'-'}}},
    {U'\u2011', {{U'-'}}},
    {U'\u2212', {{U'-', 1.4, 0.0, -1.0}}},
    {U'\u2300', {{kDiameterSign}}},
    {U'◎', {{U'○'}, {U'○', 0.5, 2.5, 3.0}}},
    {U'Ⓛ', {{U'○', 1.4, 0.0, -2.4}, {U'L', 0.6, 5.0, 2.4}}},
    {U'Ⓜ', {{U'○', 1.4, 0.0, -2.4}, {U'M', 0.6, 4.3, 2.4}}},
    {U'Ⓟ', {{U'○', 1.4, 0.0, -2.4}, {U'P', 0.6, 4.7, 2.4}}},
    {U'Ⓢ', {{U'○', 1.4, 0.0, -2.4}, {U'S', 0.6, 4.8, 2.4}}},
};

struct AccentedLetter {
    char32_t character;
    char32_t letter;
    char32_t accent;
};

// An accent stands above the middle of its letter, higher above a capital; the cedilla hangs below.
constexpr double kAboveCapital = 3.8;
constexpr AccentedLetter kAccented[] = {
    {U'À', U'A', kGrave},          {U'Á', U'A', kAcute},      {U'Â', U'A', kCircumflex}, {U'Ã', U'A', kTilde},
    {U'Ä', U'A', kDiaeresis},      {U'Å', U'A', kRing},       {U'Ç', U'C', kCedilla},    {U'È', U'E', kGrave},
    {U'É', U'E', kAcute},          {U'Ê', U'E', kCircumflex}, {U'Ë', U'E', kDiaeresis},  {U'Ì', U'I', kGrave},
    {U'Í', U'I', kAcute},          {U'Î', U'I', kCircumflex}, {U'Ï', U'I', kDiaeresis},  {U'Ñ', U'N', kTilde},
    {U'Ò', U'O', kGrave},          {U'Ó', U'O', kAcute},      {U'Ô', U'O', kCircumflex}, {U'Õ', U'O', kTilde},
    {U'Ö', U'O', kDiaeresis},      {U'Ù', U'U', kGrave},      {U'Ú', U'U', kAcute},      {U'Û', U'U', kCircumflex},
    {U'Ü', U'U', kDiaeresis},      {U'Ý', U'Y', kAcute},      {U'à', U'a', kGrave},      {U'á', U'a', kAcute},
    {U'â', U'a', kCircumflex},     {U'ã', U'a', kTilde},      {U'ä', U'a', kDiaeresis},  {U'å', U'a', kRing},
    {U'ç', U'c', kCedilla},        {U'è', U'e', kGrave},      {U'é', U'e', kAcute},      {U'ê', U'e', kCircumflex},
    {U'ë', U'e', kDiaeresis},      {U'ì', kDotlessI, kGrave}, {U'í', kDotlessI, kAcute}, {U'î', kDotlessI, kCircumflex},
    {U'ï', kDotlessI, kDiaeresis}, {U'ñ', U'n', kTilde},      {U'ò', U'o', kGrave},      {U'ó', U'o', kAcute},
    {U'ô', U'o', kCircumflex},     {U'õ', U'o', kTilde},      {U'ö', U'o', kDiaeresis},  {U'ù', U'u', kGrave},
    {U'ú', U'u', kAcute},          {U'û', U'u', kCircumflex}, {U'ü', U'u', kDiaeresis},  {U'ý', U'y', kAcute},
    {U'ÿ', U'y', kDiaeresis},
};

using Drawing = std::vector<Polyline2d>;  // on the grid

class DrawingReader {
  public:
    explicit DrawingReader(std::string_view drawing) : rest_(drawing) {}

    Drawing read() {
        Drawing strokes{{point()}};
        while (!rest_.empty()) {
            const char separator = take();
            if (separator == ';') {
                strokes.push_back({point()});
            } else if (rest_.front() == 'h' || rest_.front() == 'v') {
                const bool horizontal = take() == 'h';
                appendQuarter(strokes.back(), point(), horizontal);
            } else {
                strokes.back().push_back(point());
            }
        }
        return strokes;
    }

  private:
    char take() {
        const char c = rest_.front();
        rest_.remove_prefix(1);
        return c;
    }

    double number() {
        double value = 0.0;
        const char* end = std::from_chars(rest_.data(), rest_.data() + rest_.size(), value).ptr;
        rest_.remove_prefix(static_cast<std::size_t>(end - rest_.data()));
        return value;
    }

    OdGePoint2d point() {
        const double x = number();
        take();
        return {x, number()};
    }

    static void appendQuarter(Polyline2d& stroke, const OdGePoint2d& end, bool leavesHorizontally) {
        // Sines of a quarter, half and three quarters of the way; backwards they are the cosines.
        constexpr double kSines[] = {0.38268343236508977, 0.70710678118654752, 0.92387953251128676};
        const OdGePoint2d start = stroke.back();
        for (int i = 0; i < 3; ++i) {
            const double leaving = kSines[i], arriving = 1.0 - kSines[2 - i];
            const double alongX = leavesHorizontally ? leaving : arriving;
            const double alongY = leavesHorizontally ? arriving : leaving;
            stroke.emplace_back(start.x + (end.x - start.x) * alongX, start.y + (end.y - start.y) * alongY);
        }
        stroke.push_back(end);
    }

    std::string_view rest_;
};

void addPart(Drawing& drawing, const Drawing& part, double scale, double dx, double dy) {
    for (const Polyline2d& stroke : part) {
        Polyline2d& placed = drawing.emplace_back();
        for (const OdGePoint2d& p : stroke) placed.emplace_back(p.x * scale + dx, p.y * scale + dy);
    }
}

StrokeGlyph finished(Drawing drawing) {
    OdGeExtents3d box;
    for (const Polyline2d& stroke : drawing)
        for (const OdGePoint2d& p : stroke) box.addPoint({p.x, p.y, 0.0});
    StrokeGlyph glyph;
    glyph.advance = (box.diagonal().x + 2.0 * kSideBearing) / kCapitalHeight;
    for (Polyline2d& stroke : drawing)
        for (OdGePoint2d& p : stroke)
            p.set((p.x - box.minPoint().x + kSideBearing) / kCapitalHeight, p.y / kCapitalHeight);
    glyph.strokes = std::move(drawing);
    glyph.left = kSideBearing / kCapitalHeight;
    glyph.right = glyph.advance - glyph.left;
    glyph.bottom = box.minPoint().y / kCapitalHeight;
    glyph.top = box.maxPoint().y / kCapitalHeight;
    return glyph;
}

class Font {
  public:
    Font() {
        std::unordered_map<char32_t, Drawing> drawings;
        for (const DrawnGlyph& g : kDrawn) drawings[g.character] = DrawingReader(g.drawing).read();
        for (const ComposedGlyph& g : kComposed) {
            Drawing drawing;
            for (const Part& part : g.parts)
                if (part.character != 0) addPart(drawing, drawings.at(part.character), part.scale, part.dx, part.dy);
            add(g.character, std::move(drawing));
        }
        for (const AccentedLetter& g : kAccented) {
            Drawing drawing = drawings.at(g.letter);
            const bool capital = g.letter < U'a';
            const double dy = capital && g.accent != kCedilla ? kAboveCapital : 0.0;
            addPart(drawing, drawings.at(g.accent), 1.0, middleOf(drawing), dy);
            add(g.character, std::move(drawing));
        }
        for (auto& [character, drawing] : drawings) add(character, std::move(drawing));

        StrokeGlyph blank;
        blank.advance = kBlankAdvance / kCapitalHeight;
        latin_[U'\t'] = latin_[U' '] = latin_[U'\u00A0'] = blank;
        box_ = finished(DrawingReader(kBox).read());
        for (std::size_t c = U' '; c < latin_.size(); ++c) {
            const bool control = c >= 0x7F && c < 0xA0;
            if (control || latin_[c].advance != 0.0) continue;
            latin_[c] = box_;
            latinBoxes_.set(c);
        }
    }

    const StrokeGlyph& glyph(char32_t character) const {
        if (character < latin_.size()) return latin_[character];
        const auto found = others_.find(character);
        return found != others_.end() ? found->second : box_;
    }

    bool has(char32_t character) const {
        return character < latin_.size() ? !latinBoxes_[character] : others_.count(character) != 0;
    }

  private:
    static double middleOf(const Drawing& drawing) {
        OdGeExtents3d box;
        for (const Polyline2d& stroke : drawing)
            for (const OdGePoint2d& p : stroke) box.addPoint({p.x, 0.0, 0.0});
        return box.center().x;
    }

    void add(char32_t character, Drawing drawing) {
        (character < latin_.size() ? latin_[character] : others_[character]) = finished(std::move(drawing));
    }

    std::array<StrokeGlyph, 256> latin_;
    std::bitset<256> latinBoxes_;
    std::unordered_map<char32_t, StrokeGlyph> others_;
    StrokeGlyph box_;
};

}  // namespace

namespace {
const Font& builtInFont() {
    static const auto font = std::make_unique<const Font>();
    return *font;
}
}  // namespace

const StrokeGlyph& strokeGlyph(char32_t character) { return builtInFont().glyph(character); }
bool hasStrokeGlyph(char32_t character) { return builtInFont().has(character); }

}  // namespace drawingdb
