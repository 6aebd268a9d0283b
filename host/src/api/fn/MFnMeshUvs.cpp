#include <maya/MFnMesh.h>

#include "api/fn/MeshCall.h"
#include "values/Text.h"

#include <maya/MFloatArray.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>

#include <algorithm>

using namespace host;
using api::among;
using api::changeMesh;
using api::countOf;
using api::fill;
using api::floats;
using api::fromText;
using api::ints;
using api::MeshChange;
using api::toText;
using api::withMesh;
using mesh::PolyMesh;
using mesh::UvSet;

namespace {

/// The longest list of UVs that setting one by one makes.
constexpr int maxUvs = 1 << 24;

MStatus ok(bool did) { return did ? MStatus::kSuccess : MStatus::kInvalidParameter; }

/// The set's index; -1 when there is none of that name. Null means the current set.
int find(const PolyMesh& m, const MString* name) { return m.findUvSet(name ? toText(*name) : std::string()); }

/// The index of a set that must be named.
int findNamed(const PolyMesh& m, const MString& name) { return name.length() ? m.findUvSet(toText(name)) : -1; }

/// Looks at a set, or changes one; kInvalidParameter when it does not exist.
template <class Look>
MStatus withSet(const MObject& object, const MString* name, Look&& look) {
    return withMesh(object, [&](const PolyMesh& m) -> MStatus {
        const int set = find(m, name);
        return set >= 0 ? look(m, set) : MStatus(MStatus::kInvalidParameter);
    });
}

template <class Change>
MStatus changeSet(const MObject& object, const MString* name, Change&& change) {
    return changeMesh(object, MeshChange::Any, [&](PolyMesh& m) -> MStatus {
        const int set = find(m, name);
        return set >= 0 ? change(m, set) : MStatus(MStatus::kInvalidParameter);
    });
}

std::vector<int> faceSizes(const PolyMesh& m) {
    std::vector<int> counts(static_cast<std::size_t>(m.numPolygons()));
    for (int face = 0; face < m.numPolygons(); ++face) counts[static_cast<std::size_t>(face)] = m.faceSize(face);
    return counts;
}

std::string freeName(const PolyMesh& m, std::string wanted) {
    if (wanted.empty()) wanted = "uvSet";
    std::string name = wanted;
    for (int i = 1; m.findUvSet(name) >= 0; ++i) name = wanted + std::to_string(i);
    return name;
}

/// Gives a set the coordinates and assignments of another one, which may belong to a mesh of the same polygons.
void copySet(const UvSet& from, PolyMesh& to, int set) {
    const UvSet source = from;
    to.clearUvs(set);
    to.setUvs(set, source.u, source.v);
    if (!source.ids.empty()) to.assignUvs(set, faceSizes(to), source.ids);
}

} // namespace

int MFnMesh::numUVSets(MStatus* ReturnStatus) const {
    return countOf(object_, ReturnStatus, [](const PolyMesh& m) { return m.numUvSets(); });
}

MStatus MFnMesh::getUVSetNames(MStringArray& setNames) const {
    return withMesh(object_, [&](const PolyMesh& m) -> MStatus {
        setNames.clear();
        for (int set = 0; set < m.numUvSets(); ++set) setNames.append(fromText(m.uvSet(set).name));
        return MStatus::kSuccess;
    });
}

MString MFnMesh::currentUVSetName(MStatus* ReturnStatus, int) const {
    return fromText(countOf(object_, ReturnStatus, [](const PolyMesh& m) { return m.uvSet(m.currentUvSet()).name; }));
}

MStatus MFnMesh::getCurrentUVSetName(MString& setName, int instance) const {
    MStatus status;
    const MString name = currentUVSetName(&status, instance);
    if (status) setName = name;
    return status;
}

MStatus MFnMesh::setCurrentUVSetName(const MString& setName, MDGModifier*, MSelectionList*) {
    return changeMesh(object_, MeshChange::Any, [&](PolyMesh& m) {
        const int set = findNamed(m, setName);
        if (set >= 0) m.setCurrentUvSet(set);
        return ok(set >= 0);
    });
}

