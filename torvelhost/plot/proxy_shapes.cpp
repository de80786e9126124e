// What an entity of a kind that is not known looks like: graphics that the program which knows it left for others.
//
//   92 or 160 how many bytes   310 the bytes, in pieces
//   bytes = size, number of records, *record            all numbers have four bytes, the low one first; reals eight
//   record = size of all of it, kind, contents
#include <algorithm>
#include <cmath>
#include <cstring>

#include "drawingdb/text.h"
#include "torvelhost/plot/shapes.h"

namespace host {

// What it cannot read is zero, and is told by `isSound`.
class ProxyBytes {
  public:
    explicit ProxyBytes(std::string_view rest) : rest_(rest) {}

    bool isSound() const { return sound_; }
    std::size_t left() const { return rest_.size(); }
    std::string_view take(std::size_t count) {
        sound_ &= count <= rest_.size();
        const std::string_view taken = rest_.substr(0, count);
        rest_.remove_prefix(taken.size());
        return taken;
    }
    std::uint32_t number() {
        const std::string_view bytes = take(4);
        std::uint32_t value = 0;
        for (std::size_t i = bytes.size(); i-- > 0;) value = value << 8 | static_cast<unsigned char>(bytes[i]);
        return value;
    }
    double real() {
        const std::uint64_t low = number(), bits = low | std::uint64_t{number()} << 32;
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        sound_ &= std::isfinite(value);
        return sound_ ? value : 0;
    }
    OdGePoint3d point() {
        const double x = real(), y = real();
        return {x, y, real()};
    }
    OdGeVector3d vector() { return point().asVector(); }
    std::vector<OdGePoint3d> points(std::size_t count) {
        constexpr std::size_t kBytesOfPoint = 24;
        std::vector<OdGePoint3d> points;
        if (count > left() / kBytesOfPoint) sound_ = false;
        for (; sound_ && points.size() < count;) points.push_back(point());
        return points;
    }
    /// Ends with a zero, and at a multiple of four bytes.
    OdString text(bool isWide) {
        const std::size_t size = isWide ? 2 : 1;
        OdString text;
        std::size_t at = 0;
        for (;; at += size) {
            std::uint32_t c = 0;
            const std::string_view bytes = rest_.substr(std::min(at, rest_.size()), size);
            if (bytes.size() < size) break;
            for (std::size_t i = size; i-- > 0;) c = c << 8 | static_cast<unsigned char>(bytes[i]);
            if (c == 0) break;
            text += static_cast<wchar_t>(c);
        }
        take(std::min((at + size + 3) / 4 * 4, left()));
        return text;
    }

