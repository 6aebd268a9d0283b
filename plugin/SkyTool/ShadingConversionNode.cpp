#include "ShadingConversionNode.h"

#include "Common/Messages.h"
#include "Common/Vector3.h"

#include <algorithm>
#include <cmath>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>
#include <maya/MFnEnumAttribute.h>
#include <maya/MFnMatrixAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnNumericData.h>
#include <maya/MMatrix.h>
#include <maya/MPlug.h>
#include <maya/MQuaternion.h>
#include <maya/MString.h>
#include <maya/MTransformationMatrix.h>
#include <maya/MVector.h>

namespace orvo {
namespace {

enum ConversionMode : short { kDirectional, kPosition };

/// Reports the first failure among the steps of a group of attributes, and keeps the first of all groups.
class AttributeGroup {
public:
    AttributeGroup(MStatus& first, const char* message, const SourcePlace& where)
        : first_(first), message_(message), where_(where) {}
    /// Takes a step's status; false when it failed.
    bool done(const MStatus& status) {
        if (!status.error()) return true;
        if (!reported_) reportFailure(status, message_, where_);
        reported_ = true;
        if (!first_.error()) first_ = status;
        return false;
    }

private:
    MStatus& first_;
    const char* message_;
    SourcePlace where_;
    bool reported_ = false;
};

AttributeGroup group(MStatus& first, const char* message, const SourcePlace& where = SourcePlace::current()) {
    return {first, message, where};
}

/// The vector times the power of two that brings its largest component to between 1 and 2, so that squares can neither
/// overflow nor vanish; a zero vector, or one that is not finite, as it is.
Vector3 brought(const Vector3& v) {
    const double largest = std::max({std::fabs(v.x), std::fabs(v.y), std::fabs(v.z)});
    if (!(largest > 0.0) || !std::isfinite(v.x) || !std::isfinite(v.y) || !std::isfinite(v.z)) return v;
    const int exponent = -std::ilogb(largest);
    return {std::scalbn(v.x, exponent), std::scalbn(v.y, exponent), std::scalbn(v.z, exponent)};
}

constexpr double rounding = 1e-14; ///< directions that differ by less than this are one

/// Whether two vectors have one line in common, or one of them has no direction.
bool isAlong(const Vector3& a, const Vector3& b) { return length(cross(a, b)) <= rounding * length(a) * length(b); }

/// The smallest rotation that takes an axis of the coordinates (0 to 2) onto a line's direction.
MQuaternion rotationOnto(unsigned axis, const Vector3& line) {
    const MVector axes[] = {MVector(1, 0, 0), MVector(0, 1, 0), MVector(0, 0, 1)};
    const Vector3 unit = normalised(line);
    const MVector direction(unit.x, unit.y, unit.z), &other = axes[(axis + 1) % 3];
    if (axes[axis] * direction > rounding - 1.0) return {axes[axis], direction};
    return {other.x, other.y, other.z, 0.0}; // half a turn
}

/// The rotation part of a matrix. An axis that a scale or shear has collapsed stands across the other two; where one
/// axis is left, the rotation is the smallest that takes it there, and where none is, there is no rotation.
MQuaternion rotationOf(const MMatrix& matrix) {
    constexpr unsigned none = 3;
    Vector3 rows[3];
    unsigned left = none;
    bool areOnOneLine = true;
    for (unsigned i = 0; i < 3; ++i) {
        rows[i] = brought({matrix(i, 0), matrix(i, 1), matrix(i, 2)});
        if (left == none && rows[i] != Vector3()) left = i;
        areOnOneLine = areOnOneLine && (left == none || isAlong(rows[left], rows[i]));
    }
    if (left == none) return {};
    if (areOnOneLine) return rotationOnto(left, rows[left]);
    if (left != 0) rows[0] = cross(rows[1], rows[2]);
    if (isAlong(rows[0], rows[1])) rows[1] = cross(rows[2], rows[0]);
    const Vector3 third = cross(rows[0], rows[1]);
    if (std::fabs(dot(normalised(third), rows[2])) <= rounding * length(rows[2])) rows[2] = third;
    MMatrix turned;
    for (unsigned i = 0; i < 3; ++i) turned(i, 0) = rows[i].x, turned(i, 1) = rows[i].y, turned(i, 2) = rows[i].z;
    return MTransformationMatrix(turned).rotation();
}

} // namespace

const MTypeId OrvoSkyShadingConversionNode::id(0x374003);

MObject OrvoSkyShadingConversionNode::inMatrix, OrvoSkyShadingConversionNode::inVector,
    OrvoSkyShadingConversionNode::mode, OrvoSkyShadingConversionNode::outVectorX,
    OrvoSkyShadingConversionNode::outVectorY, OrvoSkyShadingConversionNode::outVectorZ,
    OrvoSkyShadingConversionNode::outVector, OrvoSkyShadingConversionNode::outW;

MStatus OrvoSkyShadingConversionNode::initialize() {
    return guarded("OrvoSkyShadingConversionNode::initialize", MStatus(MStatus::kFailure), [] {
        const char* const vectorMessage = "Could not register node type m_sInVector!";
        MStatus status, created;
        auto matrixGroup = group(status, "Could not register matrix plug!");
        MFnMatrixAttribute matrix;
        inMatrix = matrix.create("inMatrix", "inMtx", MFnMatrixAttribute::kDouble, &created);
        (void)(matrixGroup.done(created) && matrixGroup.done(addAttribute(inMatrix)));

        auto vectorGroup = group(status, vectorMessage);
        MFnNumericAttribute numeric;
        inVector = numeric.create("inVector", "inVec", MFnNumericData::k3Double, 0.0, &created);
        (void)(vectorGroup.done(created) && vectorGroup.done(numeric.setDefault(0.0, 0.0, 0.0)) &&
               vectorGroup.done(addAttribute(inVector)));

        auto modeGroup = group(status, "Could not register m_sMode plug!");
        MFnEnumAttribute choice;
        mode = choice.create("mode", "mode", kDirectional, &created);
        (void)(modeGroup.done(created) && modeGroup.done(choice.addField("directional", kDirectional)) &&
               modeGroup.done(choice.addField("position", kPosition)) && modeGroup.done(choice.setStorable(false)) &&
               modeGroup.done(addAttribute(mode)));

        auto outGroup = group(status, "Could not register outvector plug!");
        const auto component = [&](MObject& attribute, const char* name, const char* brief) {
            attribute = numeric.create(name, brief, MFnNumericData::kDouble, 0.0, &created);
            return outGroup.done(created);
        };
        if (component(outVectorX, "outVectorX", "outVecX") && component(outVectorY, "outVectorY", "outVecY") &&
            component(outVectorZ, "outVectorZ", "outVecZ")) {
            outVector = numeric.create("outVector", "outVec", outVectorX, outVectorY, outVectorZ, &created);
            (void)(outGroup.done(created) && outGroup.done(numeric.setDefault(0.0, 1.0, 0.0)) &&
                   outGroup.done(addAttribute(outVector)));
        }

        auto outWGroup = group(status, vectorMessage);
        outW = numeric.create("outW", "outW", MFnNumericData::kDouble, 0.0, &created);
        (void)(outWGroup.done(created) && outWGroup.done(addAttribute(outW)));

        auto effects = group(status, "");
        for (const MObject& input : {inMatrix, inVector, mode})
            for (const MObject& output : {outVectorX, outVectorY, outVectorZ, outVector})
                effects.done(attributeAffects(input, output));
        effects.done(attributeAffects(mode, outW));
        return status;
    });
}

MStatus OrvoSkyShadingConversionNode::compute(const MPlug& plug, MDataBlock& block) {
    return guarded("OrvoSkyShadingConversionNode::compute", MStatus(MStatus::kFailure), [&]() -> MStatus {
        if (plug == outVector || plug == outVectorX || plug == outVectorY || plug == outVectorZ)
            return computeVector(block);
        if (plug == outW) return computeW(block);
        return MStatus::kUnknownParameter;
    });
}

MStatus OrvoSkyShadingConversionNode::computeVector(MDataBlock& block) const {
    const auto read = [&](const MObject& attribute, MStatus& status,
                          const SourcePlace& where = SourcePlace::current()) {
        const MDataHandle handle = block.inputValue(attribute, &status);
        if (status.error()) reportFailure(status, "could not get value", where);
        return handle;
    };
    MStatus status;
    const MDataHandle modeValue = read(mode, status);
    if (status.error()) return status;
    const MDataHandle matrixValue = read(inMatrix, status);
    if (status.error()) return status;
    const MDataHandle vectorValue = read(inVector, status);
    if (status.error()) return status;

    MVector result;
    if (modeValue.asShort() != kDirectional) {
        result = MTransformationMatrix(matrixValue.asMatrix()).getTranslation(MSpace::kWorld, &status);
        if (!succeeded(status)) return status;
    } else {
        const MVector given = vectorValue.asVector();
        const Vector3 local = brought({given.x, given.y, given.z});
        result = MVector(local.x, local.y, local.z);
        result.normalize();
        result = result.rotateBy(rotationOf(matrixValue.asMatrix()));
        result.normalize();
        result = -result;
    }
    MDataHandle out = block.outputValue(outVector, &status);
    if (!succeeded(status)) return status;
    out.set(result.x, result.y, result.z);
    out.setClean();
    return MStatus::kSuccess;
}

MStatus OrvoSkyShadingConversionNode::computeW(MDataBlock& block) const {
    MStatus status;
    const MDataHandle modeValue = block.inputValue(mode, &status);
    if (status.error()) {
        reportFailure(status, "could not get value");
        return status;
    }
    MDataHandle out = block.outputValue(outW, &status);
    if (!succeeded(status)) return status;
    out.set(modeValue.asShort() != kDirectional ? 1.0 : 0.0);
    out.setClean();
    return MStatus::kSuccess;
}

} // namespace orvo