MString MFnMesh::createUVSetWithName(const MString& uvSetName, MDGModifier*, MStatus* ReturnStatus, const MUintArray*) {
    std::string name;
    const MStatus status = changeMesh(object_, MeshChange::Any, [&](PolyMesh& m) {
        name = freeName(m, toText(uvSetName));
        return ok(m.addUvSet(name) >= 0);
    });
    setStatus(ReturnStatus, status.statusCode());
    return status ? fromText(name) : MString();
}

MStatus MFnMesh::createUVSet(MString& uvSetName, MDGModifier* modifier, const MUintArray* instances) {
    MStatus status;
    const MString name = createUVSetWithName(uvSetName, modifier, &status, instances);
    if (status) uvSetName = name;
    return status;
}

MString MFnMesh::copyUVSetWithName(const MString& fromName, const MString& toName, MDGModifier*,
                                   MStatus* ReturnStatus) {
    std::string name;
    const MStatus status = changeMesh(object_, MeshChange::Any, [&](PolyMesh& m) {
        const int from = findNamed(m, fromName);
        if (from < 0) return ok(false);
        name = toName.length() ? toText(toName) : freeName(m, toText(fromName));
        int to = m.findUvSet(name);
        if (to < 0) to = m.addUvSet(name);
        if (to != from) copySet(m.uvSet(from), m, to);
        return ok(true);
    });
    setStatus(ReturnStatus, status.statusCode());
    return status ? fromText(name) : MString();
}

MStatus MFnMesh::renameUVSet(const MString& origName, const MString& newName, MDGModifier*) {
    return changeMesh(object_, MeshChange::Any, [&](PolyMesh& m) {
        const int set = findNamed(m, origName);
        return ok(set >= 0 && m.renameUvSet(set, toText(newName)));
    });
}

MStatus MFnMesh::deleteUVSet(const MString& setName, MDGModifier*, MSelectionList*) {
    return changeMesh(object_, MeshChange::Any, [&](PolyMesh& m) -> MStatus {
        const int set = findNamed(m, setName);
        if (set < 0) return MStatus::kInvalidParameter;
        if (set == 0) return MStatus::kFailure;
        m.removeUvSet(set);
        return MStatus::kSuccess;
    });
}

int MFnMesh::numUVs(MStatus* ReturnStatus) const {
    return countOf(object_, ReturnStatus, [](const PolyMesh& m) { return m.uvSet(m.currentUvSet()).size(); });
}

int MFnMesh::numUVs(const MString& uvSet, MStatus* ReturnStatus) const {
    int count = 0;
    const MStatus status = withSet(object_, &uvSet, [&](const PolyMesh& m, int set) {
        count = m.uvSet(set).size();
        return ok(true);
    });
    setStatus(ReturnStatus, status.statusCode());
    return count;
}

MStatus MFnMesh::setUVs(const MFloatArray& uArray, const MFloatArray& vArray, const MString* uvSet) {
    return changeSet(object_, uvSet,
                     [&](PolyMesh& m, int set) { return ok(m.setUvs(set, floats(uArray), floats(vArray))); });
}

MStatus MFnMesh::setSomeUVs(const MIntArray& uvIds, const MFloatArray& uArray, const MFloatArray& vArray,
                            const MString* uvSet) {
    return changeSet(object_, uvSet, [&](PolyMesh& m, int set) {
        const auto ids = ints(uvIds);
        if (uArray.length() != ids.size() || vArray.length() != ids.size()) return ok(false);
        if (!std::ranges::all_of(ids, [](int id) { return among(id, maxUvs); })) return ok(false);
        if (ids.empty()) return ok(true);
        std::vector<float> u = m.uvSet(set).u, v = m.uvSet(set).v;
        const std::size_t size = std::max(u.size(), static_cast<std::size_t>(std::ranges::max(ids)) + 1);
        u.resize(size);
        v.resize(size);
        for (unsigned int i = 0; i < uvIds.length(); ++i) {
            u[static_cast<std::size_t>(uvIds[i])] = uArray[i];
            v[static_cast<std::size_t>(uvIds[i])] = vArray[i];
        }
        return ok(m.setUvs(set, std::move(u), std::move(v)));
    });
}

MStatus MFnMesh::setUV(int uvId, float u, float v, const MString* uvSet) {
    return setSomeUVs(MIntArray(1, uvId), MFloatArray(1, u), MFloatArray(1, v), uvSet);
}

