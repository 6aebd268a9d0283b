#pragma once

#include <Imath/ImathVec.h>

#include <array>
#include <cstddef>
#include <memory>
#include <span>

namespace host::mesh {

/// Finds the triangles near a ray or a point, by boxes around them that Embree keeps in order. It never leaves out a
/// triangle that an exact test would take: whatever Embree's single precision may lose is less than the boxes' margin.
/// What a triangle really gives is for the caller to decide. Queries may run in several threads at once. What makes
/// them is in a module beside this library, which is loaded with the first one.
class TriangleTree {
public:
    /// A part of a line: origin + t * direction for t in [from, to].
    struct Segment {
        Imath::V3d origin, direction;
        double from, to;
    };

    /// Triangles name their points by index; those with a coordinate that is not finite are left out. Boxes are
    /// enlarged by the share `slack` of their size on all sides. Keeps neither of the lists. Throws std::bad_alloc when
    /// memory does not suffice, std::runtime_error when Embree cannot be had.
    static std::unique_ptr<TriangleTree> make(std::span<const Imath::V3d> points,
                                              std::span<const std::array<int, 3>> triangles, double slack);
    virtual ~TriangleTree() = default;
    TriangleTree(const TriangleTree&) = delete;
    TriangleTree& operator=(const TriangleTree&) = delete;

    /// Calls `visit(triangle)`, which answers up to where on the segment it still needs to look, for every triangle
    /// that may lie there, in any order. False, with nothing visited, for segments too far off for single precision.
    template <class Visit>
    bool along(const Segment& segment, Visit& visit) const {
        return visitAlong(segment, call<Visit>, &visit);
    }
    /// The same for a point and the distance within which to look; it starts without limit.
    template <class Visit>
    bool near(const Imath::V3d& point, Visit& visit) const {
        return visitNear(point, call<Visit>, &visit);
    }

    virtual std::size_t bytes() const = 0;

protected:
    TriangleTree() = default;
    using Visitor = double (*)(void* visit, int triangle);
    virtual bool visitAlong(const Segment& segment, Visitor visitor, void* visit) const = 0;
    virtual bool visitNear(const Imath::V3d& point, Visitor visitor, void* visit) const = 0;

private:
    template <class Visit>
    static double call(void* visit, int triangle) {
        return (*static_cast<Visit*>(visit))(triangle);
    }
};

/// What the module gives: TriangleTree::make() without the loading.
using TriangleTreeMaker = std::unique_ptr<TriangleTree> (*)(std::span<const Imath::V3d> points,
                                                            std::span<const std::array<int, 3>> triangles,
                                                            double slack);

} // namespace host::mesh
