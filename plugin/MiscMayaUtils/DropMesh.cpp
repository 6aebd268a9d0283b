#include "DropMesh.h"

#include "../Common/MayaUtils.h"

#include <cmath>
#include <limits>
#include <maya/MArgList.h>
#include <maya/MFloatPoint.h>
#include <maya/MFloatVector.h>
#include <maya/MFnMesh.h>
#include <maya/MMatrix.h>
#include <optional>

namespace orvo {
namespace {

/// How far above the highest static box rays begin, and how far below the lowest they end.
constexpr double kRayMargin = 1000.0;
constexpr float kRayTolerance = 1e-6f;

/// Reports a failure in full. A host call that failed without a status counts as kFailure.
MStatus failed(MStatus status, const char* message, const SourcePlace& where = SourcePlace::current()) {
    if (!status.error()) status = MStatus::kFailure;
    reportFailure(status, message, where);
    return status;
}

/// A static mesh with the structure that speeds its queries up.
struct Surface {
    MFnMesh* mesh;
    MMeshIsectAccelParams accelerator = MFnMesh::autoUniformGridParams();
};

/// Falling rays of one length from one height.
struct Rays {
    float from, length;
};

/// Where the ray through a point first meets the surfaces; nothing where it misses them all. The earlier of two equally
/// high surfaces counts.
MStatus highestHit(const MPoint& point, const Rays& rays, std::vector<Surface>& surfaces,
                   std::optional<MFloatPoint>& highest) {
    const MFloatPoint source(static_cast<float>(point.x), rays.from, static_cast<float>(point.z));
    const MFloatVector down(0.0f, -1.0f, 0.0f);
    for (Surface& surface : surfaces) {
        MFloatPoint hit;
        MStatus status;
        const bool met = surface.mesh->closestIntersection(source, down, nullptr, nullptr, false, MSpace::kWorld,
                                                           rays.length, false, &surface.accelerator, hit, nullptr,
                                                           nullptr, nullptr, nullptr, nullptr, kRayTolerance, &status);
        if (status.error()) return failed(status, "DropMeshCommand: Error while calling closestIntersection");
        if (met && (!highest || hit.y > highest->y)) highest = hit;
    }
    return MStatus::kSuccess;
}

/// The point of the surfaces nearest to one; the earlier of two equally near counts.
MStatus nearestPoint(const MPoint& point, std::vector<Surface>& surfaces, MPoint& nearest) {
    double distance = 0.0;
    bool found = false;
    for (Surface& surface : surfaces) {
        MPoint closest;
        const MStatus status =
            surface.mesh->getClosestPoint(point, closest, MSpace::kWorld, nullptr, &surface.accelerator);
        if (status.error()) return failed(status, "DropMeshCommand: error getting closePt on static mesh");
        const double distanceHere = point.distanceTo(closest);
        if (found && !(distanceHere < distance)) continue;
        nearest = closest;
        distance = distanceHere;
        found = true;
    }
    return MStatus::kSuccess;
}

} // namespace

MStatus DropMeshCommand::doIt(const MArgList& args) {
    return guarded("orvo_dropMesh", MStatus(MStatus::kFailure), [&] {
        const MStatus status = readArguments(args);
        return status.error() ? status : redoIt();
    });
}

MStatus DropMeshCommand::redoIt() {
    return guarded("orvo_dropMesh", MStatus(MStatus::kFailure), [&] { return drop(); });
}

MStatus DropMeshCommand::undoIt() {
    return guarded("orvo_dropMesh", MStatus(MStatus::kFailure), [&] { return restore(); });
}

MStatus DropMeshCommand::readArguments(const MArgList& args) {
    if (args.length() != 3) {
        reportError("Syntax: \"dropMesh dropObject staticObjects offset\", where dropObject is the mesh to be dropped. "
                    "staticObjects is an array of static scene objects.  offset is a value in Y");
        return MStatus::kFailure;
    }
    MStatus status;
    dropName_ = args.asString(0, &status);
    if (status.error()) return failed(status, "DropMeshCommand: Could not get dropObjectName argument");
    unsigned index = 1;
    status = args.get(index, staticNames_);
    if (status.error() || staticNames_.length() == 0)
        return failed(status, "DropMeshCommand: Could not get staticObjectNameArray argument");
    offset_ = args.asDouble(2, &status);
    // An offset that points cannot take, or none at all, would take the mesh's shape away.
    if (status.error() || !(std::fabs(offset_) <= std::numeric_limits<float>::max()))
        return failed(status, "DropMeshCommand: Could not get offset argument");
    return MStatus::kSuccess;
}

MStatus DropMeshCommand::drop() {
    MDagPath path;
    MStatus status;
    const auto dropMesh = meshByName(dropName_, path, &status);
    if (!dropMesh) return failed(status, "DropMeshCommand: Trouble getting dropObject MFnMesh");
    Statics statics;
    MStringArray names;
    status = findStatics(statics, names);
    if (status.error()) return status;
    const int numVerts = dropMesh->numVertices(&status);
    if (status.error()) return failed(status, "DropMeshCommand: Could not get numVerts from dropObjectMesh");
    if (!undoPositions_) {
        status = keepUndoPositions(*dropMesh, numVerts);
        if (!status.error()) status = measureStatics(names);
        if (status.error()) return status;
    }

    MPointArray points;
    status = dropMesh->getPoints(points, MSpace::kWorld);
    if (status.error()) return failed(status, "DropMeshCommand: Could not get vertex from dropObjectMesh");
    unsigned moved = 0;
    const MStatus dropped = dropPoints(points, statics, moved);
    // A mesh that its transform makes flat has no point of its own for one of the world; a host may take any.
    const bool isFlat = path.inclusiveMatrix(&status).isSingular();
    if (!status.error() && isFlat && moved > 0) status = MStatus::kFailure;
    // All at once: a host may copy a mesh for each change. After a failure only those before it move.
    if (!dropped.error() && !status.error()) status = dropMesh->setPoints(points, MSpace::kWorld);
    for (unsigned i = 0; dropped.error() && i < moved && !status.error(); ++i)
        status = dropMesh->setPoint(static_cast<int>(i), points[i], MSpace::kWorld);
    if (status.error()) return failed(status, "DropMeshCommand: Error assigning point back into dropObjectMesh");
    if (dropped.error()) return dropped;
    status = dropMesh->updateSurface();
    if (status.error()) return failed(status, "DropMeshCommand: Error calling UpdateSurface on dropObjectMesh");
    return status;
}

MStatus DropMeshCommand::findStatics(Statics& statics, MStringArray& names) const {
    for (unsigned i = 0; i < staticNames_.length(); ++i) {
        MDagPath path;
        if (auto mesh = meshByName(staticNames_[i], path)) {
            statics.push_back(std::move(mesh));
            names.append(staticNames_[i]);
        } else {
            reportWarning("DropMeshCommand: unable to get static mesh [%s]\n", staticNames_[i].asUTF8());
        }
    }
    if (statics.empty())
        return failed(MStatus::kFailure, "DropMeshCommand: Could not get any static objects to work with");
    return MStatus::kSuccess;
}

MStatus DropMeshCommand::keepUndoPositions(const MFnMesh& dropMesh, int numVerts) {
    MPointArray points;
    const MStatus status = dropMesh.getPoints(points, MSpace::kObject);
    if (status.error() || points.length() != static_cast<unsigned>(numVerts))
        return failed(status, "DropMeshCommand: Could not get vertex from dropObjectMesh");
    auto positions = std::make_unique<float[]>(3 * static_cast<std::size_t>(numVerts));
    for (unsigned i = 0; i < points.length(); ++i) {
        float* position = &positions[std::size_t{3} * i];
        position[0] = static_cast<float>(points[i].x);
        position[1] = static_cast<float>(points[i].y);
        position[2] = static_cast<float>(points[i].z);
    }
    undoPositions_ = std::move(positions);
    undoCount_ = numVerts;
    return MStatus::kSuccess;
}

MStatus DropMeshCommand::measureStatics(const MStringArray& names) {
    for (unsigned i = 0; i < names.length(); ++i) {
        MBoundingBox box;
        const MStatus status = exactWorldBoundingBox(names[i], box);
        if (status.error()) return failed(status, "DropMeshCommand: Could not get bbox from static mesh");
        const double bottom = box.min().y, top = box.max().y;
        if (i == 0 || bottom < staticBottom_) staticBottom_ = bottom;
        if (i == 0 || top > staticTop_) staticTop_ = top;
    }
    return MStatus::kSuccess;
}

MStatus DropMeshCommand::dropPoints(MPointArray& points, const Statics& statics, unsigned& moved) const {
    std::vector<Surface> surfaces;
    for (const auto& mesh : statics) surfaces.push_back({mesh.get()});
    const Rays rays{static_cast<float>(staticTop_ + kRayMargin),
                    static_cast<float>((staticTop_ - staticBottom_) + 2 * kRayMargin)};
    unsigned nowhere = 0;
    for (moved = 0; moved < points.length(); ++moved) {
        MPoint& point = points[moved];
        // Nothing lies below a vertex that is nowhere; it must not keep the others from falling.
        if (!std::isfinite(point.x) || !std::isfinite(point.y) || !std::isfinite(point.z)) {
            ++nowhere;
            continue;
        }
        std::optional<MFloatPoint> hit;
        MStatus status = highestHit(point, rays, surfaces, hit);
        if (status.error()) return status;
        if (hit) {
            point = MPoint(hit->x, hit->y + offset_, hit->z);
            continue;
        }
        MPoint nearest;
        status = nearestPoint(point, surfaces, nearest);
        if (status.error()) return status;
        point.y = nearest.y + offset_;
    }
    if (nowhere) reportWarning("DropMeshCommand: %d vertices have no position and are left alone\n", nowhere);
    return MStatus::kSuccess;
}

MStatus DropMeshCommand::restore() {
    if (!undoPositions_) return failed(MStatus::kFailure, "DropMeshCommand: no undo data to work with!!? :(");
    MDagPath path;
    MStatus status;
    const auto dropMesh = meshByName(dropName_, path, &status);
    if (!dropMesh) return failed(status, "DropMeshCommand: Trouble getting dropObject MFnMesh");
    const int numVerts = dropMesh->numVertices(&status);
    if (status.error()) return failed(status, "DropMeshCommand: Could not get numVerts from dropObjectMesh");
    if (numVerts != undoCount_)
        return failed(MStatus::kFailure, "DropMeshCommand: undo Data does not match mesh!!? :(");
    MPointArray points(static_cast<unsigned>(numVerts));
    for (unsigned i = 0; i < points.length(); ++i) {
        const float* position = &undoPositions_[std::size_t{3} * i];
        // The command has always given 0 as the fourth component, which is not looked at.
        points[i] = MPoint(position[0], position[1], position[2], 0.0);
    }
    status = dropMesh->setPoints(points, MSpace::kObject);
    if (status.error()) return failed(status, "DropMeshCommand: Error assigning point back into dropObjectMesh");
    status = dropMesh->updateSurface();
    if (status.error()) return failed(status, "DropMeshCommand: Error calling UpdateSurface on dropObjectMesh");
    return status;
}

} // namespace orvo