MStatus MFnMesh::getUVs(MFloatArray& uArray, MFloatArray& vArray, const MString* uvSet) const {
    return withSet(object_, uvSet, [&](const PolyMesh& m, int set) {
        const auto same = [](float x) { return x; };
        const MStatus status = fill(uArray, m.uvSet(set).u, same);
        return status ? fill(vArray, m.uvSet(set).v, same) : status;
    });
}

MStatus MFnMesh::getUV(int uvId, float& u, float& v, const MString* uvSet) const {
    return withSet(object_, uvSet, [&](const PolyMesh& m, int set) {
        const UvSet& s = m.uvSet(set);
        if (!among(uvId, s.size())) return ok(false);
        u = s.u[static_cast<std::size_t>(uvId)];
        v = s.v[static_cast<std::size_t>(uvId)];
        return ok(true);
    });
}

MStatus MFnMesh::getPolygonUV(int polygonId, int vertexIndex, float& u, float& v, const MString* uvSet) const {
    return withSet(object_, uvSet, [&](const PolyMesh& m, int set) -> MStatus {
        if (!among(polygonId, m.numPolygons()) || !among(vertexIndex, m.faceSize(polygonId)))
            return MStatus::kInvalidParameter;
        return m.uvAt(set, polygonId, vertexIndex, u, v) ? MStatus::kSuccess : MStatus::kFailure;
    });
}

MStatus MFnMesh::getPolygonUVid(int polygonId, int vertexIndex, int& uvId, const MString* uvSet) const {
    return withSet(object_, uvSet, [&](const PolyMesh& m, int set) -> MStatus {
        if (!among(polygonId, m.numPolygons()) || !among(vertexIndex, m.faceSize(polygonId)))
            return MStatus::kInvalidParameter;
        const int id = m.uvId(set, polygonId, vertexIndex);
        if (id < 0) return MStatus::kFailure;
        uvId = id;
        return MStatus::kSuccess;
    });
}

MStatus MFnMesh::assignUV(int polygonId, int vertexIndex, int uvId, const MString* uvSet) {
    return changeSet(object_, uvSet, [&](PolyMesh& m, int set) {
        if (!among(polygonId, m.numPolygons()) || !among(vertexIndex, m.faceSize(polygonId)) ||
            !among(uvId, m.uvSet(set).size()))
            return ok(false);
        std::vector<int> ids = m.uvSet(set).ids;
        if (ids.empty()) ids.assign(static_cast<std::size_t>(m.numFaceVertices()), -1);
        ids[static_cast<std::size_t>(m.faceStart(polygonId) + vertexIndex)] = uvId;
        return ok(m.assignUvs(set, faceSizes(m), ids));
    });
}

MStatus MFnMesh::assignUVs(const MIntArray& uvCounts, const MIntArray& uvIds, const MString* uvSet) {
    return changeSet(object_, uvSet,
                     [&](PolyMesh& m, int set) { return ok(m.assignUvs(set, ints(uvCounts), ints(uvIds))); });
}

MStatus MFnMesh::getAssignedUVs(MIntArray& uvCounts, MIntArray& uvIds, const MString* uvSet) const {
    return withSet(object_, uvSet, [&](const PolyMesh& m, int set) {
        std::vector<int> counts, ids;
        for (int face = 0; face < m.numPolygons(); ++face) {
            const auto first = ids.size();
            for (int corner = 0; corner < m.faceSize(face); ++corner) ids.push_back(m.uvId(set, face, corner));
            const bool any = std::any_of(ids.begin() + static_cast<std::ptrdiff_t>(first), ids.end(),
                                         [](int id) { return id >= 0; });
            counts.push_back(any ? m.faceSize(face) : 0);
            if (!any) ids.resize(first);
        }
        const MStatus status = fill(uvCounts, std::span<const int>(counts));
        return status ? fill(uvIds, std::span<const int>(ids)) : status;
    });
}

MStatus MFnMesh::clearUVs(const MString* uvSet) {
    return changeSet(object_, uvSet, [](PolyMesh& m, int set) {
        m.clearUvs(set);
        return ok(true);
    });
}
