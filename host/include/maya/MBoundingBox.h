#pragma once

#include <maya/MMatrix.h>
#include <maya/MPoint.h>

/// A box along the axes, held by its smallest and its largest corner. A new box is empty: it contains nothing, its
/// sizes are 0, and its corners are far out with min beyond max.
class OPENMAYA_EXPORT MBoundingBox {
public:
    MBoundingBox();
    MBoundingBox(const MBoundingBox& src);
    /// Any two opposite corners.
    MBoundingBox(const MPoint& corner1, const MPoint& corner2);

    /// Becomes the box of its own eight corners after the transform.
    void transformUsing(const MMatrix& matrix);
    void expand(const MPoint& point);
    void expand(const MBoundingBox& box);
    /// The surface belongs to the box.
    bool contains(const MPoint& point) const;
    /// Whether the boxes touch or overlap, or are within `tol` along every axis.
    bool intersects(const MBoundingBox& box, double tol = 0.0) const;

    void clear();

    /// Sizes along x, y and z.
    double width() const;
    double height() const;
    double depth() const;
    /// Of an empty box the origin.
    MPoint center() const;
    MPoint min() const;
    MPoint max() const;
    MBoundingBox& operator=(const MBoundingBox& other);

private:
    bool empty() const;

    MPoint min_;
    MPoint max_;
};
