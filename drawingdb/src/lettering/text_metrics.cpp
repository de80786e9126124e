#include "drawingdb/text_metrics.h"

#include <cmath>

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/src/lettering/text_codes.h"
#include "drawingdb/stroke_font.h"

namespace drawingdb {

namespace {

constexpr double kDescender = 1.0 / 3.0;  // in text heights
constexpr double kUnderline = -0.2;
constexpr double kOverline = 1.2;
constexpr double kStrikeThrough = 0.45;

char32_t numberedCharacter(char32_t number) {
    switch (number) {
        case 127:
            return U'°';
        case 128:
            return U'±';
        case 129:
            return kDiameterSign;
        default:
            return number;
    }
}

template <typename Visit>
void visitCharacters(std::wstring_view text, Visit visit) {
    TextCharacter state;
    for (std::size_t i = 0; i < text.size();) {
        const ControlCode code = controlCodeAt(text, i);
        i += code.length;
        switch (code.kind) {
            case ControlCode::None:
                state.character = base::nextCharacter(text, i);
                visit(state);
                break;
            case ControlCode::Character:
                state.character = code.character;
                visit(state);
                break;
            case ControlCode::Underline:
                state.underlined = !state.underlined;
                break;
            case ControlCode::Overline:
                state.overlined = !state.overlined;
                break;
            case ControlCode::StrikeThrough:
                state.struckThrough = !state.struckThrough;
                break;
        }
    }
}

bool spansBaseline(const TextGeometry& g) {
    return g.horizontal == TextHorizontal::Aligned || g.horizontal == TextHorizontal::Fit;
}

// The point of the text that hangs on the alignment point, from the start of the baseline.
OdGeVector2d anchorOf(const TextGeometry& g, const TextExtents& extents) {
    OdGeVector2d anchor;
    switch (g.horizontal) {
        case TextHorizontal::Center:
            anchor.x = extents.width / 2.0;
            break;
        case TextHorizontal::Right:
            anchor.x = extents.width;
            break;
        case TextHorizontal::Middle: {
            const bool blank = extents.ascent == 0.0 && extents.descent == 0.0;
            return {extents.width / 2.0, (blank ? g.height : extents.ascent - extents.descent) / 2.0};
        }
        default:
            break;
    }
    switch (g.vertical) {
        case TextVertical::Bottom:
            anchor.y = -kDescender * g.height;
            break;
        case TextVertical::Middle:
            anchor.y = g.height / 2.0;
            break;
        case TextVertical::Top:
            anchor.y = g.height;
            break;
        default:
            break;
    }
    return anchor;
}

}  // namespace

ControlCode controlCodeAt(std::wstring_view text, std::size_t position) {
    text.remove_prefix(position);
    if (text.size() < 3 || text[0] != L'%' || text[1] != L'%') return {};
    switch (text[2]) {
        case L'd':
        case L'D':
            return {ControlCode::Character, U'°', 3};
        case L'p':
        case L'P':
            return {ControlCode::Character, U'±', 3};
        case L'c':
        case L'C':
            return {ControlCode::Character, kDiameterSign, 3};
        case L'%':
            return {ControlCode::Character, U'%', 3};
        case L'u':
        case L'U':
            return {ControlCode::Underline, 0, 3};
        case L'o':
        case L'O':
            return {ControlCode::Overline, 0, 3};
        case L'k':
        case L'K':
            return {ControlCode::StrikeThrough, 0, 3};
        default:
            break;
    }
    if (text.size() < 5 || !base::isDigit(text[2]) || !base::isDigit(text[3]) || !base::isDigit(text[4])) return {};
    const auto number = static_cast<char32_t>((text[2] - L'0') * 100 + (text[3] - L'0') * 10 + (text[4] - L'0'));
    return {ControlCode::Character, numberedCharacter(number), 5};
}

double slantOf(double oblique) {
    constexpr double kSteepest = 85.0 * kPi / 180.0;
    // Drawings store leaning to the left as 300 and the like.
    oblique = std::remainder(oblique, kTwoPi);
    return std::isfinite(oblique) ? std::tan(std::clamp(oblique, -kSteepest, kSteepest)) : 0.0;
}

TextRow textRow(std::vector<TextCharacter> characters, const StrokePen& pen, double tracking) {
    TextRow row{std::move(characters), {0.0}, pen};
    row.starts.reserve(row.characters.size() + 1);
    for (const TextCharacter& c : row.characters)
        row.starts.push_back(row.starts.back() + strokeGlyph(c.character).advance * tracking);
    return row;
}

std::vector<Polyline2d> rulesOf(const TextRow& row) {
    std::vector<Polyline2d> rules;
    const auto rule = [&](bool TextCharacter::*flag, double y) {
        for (std::size_t i = 0; i < row.characters.size(); ++i) {
            if (!(row.characters[i].*flag)) continue;
            const std::size_t first = i;
            while (i + 1 < row.characters.size() && row.characters[i + 1].*flag) ++i;
            rules.push_back({row.pen(row.starts[first], y), row.pen(row.starts[i + 1], y)});
        }
    };
    rule(&TextCharacter::underlined, kUnderline);
    rule(&TextCharacter::overlined, kOverline);
    rule(&TextCharacter::struckThrough, kStrikeThrough);
    return rules;
}

void appendStrokes(const TextRow& row, std::vector<Polyline2d>& strokes) {
    for (std::size_t i = 0; i < row.characters.size(); ++i) {
        for (const Polyline2d& stroke : strokeGlyph(row.characters[i].character).strokes) {
            Polyline2d& placed = strokes.emplace_back();
            placed.reserve(stroke.size());
            for (const OdGePoint2d& p : stroke) placed.push_back(row.pen(row.starts[i] + p.x, p.y));
        }
    }
    for (Polyline2d& rule : rulesOf(row)) strokes.push_back(std::move(rule));
}

std::vector<TextCharacter> decodeControlCodes(std::wstring_view text) {
    std::vector<TextCharacter> row;
    row.reserve(text.size());
    visitCharacters(text, [&](const TextCharacter& c) { row.push_back(c); });
    return row;
}

TextExtents textExtents(std::wstring_view text, double height, double widthFactor, double oblique) {
    TextExtents e;
    bool hasStrokes = false;
    const StrokePen pen{height, widthFactor, slantOf(oblique), {}};
    double x = 0.0;
    const auto addEdge = [&](double edge) {
        e.left = hasStrokes ? std::min(e.left, edge) : edge;
        e.right = hasStrokes ? std::max(e.right, edge) : edge;
        hasStrokes = true;
    };
    visitCharacters(text, [&](const TextCharacter& c) {
        const StrokeGlyph& glyph = strokeGlyph(c.character);
        if (!glyph.strokes.empty()) {
            e.ascent = std::max(e.ascent, glyph.top * height);
            e.descent = std::max(e.descent, -glyph.bottom * height);
            if (pen.slant == 0.0) {
                addEdge(pen(x + glyph.left, 0.0).x);
                addEdge(pen(x + glyph.right, 0.0).x);
            } else {
                for (const Polyline2d& stroke : glyph.strokes)
                    for (const OdGePoint2d& p : stroke) addEdge(pen(x + p.x, p.y).x);
            }
        }
        x += glyph.advance;
    });
    e.width = x * widthFactor * height;
    return e;
}

TextFrame::TextFrame(const TextGeometry& g, double width)
    : position_(g.position),
      cosine_(std::cos(g.rotation)),
      sine_(std::sin(g.rotation)),
      xSign_(g.mirroredInX ? -1.0 : 1.0),
      ySign_(g.mirroredInY ? -1.0 : 1.0),
      // Backwards text runs to the left of its insertion point, unless it has two ends to stay between.
      shift_(g.mirroredInX && spansBaseline(g) ? width : 0.0) {}

OdGeVector2d TextFrame::turned(const OdGeVector2d& v) const {
    const double x = v.x * xSign_ + shift_, y = v.y * ySign_;
    return {cosine_ * x - sine_ * y, sine_ * x + cosine_ * y};
}

TextGeometry alignText(std::wstring_view text, const TextGeometry& geometry) {
    if (geometry.horizontal == TextHorizontal::Left && geometry.vertical == TextVertical::Baseline) return geometry;
    return alignText(textExtents(text, geometry.height, geometry.widthFactor), geometry);
}

TextGeometry alignText(const TextExtents& extents, const TextGeometry& geometry) {
    TextGeometry g = geometry;
    if (g.horizontal == TextHorizontal::Left && g.vertical == TextVertical::Baseline) return g;
    if (spansBaseline(g)) {
        const OdGeVector2d baseline = g.alignmentPoint - g.position;
        const double ratio = baseline.length() / extents.width;
        if (baseline.isZeroLength() || !(ratio > 0.0) || !std::isfinite(ratio)) return g;
        g.rotation = baseline.angle();
        (g.horizontal == TextHorizontal::Aligned ? g.height : g.widthFactor) *= ratio;
        return g;
    }
    g.position = g.alignmentPoint - TextFrame(g, 0.0).turned(anchorOf(g, extents));
    return g;
}

std::vector<Polyline2d> textStrokes(std::wstring_view text, const TextGeometry& geometry) {
    std::vector<Polyline2d> strokes;
    const StrokePen pen{geometry.height, geometry.widthFactor, slantOf(geometry.oblique), {}};
    appendStrokes(textRow(decodeControlCodes(text), pen), strokes);
    const TextFrame frame(geometry, textExtents(text, geometry.height, geometry.widthFactor).width);
    for (Polyline2d& stroke : strokes)
        for (OdGePoint2d& p : stroke) p = frame(p);
    return strokes;
}

std::array<OdGePoint2d, 4> textBoundingPoints(std::wstring_view text, const TextGeometry& geometry) {
    const TextExtents e = textExtents(text, geometry.height, geometry.widthFactor);
    const TextFrame frame(geometry, e.width);
    return {frame({0.0, -e.descent}), frame({e.width, -e.descent}), frame({e.width, e.ascent}), frame({0.0, e.ascent})};
}

}  // namespace drawingdb
