// The cells of a multiple reference.
#pragma once

#include "drawingdb/block_reference.h"

namespace drawingdb {

/// Where the rows and columns of a reference lie; of a single one there is one cell. They are counted in the
/// reference's own directions and not scaled. The reference must stay as it is for as long as this is used.
class ReferenceCells {
  public:
    explicit ReferenceCells(const OdDbBlockReference& reference)
        : reference_(reference), first_(reference.blockTransform()) {
        if (rows() > 1 || columns() > 1)
            axes_ = OdGeMatrix3d::planeToWorld(reference.normal()) *
                    OdGeMatrix3d::rotation(reference.rotation(), OdGeVector3d::kZAxis);
    }

    int rows() const { return reference_.rows(); }
    int columns() const { return reference_.columns(); }
    /// From the first cell to another that there is, in the coordinates that the reference lies in.
    OdGeVector3d offset(int row, int column) const {
        return axes_ * OdGeVector3d(column * reference_.columnSpacing(), row * reference_.rowSpacing(), 0);
    }
    /// From the block's coordinates to those that the reference lies in.
    OdGeMatrix3d transform(int row, int column) const {
        return row == 0 && column == 0 ? first_ : OdGeMatrix3d::translation(offset(row, column)) * first_;
    }

  private:
    const OdDbBlockReference& reference_;
    OdGeMatrix3d first_;
    OdGeMatrix3d axes_;  // of a multiple reference
};

/// The box around all cells, given that of the first and the ways to the last column and to the last row.
inline OdGeExtents3d inAllCells(const OdGeExtents3d& first, const OdGeVector3d& across, const OdGeVector3d& up) {
    OdGeExtents3d all = first;
    if (!first.isValid()) return all;
    for (const OdGeVector3d& shift : {across, up, across + up})
        all.addExtents(OdGeExtents3d(first.minPoint() + shift, first.maxPoint() + shift));
    return all;
}

}  // namespace drawingdb
