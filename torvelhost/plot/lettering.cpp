#include "torvelhost/plot/lettering.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "base/paths.h"
#include "base/text.h"
#include "drawingdb/text_style.h"

namespace host {
namespace {

constexpr char32_t kDiameterSign = U'\u2205', kDiameterLetter = U'\u00D8';

bool isOutlineFile(std::wstring_view file) {
    const std::wstring extension = base::extensionOf(file);
    return base::equalsNoCase(extension, L".ttf") || base::equalsNoCase(extension, L".otf") ||
           base::equalsNoCase(extension, L".ttc");
}

bool isControl(char32_t c) { return c < U' ' || (c >= 0x7F && c < 0xA0); }

// Letters change with those beside them, or stand elsewhere than in their order; or they say how others do.
bool isJoined(char32_t c) {
    if (c < 0x590) return false;
    static constexpr std::array<std::pair<char32_t, char32_t>, 16> kScripts = {{
        {0x590, 0x109F},     // from Hebrew by India's to Burmese
        {0x1700, 0x18AF},    // Philippine, Khmer, Mongolian
        {0x1900, 0x1C7F},    // Limbu to Ol Chiki
        {0x1CD0, 0x1CFF},    // accents of the Veda
        {0x200C, 0x200D},    // that letters are to stay apart, or join
        {0xA800, 0xA82F},    // Sylheti
        {0xA840, 0xA95F},    // Phags-pa to Rejang
        {0xA980, 0xAADF},    // Javanese to Tai Viet
        {0xAAE0, 0xAAFF},    // Meitei
        {0xABC0, 0xABFF},    // the same
        {0xFB1D, 0xFDFF},    // Hebrew's and Arabic's forms
        {0xFE70, 0xFEFC},    // more of them
        {0x10800, 0x10FFF},  // old scripts that run to the left
        {0x11000, 0x11FFF},  // old ones of India
        {0x1E800, 0x1EFFF},  // Adlam, signs of Arabic
        {0x16AC0, 0x16B8F},  // Tangsa to Pahawh Hmong
    }};
    return std::any_of(kScripts.begin(), kScripts.end(),
                       [c](const auto& script) { return c >= script.first && c <= script.second; });
}

// They say which way text runs.
bool isDirection(char32_t c) {
    return (c >= 0x200E && c <= 0x200F) || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069) || c == 0x61C;
}

}  // namespace

Lettering::Lettering(OdDbDatabase& database) : database_(database) { update(); }

bool Lettering::update() {
    OdString value;
    const bool on = database_.systemVariable(L"PLOTFONTS", value) && value != L"0";
    return std::exchange(on_, on) != on;
}

void Lettering::forgetStyles() {
    styled_ = false;
    styles_.clear();
}

void Lettering::readStyles() {
    styled_ = true;
    const auto table = database_.textStyleTableId().openIf<OdDbSymbolTable>();
    if (!table) return;
    for (const OdDbObjectId id : table->records()) {
        const auto style = id.openIf<OdDbTextStyleTableRecord>();
        if (!style || style->isShapeFile()) continue;
        const OdString file = style->fontFile();
        Family family;
        // Behind the family stands what it is like.
        constexpr std::int64_t kItalic = 0x1000000, kBold = 0x2000000;
        for (const OdDbGroup& group : style->xData(L"ACAD")) {
            if (group.code == 1000 && family.name.empty()) family.name = group.text;
            if (group.code == 1071 && !family.name.empty()) {
                family.bold = (group.integer & kBold) != 0;
                family.italic = (group.integer & kItalic) != 0;
                break;
            }
        }
        if (!isOutlineFile(file) && !(file.empty() && !family.name.empty())) continue;
        if (family.name.empty()) family.name = file;
        styles_[style->name()] = std::move(family);
    }
}

Lettering::Font Lettering::fontOfFamily(const Family& family) {
    const auto [known, isNew] = families_.try_emplace(family);
    if (isNew) known->second = Fonts::installed().find(family.name, family.bold, family.italic);
    return known->second;
}

Lettering::Font Lettering::fontOfStyle(const OdString& style) {
    const auto known = styles_.find(style);
    return known == styles_.end() ? nullptr : fontOfFamily(known->second);
}

bool Lettering::hasOutlineStyles() {
    if (!on_) return false;
    if (!styled_) readStyles();
    return !styles_.empty();
}

Lettering::Font Lettering::fontOf(Font ofStyle, const drawingdb::MTextFormat& format) {
    if (!on_ || format.font.empty()) return ofStyle;
    if (base::equalsNoCase(base::extensionOf(format.font), L".shx")) return nullptr;
    return fontOfFamily({format.font, format.bold, format.italic});
}

bool Lettering::isInStrokes(std::wstring_view text) const {
    if (!on_) return true;
    for (std::size_t at = 0; at < text.size();)
        if (!drawingdb::hasStrokeGlyph(base::nextCharacter(text, at))) return false;
    // A code may stand for any character.
    if (text.find(L"%%") == text.npos) return true;
    const std::vector<drawingdb::TextCharacter> shown = drawingdb::decodeControlCodes(text);
    return std::all_of(shown.begin(), shown.end(),
                       [](const drawingdb::TextCharacter& c) { return drawingdb::hasStrokeGlyph(c.character); });
}

