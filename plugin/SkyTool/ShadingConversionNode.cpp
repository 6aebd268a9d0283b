#include "ShadingConversionNode.h"

#include "../Common/Messages.h"

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

/// Reports the first failure among the steps of a group of attributes.
class AttributeGroup {
public:
    AttributeGroup(MStatus& status, const char* message, const SourcePlace& where)
        : status_(status), message_(message), where_(where) {}
    /// Takes a step's status; false when it failed.
    bool done(const MStatus& status) {
        status_ = status;
        if (status.error()) reportFailure(status, message_, where_);
        return !status.error();
    }

private:
    MStatus& status_;
    const char* message_;
    SourcePlace where_;
};

AttributeGroup group(MStatus& status, const char* message, const SourcePlace& where = SourcePlace::current()) {
    return {status, message, where};
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
        if (!matrixGroup.done(created) || !matrixGroup.done(addAttribute(inMatrix))) return status;

        auto vectorGroup = group(status, vectorMessage);
        MFnNumericAttribute numeric;
        inVector = numeric.create("inVector", "inVec", MFnNumericData::k3Double, 0.0, &created);
        if (!vectorGroup.done(created) || !vectorGroup.done(numeric.setDefault(0.0, 0.0, 0.0)) ||
            !vectorGroup.done(addAttribute(inVector)))
            return status;

        auto modeGroup = group(status, "Could not register m_sMode plug!");
        MFnEnumAttribute choice;
        mode = choice.create("mode", "mode", kDirectional, &created);
        if (!modeGroup.done(created) || !modeGroup.done(choice.addField("directional", kDirectional)) ||
            !modeGroup.done(choice.addField("position", kPosition)) || !modeGroup.done(choice.setStorable(false)) ||
            !modeGroup.done(addAttribute(mode)))
            return status;

        auto outGroup = group(status, "Could not register outvector plug!");
        const auto component = [&](MObject& attribute, const char* name, const char* brief) {
            attribute = numeric.create(name, brief, MFnNumericData::kDouble, 0.0, &created);
            return outGroup.done(created);
        };
        if (!component(outVectorX, "outVectorX", "outVecX") || !component(outVectorY, "outVectorY", "outVecY") ||
            !component(outVectorZ, "outVectorZ", "outVecZ"))
            return status;
        outVector = numeric.create("outVector", "outVec", outVectorX, outVectorY, outVectorZ, &created);
        if (!outGroup.done(created) || !outGroup.done(numeric.setDefault(0.0, 1.0, 0.0)) ||
            !outGroup.done(addAttribute(outVector)))
            return status;

        auto outWGroup = group(status, vectorMessage);
        outW = numeric.create("outW", "outW", MFnNumericData::kDouble, 0.0, &created);
        if (!outWGroup.done(created) || !outWGroup.done(addAttribute(outW))) return status;

        auto effects = group(status, "");
        for (const MObject& input : {inMatrix, inVector, mode})
            for (const MObject& output : {outVectorX, outVectorY, outVectorZ, outVector})
                if (!effects.done(attributeAffects(input, output))) return status;
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

    const MTransformationMatrix transform(matrixValue.asMatrix());
    MVector result;
    if (modeValue.asShort() != kDirectional) {
        result = transform.getTranslation(MSpace::kWorld, &status);
        if (!succeeded(status)) return status;
    } else {
        result = vectorValue.asVector();
        result.normalize();
        result = result.rotateBy(transform.rotation());
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
