#include "torvelhost/plot/dashes.h"

#include <cmath>

#include "torvelhost/plot/cut.h"

namespace host {
namespace {

constexpr double kSmallestPattern = 3.0;  // pixels

// Walks along a polyline and draws what lies between two distances from its start, which only grow.
class Walker {
  public:
    Walker(Picture& picture, std::span<const OdGePoint2d> points, const Pen& pen)
        : picture_(picture), points_(points), pen_(pen), length_(lengthOf(0)) {}

    void draw(double from, double to) {
        goTo(from);
        part_.assign(1, at(from));
        while (segment_ + 2 < points_.size() && start_ + length_ < to) {
            step();
            part_.push_back(points_[segment_]);
        }
        part_.push_back(at(to));
        picture_.addPolyline(part_, pen_);
    }

  private:
    double lengthOf(std::size_t segment) const { return points_[segment].distanceTo(points_[segment + 1]); }
    void step() {
        start_ += length_;
        length_ = lengthOf(++segment_);
    }
    void goTo(double distance) {
        while (segment_ + 2 < points_.size() && start_ + length_ < distance) step();
    }
    OdGePoint2d at(double distance) const {
        const double part = length_ > 0 ? std::min((distance - start_) / length_, 1.0) : 0.0;
        return points_[segment_] + (points_[segment_ + 1] - points_[segment_]) * part;
    }

    Picture& picture_;
    std::span<const OdGePoint2d> points_;
    const Pen& pen_;
    std::size_t segment_ = 0;
    double start_ = 0, length_;
    std::vector<OdGePoint2d> part_;
};

}  // namespace

void addDashed(Picture& picture, std::span<const OdGePoint2d> points, const Pen& pen, std::span<const double> dashes,
               double scale) {
    double pattern = 0, total = 0;
    for (double dash : dashes) pattern += std::fabs(dash) * scale;
    for (std::size_t i = 1; i < points.size(); ++i) total += points[i - 1].distanceTo(points[i]);
    if (!(pattern >= kSmallestPattern) || !(total >= pattern) || !std::isfinite(total))
        return picture.addPolyline(points, pen);

    // What is mostly outside is cut first, for its dashes might be without number.
    const double visible = picture.clipLow().distanceTo(picture.clipHigh());
    if (total > 100 * (visible + 1)) {
        for (std::size_t i = 1; i < points.size(); ++i) {
            const OdGeVector2d along = points[i] - points[i - 1];
            double first = 0, last = 1;
            if (!cutLine(points[i - 1], along, picture.clipLow(), picture.clipHigh(), first, last)) continue;
            if (along.length() * (last - first) > 2 * visible + 2) continue;  // too far away for its place to be known
            const OdGePoint2d part[2] = {points[i - 1] + along * first, points[i - 1] + along * last};
            addDashed(picture, part, pen, dashes, scale);
        }
        return;
    }

    Walker walker(picture, points, pen);
    // A pattern begins with a dash; what the patterns leave over lengthens or shortens the first and the last one.
    const double firstDash = std::max(dashes[0], 0.0) * scale;
    const double ends = (std::fmod(total, pattern) + firstDash) / 2;
    walker.draw(0, ends);
    double place = ends;
    const double last = total - ends;
    for (std::size_t i = 1 % dashes.size(); place < last - 1e-6 * pattern; i = (i + 1) % dashes.size()) {
        const double end = place + std::fabs(dashes[i]) * scale;
        if (dashes[i] >= 0) walker.draw(place, std::min(end, last));
        place = end;
    }
    walker.draw(last, total);
}

}  // namespace host
