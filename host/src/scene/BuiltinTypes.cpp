#include "scene/AnimCurve.h"
#include "scene/DagBehavior.h"
#include "scene/Evaluation.h"
#include "scene/MeshFilter.h"
#include "scene/MeshNode.h"
#include "scene/TypeRegistrar.h"

namespace host::scene {
namespace {

using A = Attribute;
using N = NumericType;
constexpr auto angle = AttributeType::Angle;
constexpr auto distance = AttributeType::Distance;

constexpr auto dependency = NodeType::Kind::Dependency;
constexpr auto transformKind = NodeType::Kind::Transform;
constexpr auto shapeKind = NodeType::Kind::Shape;

std::vector<AttributePtr> dagAttributes() {
    auto groups =
        A::compound("objectGroups", "og",
                    {A::data("objectGrpCompList", "gcl", DataKind::ComponentList),
                     A::number("objectGroupId", "gid", N::Int), A::number("objectGrpColor", "gco", N::Short)});
    auto instances = A::compound("instObjGroups", "iog", {array(groups)});
    return {
        readOnly(A::matrix("matrix", "m")),
        readOnly(A::matrix("inverseMatrix", "im")),
        worldArray(A::matrix("worldMatrix", "wm")),
        worldArray(A::matrix("worldInverseMatrix", "wim")),
        worldArray(A::matrix("parentMatrix", "pm")),
        worldArray(A::matrix("parentInverseMatrix", "pim")),
        keyable(A::number("visibility", "v", N::Bool, 1)),
        A::number("intermediateObject", "io", N::Bool),
        A::number("template", "tmp", N::Bool),
        A::number("ghosting", "gh", N::Bool),
        array(instances),
        A::number("useObjectColor", "uoc", N::Short),
        A::number("objectColor", "oc", N::Short),
        A::compound("drawOverride", "do",
                    {A::enumeration("overrideDisplayType", "ovdt", 0, {"Normal", "Template", "Reference"}),
                     A::enumeration("overrideLevelOfDetail", "ovlod", 0, {"Full", "Bounding Box"}),
                     A::number("overrideShading", "ovs", N::Bool, 1), A::number("overrideTexturing", "ovt", N::Bool, 1),
                     A::number("overridePlayback", "ovp", N::Bool, 1), A::number("overrideEnabled", "ove", N::Bool),
                     A::number("overrideVisibility", "ovv", N::Bool, 1), A::number("overrideColor", "ovc", N::Byte)}),
        A::number("lodVisibility", "lodv", N::Bool, 1),
        A::data("renderLayerInfo", "rlio", DataKind::StringArray),
    };
}

std::vector<AttributePtr> transformAttributes() {
    auto flags = [](const char* longName, const char* shortName) {
        auto a = A::compound(longName, shortName, {});
        const std::string longStem(longName), shortStem(shortName);
        for (const char* axis : {"X", "Y", "Z"}) {
            // minTransLimitEnable (mtle) has the parts minTransXLimitEnable (mtxe), and so on.
            std::string part = longStem;
            part.insert(part.find("Limit"), axis);
            std::string brief = shortStem.substr(0, 2) + static_cast<char>(axis[0] - 'A' + 'a') + "e";
            a->addChild(A::number(part, brief, N::Bool));
        }
        return a;
    };
    // minTransLimit (mntl) has the parts minTransXLimit (mtxl), and so on.
    auto limits = [&](const char* word, const std::string& brief, double low, double high, AttributeType unit) {
        std::vector<AttributePtr> both;
        for (const bool isMin : {true, false}) {
            const std::string side = isMin ? "min" : "max";
            const std::string sideBrief = isMin ? "m" : "x";
            std::vector<AttributePtr> parts;
            for (const char* axis : {"X", "Y", "Z"}) {
                const std::string longPart = side + word + axis + "Limit";
                const std::string shortPart = sideBrief + brief + static_cast<char>(axis[0] - 'A' + 'a') + "l";
                parts.push_back(unit == AttributeType::Numeric
                                    ? A::number(longPart, shortPart, N::Double, isMin ? low : high)
                                    : A::unit(longPart, shortPart, unit, isMin ? low : high));
            }
            both.push_back(A::tupleOf(side + word + "Limit", (isMin ? "mn" : "mx") + brief + "l", std::move(parts)));
        }
        return both;
    };
    std::vector<AttributePtr> all{
        keyable(A::tuple("translate", "t", N::Double, 3, "XYZ", distance)),
        keyable(A::tuple("rotate", "r", N::Double, 3, "XYZ", angle)),
        A::enumeration("rotateOrder", "ro", 0, {"xyz", "yzx", "zxy", "xzy", "yxz", "zyx"}),
        keyable(A::tuple("scale", "s", N::Double, 3, "XYZ", AttributeType::Numeric, 1.0)),
        A::tupleOf("shear", "sh",
                   {A::number("shearXY", "shxy", N::Double), A::number("shearXZ", "shxz", N::Double),
                    A::number("shearYZ", "shyz", N::Double)}),
        A::tuple("rotatePivot", "rp", N::Double, 3, "XYZ", distance),
        A::tuple("rotatePivotTranslate", "rpt", N::Double, 3, "XYZ", distance),
        A::tuple("scalePivot", "sp", N::Double, 3, "XYZ", distance),
        A::tuple("scalePivotTranslate", "spt", N::Double, 3, "XYZ", distance),
        A::tuple("rotateAxis", "ra", N::Double, 3, "XYZ", angle),
        A::number("inheritsTransform", "it", N::Bool, 1),
        A::matrix("offsetParentMatrix", "opm"),
        readOnly(A::matrix("dagLocalMatrix", "dlm")),
        readOnly(A::matrix("dagLocalInverseMatrix", "dlim")),
        readOnly(A::matrix("xformMatrix", "xm")),
        A::number("displayHandle", "dh", N::Bool),
        A::number("displayScalePivot", "dsp", N::Bool),
        A::number("displayRotatePivot", "drp", N::Bool),
        A::number("displayLocalAxis", "dla", N::Bool),
        A::number("dynamics", "dn", N::Bool),
        A::tuple("selectHandle", "hdl", N::Double, 3, "XYZ", distance),
        A::enumeration("showManipDefault", "smd", 0,
                       {"none", "translate", "rotate", "scale", "transform", "global default"}),
        A::number("rotationInterpolation", "roi", N::Short, 1),
        flags("minTransLimitEnable", "mtle"),
        flags("maxTransLimitEnable", "xtle"),
        flags("minRotLimitEnable", "mrle"),
        flags("maxRotLimitEnable", "xrle"),
        flags("minScaleLimitEnable", "msle"),
        flags("maxScaleLimitEnable", "xsle"),
    };
    constexpr double quarterTurn = 0.78539816339744831;
    for (auto& a : limits("Trans", "t", -1, 1, distance)) all.push_back(a);
    for (auto& a : limits("Rot", "r", -quarterTurn, quarterTurn, angle)) all.push_back(a);
    for (auto& a : limits("Scale", "s", -1, 1, AttributeType::Numeric)) all.push_back(a);
    return all;
}

std::vector<AttributePtr> jointAttributes() {
    return {
        keyable(A::tuple("jointOrient", "jo", N::Double, 3, "XYZ", angle)),
        A::number("segmentScaleCompensate", "ssc", N::Bool, 1),
        A::tuple("inverseScale", "is", N::Double, 3, "XYZ", AttributeType::Numeric, 1.0),
        A::tuple("preferredAngle", "pa", N::Double, 3, "XYZ", angle),
        keyable(A::number("radius", "radi", N::Double, 1)),
        A::enumeration("drawStyle", "ds", 0, {"Bone", "Multi-child as Box", "None", "Joint"}),
        A::matrix("bindPose", "bps"),
    };
}

std::vector<AttributePtr> cameraAttributes() {
    constexpr double cmPerInch = 2.54;
    return {
        A::number("renderable", "rnd", N::Bool, 1),
        A::tupleOf("cameraAperture", "cap",
                   {keyable(limited(A::number("horizontalFilmAperture", "hfa", N::Double, 3.6 / cmPerInch), 0.0001)),
                    keyable(limited(A::number("verticalFilmAperture", "vfa", N::Double, 2.4 / cmPerInch), 0.0001))}),
        keyable(limited(A::number("focalLength", "fl", N::Double, 35.0), 2.5, 100000.0)),
        keyable(limited(A::number("lensSqueezeRatio", "lsr", N::Double, 1.0), 0.0001)),
        keyable(A::number("fStop", "fs", N::Double, 5.6)),
        keyable(A::unit("focusDistance", "fd", distance, 5.0)),
        keyable(A::unit("shutterAngle", "sa", angle, 2.5132741228718345)),
        keyable(A::unit("centerOfInterest", "coi", distance, 5.0)),
        A::tuple("tumblePivot", "tp", N::Double, 3, "XYZ", distance),
        keyable(limited(A::unit("nearClipPlane", "ncp", distance, 0.1), 0.00001)),
        keyable(limited(A::unit("farClipPlane", "fcp", distance, 10000.0), 0.00001)),
        A::enumeration("filmFit", "ff", 1, {"Fill", "Horizontal", "Vertical", "Overscan"}),
        A::number("filmFitOffset", "ffo", N::Double),
        A::tupleOf(
            "filmOffset", "fio",
            {A::number("horizontalFilmOffset", "hfo", N::Double), A::number("verticalFilmOffset", "vfo", N::Double)}),
        limited(A::number("overscan", "ovr", N::Double, 1.0), 0.0001),
        limited(A::number("preScale", "psc", N::Double, 1.0), 0.0001),
        limited(A::number("postScale", "ptsc", N::Double, 1.0), 0.0001),
        limited(A::number("cameraScale", "cs", N::Double, 1.0), 0.0001),
        A::number("orthographic", "o", N::Bool),
        limited(A::unit("orthographicWidth", "ow", distance, 10.0), 0.0001),
        A::number("depthOfField", "dof", N::Bool),
        A::number("motionBlur", "mb", N::Bool),
        A::number("displayFilmGate", "dfg", N::Bool),
        A::number("displayResolution", "dr", N::Bool),
        A::number("displayGateMask", "dgm", N::Bool),
        A::text("imageName", "imn"),
        A::text("depthName", "den"),
        A::text("maskName", "man"),
        A::text("homeCommand", "hc"),
        color("backgroundColor", "col", 0, 0, 0),
        A::number("image", "img", N::Bool, 1),
        A::number("depth", "dpt", N::Bool),
        A::number("mask", "msk", N::Bool, 1),
    };
}

std::vector<AttributePtr> setAttributes() {
    return {
        unordered(A::message("dagSetMembers", "dsm")),
        unordered(A::message("dnSetMembers", "dnsm")),
        A::number("memberWireframeColor", "mwc", N::Short),
        A::text("annotation", "an"),
        A::number("isLayer", "il", N::Bool),
        A::number("verticesOnlySet", "vo", N::Bool),
        A::number("edgesOnlySet", "eo", N::Bool),
        A::number("facetsOnlySet", "fo", N::Bool),
        A::number("renderableOnlySet", "ro", N::Bool),
        A::message("partition", "pa"),
        A::number("hiddenInOutliner", "hio", N::Bool),
        unordered(A::message("groupNodes", "gn")),
        unordered(A::message("usedBy", "ub")),
    };
}

std::vector<AttributePtr> lambertAttributes() {
    return {
        color("color", "c", 0.5, 0.5, 0.5),         color("transparency", "it", 0, 0, 0),
        color("ambientColor", "ambc", 0, 0, 0),     color("incandescence", "ic", 0, 0, 0),
        A::number("diffuse", "dc", N::Float, 0.8),  A::number("translucence", "tc", N::Float),
        readOnly(color("outColor", "oc", 0, 0, 0)), readOnly(color("outTransparency", "ot", 0, 0, 0)),
    };
}

void registerBase(Registrar& r) {
    auto message = A::message("message", "msg");
    message->writable = false;
    r.abstract("node", nullptr, dependency, MFn::kDependencyNode,
               {message, A::number("caching", "cch", N::Bool),
                A::number("isHistoricallyInteresting", "ihi", N::Byte, 2),
                A::enumeration("nodeState", "nds", 0, {"Normal", "HasNoEffect", "Blocking"}),
                array(A::text("binMembership", "bnm"))});
    r.type("unknown", "node", dependency, MFn::kUnknown, {});
    r.type("time", "node", dependency, MFn::kTime, {A::unit("outTime", "o", AttributeType::Time)}, makeTimeBehavior)
        .computed({"outTime"});
}

void registerDag(Registrar& r) {
    auto& dag = r.abstract("dagNode", "node", shapeKind, MFn::kDagNode, dagAttributes(), makeDagBehavior);
    dag.affects({"matrix"}, {"inverseMatrix", "worldMatrix", "worldInverseMatrix"});
    dag.affects({"parentMatrix"}, {"worldMatrix", "worldInverseMatrix", "parentInverseMatrix"});
    dag.computed({"matrix", "parentMatrix"});
    auto& t = r.type("transform", "dagNode", transformKind, MFn::kTransform, transformAttributes(), makeDagBehavior);
    t.affects({"translate", "rotate", "rotateOrder", "scale", "shear", "rotatePivot", "rotatePivotTranslate",
               "scalePivot", "scalePivotTranslate", "rotateAxis"},
              {"matrix", "inverseMatrix", "xformMatrix", "worldMatrix", "worldInverseMatrix"});
    t.affects({"inheritsTransform", "offsetParentMatrix"},
              {"parentMatrix", "parentInverseMatrix", "worldMatrix", "worldInverseMatrix"});
    t.affects({"matrix", "offsetParentMatrix"}, {"dagLocalMatrix", "dagLocalInverseMatrix"});
    auto& joint = r.type("joint", "transform", transformKind, MFn::kJoint, jointAttributes());
    joint.affects({"jointOrient", "segmentScaleCompensate", "inverseScale"},
                  {"matrix", "inverseMatrix", "xformMatrix", "worldMatrix", "worldInverseMatrix"});
    r.type("world", "dagNode", transformKind, MFn::kWorld, {}, makeDagBehavior).isAbstract = true;
    r.type("unknownDag", "dagNode", shapeKind, MFn::kUnknownDag, {}, makeDagBehavior);
    r.type("unknownTransform", "transform", transformKind, MFn::kUnknownTransform, {});
    r.abstract("shape", "dagNode", shapeKind, MFn::kShape, {});
    r.abstract("geometryShape", "shape", shapeKind, MFn::kGeometric,
               {A::number("castsShadows", "csh", N::Bool, 1), A::number("receiveShadows", "rcsh", N::Bool, 1),
                A::number("motionBlur", "mb", N::Bool, 1), A::number("primaryVisibility", "vis", N::Bool, 1),
                A::number("visibleInReflections", "vir", N::Bool), A::number("visibleInRefractions", "vif", N::Bool),
                A::number("doubleSided", "ds", N::Bool, 1), A::number("opposite", "op", N::Bool),
                A::number("smoothShading", "smo", N::Bool, 1)});
    r.type("locator", "geometryShape", shapeKind, MFn::kLocator,
           {A::tuple("localPosition", "lp", N::Double, 3, "XYZ", distance),
            worldArray(A::tuple("worldPosition", "wp", N::Double, 3, "XYZ", distance)),
            A::tuple("localScale", "los", N::Double, 3, "XYZ", AttributeType::Numeric, 1.0)})
        .affects({"localPosition", "worldMatrix"}, {"worldPosition"});
    r.type("camera", "shape", shapeKind, MFn::kCamera, cameraAttributes());
    r.abstract("light", "shape", shapeKind, MFn::kLight,
               {color("color", "cl", 1, 1, 1), A::number("intensity", "in", N::Float, 1),
                A::number("useRayTraceShadows", "urs", N::Bool, 1), A::number("emitDiffuse", "ed", N::Bool, 1),
                A::number("emitSpecular", "sn", N::Bool, 1), color("shadowColor", "sc", 0, 0, 0),
                A::number("shadowRays", "shr", N::Short, 1), A::number("rayDepthLimit", "rdl", N::Short, 1),
                A::unit("centerOfIllumination", "coi", distance, 5)});
    r.abstract("nonAmbientLightShapeNode", "light", shapeKind, MFn::kNonAmbientLight,
               {A::number("decayRate", "de", N::Short)});
    r.abstract("nonExtendedLightShapeNode", "nonAmbientLightShapeNode", shapeKind, MFn::kNonExtendedLight,
               {A::number("lightRadius", "lr", N::Float), A::number("castSoftShadows", "css", N::Bool),
                A::number("useDepthMapShadows", "dms", N::Bool), A::number("dmapFilterSize", "fs", N::Short, 1),
                A::number("dmapResolution", "dr", N::Short, 512), A::number("dmapBias", "db", N::Float, 0.001),
                A::number("useDmapAutoFocus", "af", N::Bool, 1), A::number("dmapWidthFocus", "wf", N::Float, 100),
                A::number("dmapFocus", "df", N::Float, 90)});
    r.type("directionalLight", "nonExtendedLightShapeNode", shapeKind, MFn::kDirectionalLight,
           {A::unit("lightAngle", "la", angle), A::number("useLightPosition", "ulp", N::Bool)});
    r.type("ambientLight", "light", shapeKind, MFn::kAmbientLight,
           {A::number("ambientShade", "as", N::Float, 0.45), A::number("castSoftShadows", "css", N::Bool),
            A::number("shadowRadius", "sr", N::Float)});
    r.type("pointLight", "nonExtendedLightShapeNode", shapeKind, MFn::kPointLight, {});
}

void registerShading(Registrar& r) {
    r.type("objectSet", "node", dependency, MFn::kSet, setAttributes());
    r.type("shadingEngine", "objectSet", dependency, MFn::kShadingEngine,
           {color("surfaceShader", "ss", 0, 0, 0), color("volumeShader", "vs", 0, 0, 0),
            A::tuple("displacementShader", "ds", N::Float, 3)});
    r.type("partition", "node", dependency, MFn::kPartition,
           {unordered(A::message("sets", "st")), A::number("partitionType", "pt", N::Short)});
    r.type("groupId", "node", dependency, MFn::kGroupId, {A::number("groupId", "id", N::Int)});
    r.type("materialInfo", "node", dependency, MFn::kMaterialInfo,
           {A::message("shadingGroup", "sg"), A::message("material", "m"), unordered(A::message("texture", "t"))});
    r.type("lambert", "node", dependency, MFn::kLambert, lambertAttributes());
    r.type("renderGlobals", "node", dependency, MFn::kRenderGlobals,
           {A::unit("startFrame", "fs", AttributeType::Time, 250), A::unit("endFrame", "ef", AttributeType::Time, 2500),
            A::unit("byFrame", "be", AttributeType::Time, 250), A::number("animation", "an", N::Bool),
            A::text("imageFilePrefix", "ifp"), A::number("imageFormat", "imf", N::Int, 7)});
    r.type("resolution", "node", dependency, MFn::kResolution,
           {A::number("width", "w", N::Int, 640), A::number("height", "h", N::Int, 480),
            A::number("pixelAspect", "pa", N::Float, 1), A::number("deviceAspectRatio", "dar", N::Float, 1.333),
            A::number("aspectLock", "al", N::Bool, 1), A::number("lockDeviceAspectRatio", "ldar", N::Bool)});
    r.type("reference", "node", dependency, MFn::kReference, {array(A::text("fileNames", "fn"))});
    r.type("script", "node", dependency, MFn::kScript,
           {A::text("before", "b"), A::text("after", "a"), A::number("scriptType", "st", N::Short),
            A::number("sourceType", "stp", N::Short), A::number("ignoreReferenceEdits", "ire", N::Bool)});
    auto program = A::text("internalExpression", "ixp");
    program->internal = true;
    r.type("expression", "node", dependency, MFn::kExpression,
           {A::text("expression", "e"), std::move(program), A::message("object", "obm"),
            array(A::number("input", "in", N::Double)), array(A::number("output", "out", N::Double)),
            A::unit("time", "tim", AttributeType::Time), A::number("frame", "f", N::Double),
            A::number("animated", "ani", N::Int, 1), A::number("unitOption", "uo", N::Short)})
        .affects({"input", "internalExpression", "time", "frame"}, {"output"});
}

void registerAnimation(Registrar& r) {
    // The lists of keys live in the curve itself; these attributes show them.
    const auto keys = [](AttributePtr a) {
        a->internal = true;
        for (auto& c : a->children) c->internal = true;
        return array(std::move(a));
    };
    const auto curve = [&](const char* name, AttributePtr value, AttributePtr output, MFn::Type apiType) {
        const bool overTime = std::string_view(name).starts_with("animCurveT");
        const auto axis = [&](const char* longName, const char* shortName) {
            return overTime ? A::unit(longName, shortName, AttributeType::Time)
                            : A::number(longName, shortName, N::Double);
        };
        auto list = keys(A::compound("keyTimeValue", "ktv", {axis("keyTime", "kt"), std::move(value)}));
        auto& t = r.type(name, "animCurve", dependency, apiType,
                         {axis("input", "i"), std::move(list), readOnly(std::move(output))}, makeAnimCurve);
        t.affects({"input", "keyTimeValue", "keyTanInType", "keyTanOutType", "keyTanInX", "keyTanInY", "keyTanOutX",
                   "keyTanOutY", "preInfinity", "postInfinity", "tangentType", "weightedTangents"},
                  {"output"});
    };
    const std::vector<std::string> tangents{"fixed", "", "linear",  "flat",     "",    "step", "",
                                            "",      "", "spline",  "clamped",  "",    "",     "",
                                            "",      "", "plateau", "stepnext", "auto"};
    const std::vector<std::string> infinity{"constant", "linear", "", "cycle", "cycleRelative", "oscillate"};
    r.abstract("animCurve", "node", dependency, MFn::kAnimCurve,
               {A::enumeration("tangentType", "tan", 0, tangents), A::number("weightedTangents", "wgt", N::Bool, 1),
                keys(A::enumeration("keyTanInType", "kit", 0, tangents)),
                keys(A::enumeration("keyTanOutType", "kot", 0, tangents)),
                keys(A::number("keyTanLocked", "ktl", N::Bool, 1)),
                keys(A::number("keyWeightLocked", "kwl", N::Bool, 1)), keys(A::number("keyTanInX", "kix", N::Float, 1)),
                keys(A::number("keyTanInY", "kiy", N::Float)), keys(A::number("keyTanOutX", "kox", N::Float, 1)),
                keys(A::number("keyTanOutY", "koy", N::Float)), keys(A::number("keyBreakdown", "kbd", N::Bool)),
                A::enumeration("preInfinity", "pre", 0, infinity), A::enumeration("postInfinity", "pst", 0, infinity)});
    curve("animCurveTL", A::unit("keyValue", "kv", distance), A::unit("output", "o", distance),
          MFn::kAnimCurveTimeToDistance);
    curve("animCurveTA", A::unit("keyValue", "kv", angle), A::unit("output", "o", angle), MFn::kAnimCurveTimeToAngular);
    curve("animCurveTU", A::number("keyValue", "kv", N::Double), A::number("output", "o", N::Double),
          MFn::kAnimCurveTimeToUnitless);
    curve("animCurveTT", A::unit("keyValue", "kv", AttributeType::Time), A::unit("output", "o", AttributeType::Time),
          MFn::kAnimCurveTimeToTime);
    curve("animCurveUL", A::unit("keyValue", "kv", distance), A::unit("output", "o", distance),
          MFn::kAnimCurveUnitlessToDistance);
    curve("animCurveUA", A::unit("keyValue", "kv", angle), A::unit("output", "o", angle),
          MFn::kAnimCurveUnitlessToAngular);
    curve("animCurveUU", A::number("keyValue", "kv", N::Double), A::number("output", "o", N::Double),
          MFn::kAnimCurveUnitlessToUnitless);
    curve("animCurveUT", A::unit("keyValue", "kv", AttributeType::Time), A::unit("output", "o", AttributeType::Time),
          MFn::kAnimCurveUnitlessToTime);
}

void registerMeshes(Registrar& r) {
    const auto mesh = [](const char* longName, const char* shortName) {
        return A::data(longName, shortName, DataKind::Mesh);
    };
    auto uvSets = array(A::compound(
        "uvSet", "uvst", {A::text("uvSetName", "uvsn"), array(A::tuple("uvSetPoints", "uvsp", N::Float, 2, "UV"))}));
    // The lists of a mesh live in the mesh itself; these attributes only give them their names in scene files.
    auto& t = r.type("mesh", "geometryShape", shapeKind, MFn::kMesh,
                     {mesh("inMesh", "i"), readOnly(mesh("outMesh", "o")), worldArray(mesh("worldMesh", "w")),
                      array(A::tuple("pnts", "pt", N::Float, 3, "xyz")),
                      array(A::tuple("vrts", "vt", N::Float, 3, "xyz")), array(A::tuple("edge", "ed", N::Int, 3)),
                      array(A::message("face", "fc")), uvSets, A::text("currentUVSet", "cuvs"),
                      array(A::tuple("normals", "n", N::Float, 3, "xyz")), A::number("displayColors", "dcol", N::Bool),
                      A::text("displayColorChannel", "dcc"), A::number("vertexColorSource", "vcs", N::Short),
                      A::enumeration("displaySmoothMesh", "dsm", 0, {"off", "cage + smooth mesh", "smooth mesh"})},
                     makeMeshBehavior);
    t.affects({"inMesh", "pnts"}, {"outMesh", "worldMesh"});
    t.affects({"worldMatrix"}, {"worldMesh"});

    const auto axis = [] {
        auto a = A::tuple("axis", "ax", N::Double, 3);
        a->children[1]->defaultValue = Numeric(N::Double, 1, 1);
        a->defaultValue = Numeric(N::Double, 3, 0, 1, 0);
        return a;
    };
    r.abstract("polyCreator", "node", dependency, MFn::kPolyCreator,
               {readOnly(mesh("output", "out")), axis(), A::number("createUVs", "cuv", N::Short, 1)}, makePolyCreator);
    const auto size = [](const char* longName, const char* shortName, double v) {
        return keyable(limited(A::unit(longName, shortName, distance, v), 0.0));
    };
    const auto count = [](const char* longName, const char* shortName, int v, int least) {
        return keyable(limited(A::number(longName, shortName, N::Int, v), least));
    };
    const auto creator = [&](const char* name, MFn::Type apiType, std::vector<AttributePtr> attributes) {
        std::vector<const Attribute*> inputs;
        for (auto& a : attributes) inputs.push_back(a.get());
        auto& c = r.type(name, "polyCreator", dependency, apiType, std::move(attributes));
        for (const Attribute* a : inputs) c.affects(*a, *c.find("output"));
        c.affects({"axis", "createUVs"}, {"output"});
    };
    creator("polyPlane", MFn::kPolyMesh,
            {size("width", "w", 1), size("height", "h", 1), count("subdivisionsWidth", "sw", 10, 1),
             count("subdivisionsHeight", "sh", 10, 1)});
    creator("polyCube", MFn::kPolyCube,
            {size("width", "w", 1), size("height", "h", 1), size("depth", "d", 1),
             count("subdivisionsWidth", "sw", 1, 1), count("subdivisionsHeight", "sh", 1, 1),
             count("subdivisionsDepth", "sd", 1, 1)});
    creator("polySphere", MFn::kPolySphere,
            {size("radius", "r", 1), count("subdivisionsAxis", "sa", 20, 3), count("subdivisionsHeight", "sh", 20, 3)});
    creator("polyCylinder", MFn::kPolyCylinder,
            {size("radius", "r", 1), size("height", "h", 2), count("subdivisionsAxis", "sa", 20, 3),
             count("subdivisionsHeight", "sh", 1, 1), count("subdivisionsCaps", "sc", 0, 0),
             A::number("roundCap", "rcp", N::Bool)});
}

/// The nodes of a mesh's history that keep its faces.
void registerMeshFilters(Registrar& r) {
    const auto mesh = [](const char* longName, const char* shortName) {
        return A::data(longName, shortName, DataKind::Mesh);
    };
    const auto components = [](const char* shortName) {
        return A::data("inputComponents", shortName, DataKind::ComponentList);
    };
    r.type("groupParts", "node", dependency, MFn::kGroupParts,
           {mesh("inputGeometry", "ig"), readOnly(mesh("outputGeometry", "og")), components("ic"),
            A::number("groupId", "gi", N::Int)},
           makeMeshFilter)
        .affects({"inputGeometry"}, {"outputGeometry"});
    r.abstract("polyModifier", "node", dependency, MFn::kDependencyNode,
               {mesh("inputPolymesh", "ip"), readOnly(mesh("output", "out")), components("ics")}, makeMeshFilter)
        .affects({"inputPolymesh", "inputComponents"}, {"output"});
    const auto modifier = [&](const char* name, MFn::Type apiType, std::vector<AttributePtr> attributes) {
        std::vector<const Attribute*> inputs;
        for (auto& a : attributes) inputs.push_back(a.get());
        auto& t = r.type(name, "polyModifier", dependency, apiType, std::move(attributes));
        for (const Attribute* a : inputs) t.affects(*a, *t.find("output"));
    };
    modifier("polyTweak", MFn::kPolyTweak, {array(A::tuple("tweak", "tk", N::Float, 3))});
    modifier("polyTweakUV", MFn::kPolyTweakUV,
             {array(A::tuple("uvTweak", "uvtk", N::Float, 2, "UV")), A::text("uvSetName", "uvs")});
    constexpr double thirtyDegrees = 0.52359877559829887;
    modifier("polySoftEdge", MFn::kPolySoftEdge, {keyable(A::unit("angle", "a", angle, thirtyDegrees))});
    modifier("polyColorPerVertex", MFn::kPolyColorPerVertex, {});
    auto input = array(A::compound("input", "ip", {mesh("inputGeometry", "ig"), A::number("groupId", "gi", N::Int)}));
    auto offsets = array(A::compound("vlist", "vl", {array(A::tuple("vertex", "vt", N::Float, 3))}));
    auto output = array(mesh("outputGeometry", "og"));
    output->writable = output->storable = false;
    r.type("tweak", "node", dependency, MFn::kTweak, {input, offsets, output}, makeMeshFilter)
        .affects({"input", "inputGeometry", "vlist", "vertex"}, {"outputGeometry"});
}

} // namespace

void registerBuiltinTypes(Scene& scene) {
    Registrar r(scene);
    registerBase(r);
    registerDag(r);
    registerShading(r);
    registerAnimation(r);
    registerMeshes(r);
    registerMeshFilters(r);
    registerUtilityTypes(r);
    registerConstraintTypes(r);
}

} // namespace host::scene