  private:
    std::string_view rest_;
    bool sound_ = true;
};

namespace {

enum Kind : std::uint32_t {
    kExtents = 1,
    kCircle = 2,
    kArc = 4,
    kPolyline = 6,
    kPolygon = 7,
    kMesh = 8,
    kShell = 9,
    kText = 10,
    kText2 = 11,
    kColor = 14,
    kLayer = 16,
    kLinetype = 18,
    kMarker = 19,
    kFill = 20,
    kTrueColor = 22,
    kLineweight = 23,
    kLinetypeScale = 24,
    kThickness = 25,
    kPlotStyle = 26,
    kPolylineWithNormal = 32,
    kMaterial = 34,
    kMapper = 35,
    kWideText = 36,
    kWideText2 = 38,
};

std::string graphicsOf(const std::vector<PlotGroup>& groups) {
    std::string bytes;
    std::wstring_view part;
    for (std::size_t i = 0; i < groups.size(); ++i) {
        if (groups[i].code == 100) part = groups[i].text;
        // Other kinds have bytes of their own.
        if ((groups[i].code != 92 && groups[i].code != 160) || (part != L"AcDbEntity" && part != L"AcDbProxyEntity"))
            continue;
        while (++i < groups.size() && groups[i].code == 310)
            for (const wchar_t c : groups[i].text) bytes += static_cast<char>(c);
        break;
    }
    return bytes;
}

}  // namespace

bool Shapes::addProxyGraphics(const std::vector<PlotGroup>& groups) {
    const std::string graphics = graphicsOf(groups);
    if (graphics.empty()) return false;
    const Style own = list_.style();
    ProxyBytes all(graphics);
    (void)all.take(8);
    bool isFilled = false, isWhole = true;
    while (all.isSound() && all.left() != 0) {
        const std::uint32_t size = all.number(), kind = all.number();
        ProxyBytes record(all.take(size < 8 ? all.left() + 1 : size - 8));
        if (kind == kFill)
            isFilled = record.number() != 0;
        else if (kind == kColor)
            list_.setStyle(styles_.colored(own, OdCmColor::fromIndex(static_cast<int>(record.number()))));
        else if (kind == kTrueColor)
            list_.setStyle(styles_.colored(own, colorOf(record.number())));
        else
            isWhole &= addProxyRecord(kind, record, isFilled);
        isWhole &= record.isSound();
    }
    list_.setStyle(own);
    return isWhole && all.isSound();
}

bool Shapes::addProxyRecord(std::uint32_t kind, ProxyBytes& record, bool isFilled) {
    const auto addLines = [&](Corners corners, bool closed) {
        if (corners.empty()) return;
        if (closed) corners.push_back(corners.front());
        list_.add(closed && isFilled ? DisplayList::Kind::kArea : DisplayList::Kind::kPolyline, corners);
    };
    switch (kind) {
        case kExtents:
        case kLayer:
        case kLinetype:
        case kMarker:
        case kLineweight:
        case kLinetypeScale:
        case kThickness:
        case kPlotStyle:
        case kMaterial:
        case kMapper:
            return true;
        case kCircle:
        case kArc: {
            const OdGePoint3d center = record.point();
            const double radius = record.real();
            const OdGeVector3d normal = record.vector().normal();
            const OdGeVector3d x = kind == kArc ? record.vector().normal() : OdGeMatrix3d::planeToWorld(normal).xAxis();
            const double sweep = kind == kArc ? record.real() : drawingdb::kTwoPi;
            if (!record.isSound()) return false;
            const int steps = stepsOf(radius, sweep);
            list_.begin(DisplayList::Kind::kPolyline);
            for (int i = 0; i <= steps; ++i) {
                const double angle = sweep * i / steps;
                list_.addPoint(center + (x * std::cos(angle) + normal.crossProduct(x) * std::sin(angle)) * radius);
            }
            list_.end();
            return true;
        }
        case kPolyline:
        case kPolylineWithNormal:
            addLines(record.points(record.number()), false);
            return true;
        case kPolygon:
            addLines(record.points(record.number()), true);
            return true;
        case kMesh: {
            const std::size_t rows = record.number(), columns = record.number();
            const Corners corners = record.points(rows * columns);
            if (!record.isSound() || corners.empty()) return false;
            for (std::size_t row = 0; row < rows; ++row)
                addLines({corners.begin() + static_cast<std::ptrdiff_t>(row * columns),
                          corners.begin() + static_cast<std::ptrdiff_t>((row + 1) * columns)},
                         false);
            for (std::size_t column = 0; column < columns; ++column) {
                Corners line;
                for (std::size_t row = 0; row < rows; ++row) line.push_back(corners[row * columns + column]);
                addLines(line, false);
            }
            return true;
        }
        case kShell: {
            const Corners corners = record.points(record.number());
            // Of each face how many corners it has, negative for a hole, and which.
            ProxyBytes faces(record.take(std::size_t{4} * record.number()));
            while (record.isSound() && faces.left() != 0) {
                const auto count = static_cast<std::int32_t>(faces.number());
                Corners face;
                for (std::uint32_t i = 0; i < static_cast<std::uint32_t>(std::abs(std::int64_t{count})); ++i) {
                    const std::uint32_t corner = faces.number();
                    if (!faces.isSound() || corner >= corners.size()) return false;
                    face.push_back(corners[corner]);
                }
                addLines(face, true);
            }
            return true;
        }
        case kText:
        case kWideText:
        case kText2:
        case kWideText2: {
            const auto text = OdDbText::createObject();
            const OdGePoint3d position = record.point();
            const OdGeVector3d normal = record.vector(), along = record.vector();
            const bool isSecond = kind == kText2 || kind == kWideText2,
                       isWide = kind == kWideText || kind == kWideText2;
            OdString shown;
            if (isSecond) {
                shown = record.text(isWide);
                (void)record.take(8);  // its length, and whether its codes are to be shown as they are
            }
            const double height = record.real(), widthFactor = record.real(), oblique = record.real();
            if (!isSecond) shown = record.text(isWide);
            if (!record.isSound() || normal.isZeroLength() || !(height > 0) || !(widthFactor > 0)) return false;
            text->setNormal(normal.normal());
            text->setPosition(position);
            text->setHeight(height);
            text->setWidthFactor(widthFactor);
            text->setOblique(oblique);
            const OdGeVector3d inPlane = OdGeMatrix3d::worldToPlane(normal.normal()) * along;
            text->setRotation(std::atan2(inPlane.y, inPlane.x));
            addText(*text, shown);
            return true;
        }
        default:
            return false;
    }
}

}  // namespace host
