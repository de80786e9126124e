// Lengths along curves that have no closed form for them.
#pragma once

#include <functional>
#include <vector>

namespace drawingdb {

/// The lengths of a curve's pieces, measured once by quadrature of its speed. What is asked for afterwards only
/// measures inside one piece. Errors stay below 1e-12 of the whole length.
class ArcLengths {
  public:
    using Speed = std::function<double(double parameter)>;

    /// `breaks` are ascending parameters between which the speed is smooth.
    ArcLengths(const std::vector<double>& breaks, const Speed& speed);

    double whole() const { return pieces_.back().length; }
    /// A parameter outside the curve counts as the end next to it; so does a length.
    double lengthAt(double parameter, const Speed& speed) const;
    double parameterAt(double length, const Speed& speed) const;

  private:
    struct Piece {
        double parameter;  // where it begins
        double length;     // of everything before it
    };
    void addPiece(double from, double to, double length, double tolerance, int depth, const Speed& speed);

    std::vector<Piece> pieces_;  // the last one is the end
};

/// The same for a row of segments whose lengths are known, each passed at an even speed: the parameter counts segments.
class SegmentLengths {
  public:
    void add(double segmentLength) { ends_.push_back(whole() + segmentLength); }
    double whole() const { return ends_.empty() ? 0 : ends_.back(); }
    double lengthAt(double parameter) const;
    double parameterAt(double length) const;

  private:
    std::vector<double> ends_;  // length up to the end of each segment
};

}  // namespace drawingdb
