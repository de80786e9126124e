#include "drawingdb/src/geometry/arc_length.h"

#include <algorithm>
#include <boost/math/quadrature/gauss.hpp>
#include <cmath>

namespace drawingdb {

namespace {

// Of the whole length; the quadrature's own error is far smaller once two halves agree this well with their whole.
constexpr double kAgreement = 1e-13;
constexpr double kExactness = 1e-15;
constexpr int kDeepestHalving = 40;
// A curve that needs more (out of a damaged file) is measured as well as they allow.
constexpr std::size_t kMostPieces = std::size_t{1} << 12;
constexpr int kMostSteps = 100;

// A length beyond all numbers counts as none.
double integral(const ArcLengths::Speed& speed, double from, double to) {
    const double length = boost::math::quadrature::gauss<double, 15>::integrate(speed, from, to);
    return std::isfinite(length) ? length : 0;
}

}  // namespace

ArcLengths::ArcLengths(const std::vector<double>& breaks, const Speed& speed) {
    double estimate = 0;
    for (std::size_t i = 1; i < breaks.size(); ++i) estimate += integral(speed, breaks[i - 1], breaks[i]);
    pieces_.push_back({breaks.front(), 0});
    for (std::size_t i = 1; i < breaks.size(); ++i)
        addPiece(breaks[i - 1], breaks[i], integral(speed, breaks[i - 1], breaks[i]), kAgreement * estimate,
                 kDeepestHalving, speed);
}

void ArcLengths::addPiece(double from, double to, double length, double tolerance, int depth, const Speed& speed) {
    if (!(to > from)) return;
    const double middle = from + (to - from) / 2;
    const double first = integral(speed, from, middle), second = integral(speed, middle, to);
    if (depth == 0 || pieces_.size() >= kMostPieces || std::fabs(first + second - length) <= tolerance) {
        const double before = whole();
        pieces_.push_back({middle, before + first});
        pieces_.push_back({to, before + first + second});
        return;
    }
    addPiece(from, middle, first, tolerance, depth - 1, speed);
    addPiece(middle, to, second, tolerance, depth - 1, speed);
}

double ArcLengths::lengthAt(double parameter, const Speed& speed) const {
    if (!(parameter > pieces_.front().parameter)) return 0;
    if (parameter >= pieces_.back().parameter) return whole();
    const auto next = std::upper_bound(pieces_.begin(), pieces_.end(), parameter,
                                       [](double value, const Piece& piece) { return value < piece.parameter; });
    const Piece& piece = *std::prev(next);
    return piece.length + integral(speed, piece.parameter, parameter);
}

// Newton's steps, kept inside the piece: where one would leave it, or the curve stands still, the range is halved.
double ArcLengths::parameterAt(double length, const Speed& speed) const {
    if (!(length > 0)) return pieces_.front().parameter;
    if (length >= whole()) return pieces_.back().parameter;
    const auto next = std::upper_bound(pieces_.begin(), pieces_.end(), length,
                                       [](double value, const Piece& piece) { return value < piece.length; });
    const Piece& piece = *std::prev(next);
    const double target = length - piece.length;
    double low = piece.parameter, high = next->parameter;
    double parameter = low + (high - low) * (target / (next->length - piece.length));
    for (int step = 0; step < kMostSteps; ++step) {
        const double miss = integral(speed, piece.parameter, parameter) - target;
        if (std::fabs(miss) <= kExactness * whole()) break;
        (miss > 0 ? high : low) = parameter;
        const double pace = speed(parameter);
        double better = pace > 0 ? parameter - miss / pace : low;
        if (!(better > low && better < high)) better = low + (high - low) / 2;
        if (better == parameter) break;
        parameter = better;
    }
    return parameter;
}

double SegmentLengths::lengthAt(double parameter) const {
    if (!(parameter > 0) || ends_.empty()) return 0;
    const auto index = static_cast<std::size_t>(std::min(parameter, static_cast<double>(ends_.size())));
    if (index >= ends_.size()) return whole();
    const double before = index > 0 ? ends_[index - 1] : 0;
    return before + (ends_[index] - before) * (parameter - static_cast<double>(index));
}

double SegmentLengths::parameterAt(double length) const {
    if (!(length > 0)) return 0;
    const auto end = std::upper_bound(ends_.begin(), ends_.end(), length);
    if (end == ends_.end()) return static_cast<double>(ends_.size());
    const auto index = static_cast<double>(end - ends_.begin());
    const double before = end == ends_.begin() ? 0 : *std::prev(end);
    return index + (length - before) / (*end - before);
}

}  // namespace drawingdb