Lettering::Letter Lettering::letterOf(Font font, char32_t character, std::size_t place) {
    const Letter stroke{nullptr, character, drawingdb::strokeGlyph(character).advance, place, {}};
    const bool hasStroke = drawingdb::hasStrokeGlyph(character);
    if (isControl(character) || (!font && (hasStroke || !on_))) return stroke;
    const auto letterIn = [place](Font typeface, std::uint32_t glyph) {
        return Letter{typeface, glyph, typeface->advanceOf(glyph), place, {}};
    };
    if (isJoined(character) && !Shaper::installed()) odd_.unjoined.insert(character);
    if (font) {
        if (const std::uint32_t glyph = font->glyphOf(character)) return letterIn(font, glyph);
        if (character == kDiameterSign)
            if (const std::uint32_t glyph = font->glyphOf(kDiameterLetter)) return letterIn(font, glyph);
    }
    if (const Font other = Fonts::installed().withCharacter(character))
        return letterIn(other, other->glyphOf(character));
    if (!hasStroke) {
        odd_.missing.insert(character);
        odd_.unjoined.erase(character);
    }
    return stroke;
}

bool Lettering::isShaped(std::u32string_view text) const {
    return std::any_of(text.begin(), text.end(), isJoined) && on_ && Shaper::installed();
}

std::vector<Lettering::Letter> Lettering::lettersOf(Font font, std::u32string_view text) {
    if (isShaped(text)) {
        const std::size_t end = text.size();
        return shapedLines(text, std::vector<Font>(text.size(), font), {&end, 1}).front();
    }
    std::vector<Letter> letters;
    letters.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) letters.push_back(letterOf(font, text[i], i));
    return letters;
}

double Lettering::widthOf(Font font, std::wstring_view text) {
    double width = 0;
    bool joined = false;
    for (std::size_t i = 0; i < text.size() && !joined;) {
        const char32_t c = base::nextCharacter(text, i);
        width += letterOf(font, c).advance;
        joined = isJoined(c);
    }
    if (!joined) return width;
    width = 0;
    for (const Letter& letter : lettersOf(font, base::charactersOf(text))) width += letter.advance;
    return width;
}

std::vector<std::vector<Lettering::Letter>> Lettering::shapedLines(std::u32string_view paragraph,
                                                                   std::span<const Font> fonts,
                                                                   std::span<const std::size_t> ends) {
    Shaper& shaper = *Shaper::installed();
    const std::vector<Shaper::Ordered> ordered = shaper.order(paragraph, ends);
    std::vector<std::vector<Letter>> lines;
    std::vector<ShapedGlyph> glyphs;
    std::size_t at = 0;
    for (const std::size_t end : ends) {
        std::vector<Letter>& line = lines.emplace_back();
        while (at < end) {
            const Shaper::Ordered& first = ordered[at++];
            if (isDirection(first.shown)) continue;
            const Letter letter = letterOf(fonts[first.character], first.shown, first.character);
            if (!isJoined(first.shown) || !letter.typeface) {
                line.push_back(letter);
                continue;
            }
            // With those beside it that are of the same font and run the same way.
            std::size_t low = first.character, high = low + 1;
            for (; at < end && isJoined(ordered[at].shown) && ordered[at].toLeft == first.toLeft; ++at) {
                const std::size_t next = ordered[at].character;
                if (next != (first.toLeft ? low - 1 : high) ||
                    letterOf(fonts[next], ordered[at].shown).typeface != letter.typeface)
                    break;
                (first.toLeft ? low : high) = first.toLeft ? next : next + 1;
            }
            glyphs.clear();
            letter.typeface->shape(shaper, paragraph, low, high - low, first.toLeft, glyphs);
            for (const ShapedGlyph& glyph : glyphs)
                line.push_back({letter.typeface, glyph.glyph, glyph.advance, glyph.character, {glyph.x, glyph.y}});
        }
    }
    return lines;
}

std::vector<std::wstring> OddLetters::told() const {
    std::vector<std::wstring> told;
    if (!missing.empty()) {
        std::wstring text = L"no font that is installed has " + std::to_wstring(missing.size()) +
                            L" of the characters, drawn as boxes:";
        constexpr std::size_t kMostNamed = 5;
        std::size_t named = 0;
        for (const char32_t c : missing) {
            if (named++ == kMostNamed) {
                text += L" ...";
                break;
            }
            char number[16];
            std::snprintf(number, sizeof(number), " U+%04X", static_cast<unsigned>(c));
            text += base::fromUtf8(number);
        }
        told.push_back(std::move(text));
    }
    if (!unjoined.empty())
        told.push_back(std::to_wstring(unjoined.size()) + (unjoined.size() == 1 ? L" character" : L" characters") +
                       L" of scripts whose letters join, or run to the left, drawn one by one from the "
                       L"left: the library torvelshaping, HarfBuzz or FriBidi is missing");
    return told;
}

}  // namespace host
