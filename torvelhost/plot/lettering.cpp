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

// Letters change with those beside them, or stand elsewhere than in their order.
bool isJoined(char32_t c) {
    static constexpr std::array<std::pair<char32_t, char32_t>, 7> kScripts = {{{0x590, 0x8FF},    // Hebrew to Arabic
                                                                               {0x900, 0xDFF},    // of India
                                                                               {0xE00, 0xFFF},    // Thai to Tibetan
                                                                               {0x1000, 0x109F},  // Burmese
                                                                               {0x1780, 0x18AF},  // Khmer, Mongolian
                                                                               {0xFB1D, 0xFDFF},
                                                                               {0xFE70, 0xFEFC}}};
    return std::any_of(kScripts.begin(), kScripts.end(),
                       [c](const auto& script) { return c >= script.first && c <= script.second; });
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

Lettering::Letter Lettering::letterOf(Font font, char32_t character) {
    const Letter stroke{nullptr, 0, drawingdb::strokeGlyph(character).advance};
    const bool hasStroke = drawingdb::hasStrokeGlyph(character);
    if (isControl(character) || (!font && (hasStroke || !on_))) return stroke;
    const auto letterIn = [](Font typeface, std::uint32_t glyph) {
        return Letter{typeface, glyph, typeface->advanceOf(glyph)};
    };
    if (isJoined(character)) odd_.unjoined.insert(character);
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
                       L"left");
    return told;
}

}  // namespace host
