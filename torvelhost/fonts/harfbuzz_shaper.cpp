// Shaping by HarfBuzz, the order of characters by FriBidi.
#include <algorithm>
#include <fribidi.h>
#include <hb-ot.h>
#include <hb.h>
#include <new>
#include <numeric>

#include "torvelhost/fonts/shaper.h"

namespace host {
namespace {

template <auto destroy>
struct Destroyer {
    template <class T>
    void operator()(T* object) const {
        destroy(object);
    }
};
using Font = std::unique_ptr<hb_font_t, Destroyer<hb_font_destroy>>;
using Face = std::unique_ptr<hb_face_t, Destroyer<hb_face_destroy>>;
using Blob = std::unique_ptr<hb_blob_t, Destroyer<hb_blob_destroy>>;
using Buffer = std::unique_ptr<hb_buffer_t, Destroyer<hb_buffer_destroy>>;

const std::uint32_t* code32(std::u32string_view text) { return reinterpret_cast<const std::uint32_t*>(text.data()); }

hb_script_t scriptOf(char32_t c) {
    const hb_script_t script = hb_unicode_script(hb_unicode_funcs_get_default(), c);
    // Signs and marks go with the letters that they stand beside.
    return script == HB_SCRIPT_COMMON || script == HB_SCRIPT_INHERITED || script == HB_SCRIPT_UNKNOWN
               ? HB_SCRIPT_INVALID
               : script;
}

class HarfBuzzFont final : public ShapedFont {
  public:
    HarfBuzzFont(std::string_view bytes, int number) {
        const Blob blob(hb_blob_create(bytes.data(), static_cast<unsigned>(bytes.size()), HB_MEMORY_MODE_READONLY,
                                       nullptr, nullptr));
        const Face face(hb_face_create(blob.get(), static_cast<unsigned>(number)));
        font_.reset(hb_font_create(face.get()));
    }

    void shape(std::u32string_view paragraph, std::size_t start, std::size_t count, bool toLeft,
               std::vector<ShapedGlyph>& glyphs) override {
        pieces_.clear();
        for (const std::size_t end = start + count; start < end; start = pieces_.back().end)
            pieces_.push_back(pieceAt(paragraph, start, end));
        // What comes later stands farther to the left.
        if (toLeft) std::reverse(pieces_.begin(), pieces_.end());
        for (const Piece& piece : pieces_) shapePiece(paragraph, piece, toLeft, glyphs);
    }

  private:
    // HarfBuzz looks for the letter of each accent among all before it, and ends the program where they are too many
    // to count. No word is that long.
    static constexpr std::size_t kLongest = 1000;

    struct Piece {  // of one script
        std::size_t start, end;
        hb_script_t script;
    };

    static Piece pieceAt(std::u32string_view paragraph, std::size_t start, std::size_t end) {
        Piece piece{start, start, HB_SCRIPT_INVALID};
        for (end = std::min(end, start + kLongest); piece.end < end; ++piece.end) {
            const hb_script_t other = scriptOf(paragraph[piece.end]);
            if (other == HB_SCRIPT_INVALID || other == piece.script) continue;
            if (piece.script != HB_SCRIPT_INVALID) break;
            piece.script = other;
        }
        return piece;
    }

    void shapePiece(std::u32string_view paragraph, const Piece& piece, bool toLeft, std::vector<ShapedGlyph>& glyphs) {
        hb_buffer_t* const buffer = buffer_.get();
        hb_buffer_clear_contents(buffer);
        hb_buffer_add_utf32(buffer, code32(paragraph), static_cast<int>(paragraph.size()),
                            static_cast<unsigned>(piece.start), static_cast<int>(piece.end - piece.start));
        hb_buffer_set_direction(buffer, toLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
        hb_buffer_set_script(buffer, piece.script == HB_SCRIPT_INVALID ? HB_SCRIPT_COMMON : piece.script);
        hb_buffer_set_language(buffer, HB_LANGUAGE_INVALID);
        hb_shape(font_.get(), buffer, nullptr, 0);
        if (!hb_buffer_allocation_successful(buffer)) throw std::bad_alloc();
        unsigned length = 0;
        const hb_glyph_info_t* const infos = hb_buffer_get_glyph_infos(buffer, &length);
        const hb_glyph_position_t* const positions = hb_buffer_get_glyph_positions(buffer, nullptr);
        for (unsigned i = 0; i < length; ++i)
            glyphs.push_back({infos[i].codepoint, infos[i].cluster, static_cast<double>(positions[i].x_advance),
                              static_cast<double>(positions[i].x_offset), static_cast<double>(positions[i].y_offset)});
    }

    Font font_;
    Buffer buffer_{hb_buffer_create()};
    std::vector<Piece> pieces_;  // of what is shaped
};

class HarfBuzzShaper final : public Shaper {
  public:
    std::unique_ptr<ShapedFont> open(std::string_view fontFile, int number) override {
        return std::make_unique<HarfBuzzFont>(fontFile, number);
    }

    std::vector<Ordered> order(std::u32string_view paragraph, std::span<const std::size_t> ends) override {
        const auto count = static_cast<FriBidiStrIndex>(paragraph.size());
        std::vector<FriBidiCharType> types(paragraph.size());
        std::vector<FriBidiBracketType> brackets(paragraph.size());
        std::vector<FriBidiLevel> levels(paragraph.size());
        fribidi_get_bidi_types(code32(paragraph), count, types.data());
        fribidi_get_bracket_types(code32(paragraph), count, types.data(), brackets.data());
        FriBidiParType direction = FRIBIDI_PAR_ON;
        if (fribidi_get_par_embedding_levels_ex(types.data(), brackets.data(), count, &direction, levels.data()) == 0)
            throw std::bad_alloc();

        std::vector<FriBidiStrIndex> places(paragraph.size());
        std::iota(places.begin(), places.end(), 0);
        std::vector<Ordered> ordered;
        ordered.reserve(paragraph.size());
        std::size_t start = 0;
        for (const std::size_t end : ends) {
            if (end > start && fribidi_reorder_line(0, types.data(), static_cast<FriBidiStrIndex>(end - start),
                                                    static_cast<FriBidiStrIndex>(start), direction, levels.data(),
                                                    nullptr, places.data()) == 0)
                throw std::bad_alloc();
            for (; start < end; ++start) {
                const auto character = static_cast<std::size_t>(places[start]);
                const bool toLeft = FRIBIDI_LEVEL_IS_RTL(levels[character]);
                FriBidiChar shown = paragraph[character];
                if (toLeft) fribidi_get_mirror_char(shown, &shown);
                ordered.push_back({character, static_cast<char32_t>(shown), toLeft});
            }
        }
        return ordered;
    }
};

}  // namespace
}  // namespace host

extern "C" host::Shaper* torvelMakeShaper() {
    static host::HarfBuzzShaper shaper;
    return &shaper;
}
