#include "SkyChecks.h"

#include "Common/DdsImage.h"
#include "Common/FileSystem.h"
#include "Common/Messages.h"
#include "Common/Paths.h"
#include "SkyTool/skies/TexturedSkyLocator.h"

#include <cmath>
#include <maya/MFnDependencyNode.h>
#include <maya/MFnEnumAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnNumericData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MPlug.h>
#include <maya/MString.h>
#include <string>

namespace orvo {
namespace {

void checkFile(const MPlug& plug, bool isCubeMap) {
    MString text;
    if (plug.getValue(text).error() || text.length() == 0) return;
    const std::string path = absoluteCopy(text.asUTF8());
    if (!existingPath(path))
        reportWarning("%s names a file that is not there: %s", plug.name().asUTF8(), text.asUTF8());
    else if (isCubeMap && !nv_dds::CTexture::isBlockCubeMap(path))
        reportWarning("%s names a file that OpenGL cannot take, since it is no DDS cube map in DXT1, DXT3 or DXT5; a "
                      "checkerboard is shown in its place: %s",
                      plug.name().asUTF8(), text.asUTF8());
}

void checkEnumeration(const MPlug& plug, const MObject& attribute) {
    short value = 0;
    MStatus known;
    if (plug.getValue(value).error()) return;
    (void)MFnEnumAttribute(attribute).fieldName(value, &known);
    if (known.error()) reportWarning("%s is %d, which is none of its values", plug.name().asUTF8(), value);
}

void checkNumber(const MPlug& plug, MFnNumericData::Type type) {
    double value = 0;
    float single = 0;
    if (type == MFnNumericData::kDouble && plug.getValue(value).error()) return;
    if (type == MFnNumericData::kFloat) {
        if (plug.getValue(single).error()) return;
        value = single;
    }
    if (!std::isfinite(value)) reportWarning("%s is not a finite number", plug.name().asUTF8());
}

void check(const MPlug& plug, const MObject& node) {
    const MObject attribute = plug.attribute();
    if (plug.isArray()) return;
    if (plug.isCompound()) {
        for (unsigned i = 0; i < plug.numChildren(); ++i) check(plug.child(i), node);
    } else if (attribute.hasFn(MFn::kEnumAttribute)) {
        checkEnumeration(plug, attribute);
    } else if (attribute.hasFn(MFn::kNumericAttribute)) {
        checkNumber(plug, MFnNumericAttribute(attribute).unitType());
    } else if (attribute.hasFn(MFn::kTypedAttribute) && MFnTypedAttribute(attribute).isUsedAsFilename()) {
        checkFile(plug, MFnDependencyNode(node).typeId() == TexturedSkyLocator::id);
    }
}

} // namespace

void warnOfUnusableValues(const MObject& node) {
    MStatus status;
    const MFnDependencyNode dependencyNode(node, &status);
    if (!succeeded(status)) return;
    const unsigned count = dependencyNode.attributeCount();
    for (unsigned i = 0; i < count; ++i) {
        const MObject attribute = dependencyNode.attribute(i, &status);
        if (status.error()) continue;
        const MPlug plug(node, attribute);
        if (!plug.isChild()) check(plug, node);
    }
}

} // namespace orvo
