// A node that lays a ribbon of points into the wind. It takes angles, lengths and times, a number or a text for its
// strength, and remembers by messages what follows it; its points come as point and vector data and, one by one, as
// the elements of an array that it builds itself.
#include <maya/MArrayDataBuilder.h>
#include <maya/MFnCompoundAttribute.h>
#include <maya/MFnDoubleArrayData.h>
#include <maya/MFnGenericAttribute.h>
#include <maya/MFnIntArrayData.h>
#include <maya/MFnMessageAttribute.h>
#include <maya/MFnNumericAttribute.h>
#include <maya/MFnPlugin.h>
#include <maya/MFnPointArrayData.h>
#include <maya/MFnStringArrayData.h>
#include <maya/MFnTypedAttribute.h>
#include <maya/MFnUnitAttribute.h>
#include <maya/MFnVectorArrayData.h>
#include <maya/MPxNode.h>

#include <math.h>

class windRibbon : public MPxNode {
public:
    virtual MStatus compute(const MPlug& plug, MDataBlock& data);
    static void* creator() { return new windRibbon; }
    static MStatus initialize();

    static MTypeId id;
    static MObject heading, step, start, now, strength, followers, names, count, points, steps, place, placeX, placeY,
        order;
};

MTypeId windRibbon::id(0x80302);
MObject windRibbon::heading, windRibbon::step, windRibbon::start, windRibbon::now, windRibbon::strength,
    windRibbon::followers, windRibbon::names, windRibbon::count, windRibbon::points, windRibbon::steps,
    windRibbon::place, windRibbon::placeX, windRibbon::placeY, windRibbon::order;

MStatus windRibbon::initialize() {
    MStatus stat;
    MFnUnitAttribute uAttr;
    MFnNumericAttribute nAttr;
    MFnTypedAttribute tAttr;
    MFnGenericAttribute gAttr;
    MFnMessageAttribute mAttr;
    MFnCompoundAttribute cAttr;

    heading = uAttr.create("heading", "hd", MFnUnitAttribute::kAngle, 0.0, &stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    uAttr.setMin(MAngle(-180, MAngle::kDegrees));
    uAttr.setMax(MAngle(180, MAngle::kDegrees));
    step = uAttr.create("step", "st", MDistance(1, MDistance::kMeters));
    start = uAttr.create("start", "sta", MTime(1.0, MTime::kFilm));
    now = uAttr.create("now", "nw", MFnUnitAttribute::kTime, 0.0);
    strength = gAttr.create("strength", "str", &stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    gAttr.addNumericDataAccept(MFnNumericData::kDouble);
    gAttr.addDataAccept(MFnData::kString);
    followers = mAttr.create("followers", "fo");
    mAttr.setArray(true);
    mAttr.setIndexMatters(false);
    names = tAttr.create("names", "nm", MFnData::kStringArray);
    count = nAttr.create("count", "ct", MFnNumericData::kInt, 3);

    points = tAttr.create("points", "pts", MFnData::kPointArray);
    tAttr.setWritable(false);
    tAttr.setStorable(false);
    steps = tAttr.create("steps", "stp", MFnData::kVectorArray);
    tAttr.setWritable(false);
    tAttr.setStorable(false);
    order = tAttr.create("order", "od", MFnData::kIntArray);
    tAttr.setWritable(false);
    tAttr.setStorable(false);
    placeX = uAttr.create("placeX", "plx", MFnUnitAttribute::kDistance);
    placeY = uAttr.create("placeY", "ply", MFnUnitAttribute::kDistance);
    place = cAttr.create("place", "pl");
    cAttr.addChild(placeX);
    cAttr.addChild(placeY);
    cAttr.setArray(true);
    cAttr.setUsesArrayDataBuilder(true);
    cAttr.setWritable(false);
    cAttr.setStorable(false);

    MObject inputs[] = {heading, step, start, now, strength, names, count};
    MObject outputs[] = {points, steps, order, place};
    addAttribute(followers);
    for (const MObject& in : inputs) CHECK_MSTATUS_AND_RETURN_IT(addAttribute(in));
    for (const MObject& out : outputs) CHECK_MSTATUS_AND_RETURN_IT(addAttribute(out));
    for (const MObject& in : inputs)
        for (const MObject& out : outputs) attributeAffects(in, out);
    return MS::kSuccess;
}

MStatus windRibbon::compute(const MPlug& plug, MDataBlock& data) {
    MStatus stat;
    if (plug != points && plug != steps && plug != order && plug != place && plug != placeX && plug != placeY)
        return MS::kUnknownParameter;

    double angle = data.inputValue(heading).asAngle().asRadians();
    double length = data.inputValue(step).asDistance().asCentimeters();
    double frames = (data.inputValue(now).asTime() - data.inputValue(start).asTime()).as(MTime::kFilm);
    int n = data.inputValue(count).asInt();

    double force = 1;
    MDataHandle strengthHandle = data.inputValue(strength);
    bool isNumber = false, isNull = true;
    if (strengthHandle.isGeneric(isNumber, isNull) && !isNull)
        force = isNumber ? strengthHandle.asGenericDouble() : strengthHandle.asString() == "storm" ? 10 : 0.5;

    MPointArray where;
    MVectorArray by;
    MIntArray numbers;
    MVector direction(cos(angle), sin(angle), 0);
    for (int i = 0; i < n; i++) {
        where.append(MPoint(direction * (length * force * i) + MVector(0, 0, frames)));
        by.append(direction * force);
        numbers.append(n - i);
    }
    MFnPointArrayData pointFn;
    data.outputValue(points).set(pointFn.create(where));
    MFnVectorArrayData vectorFn;
    data.outputValue(steps).set(vectorFn.create(by));
    MFnIntArrayData intFn;
    data.outputValue(order).set(intFn.create(numbers));

    MArrayDataHandle places = data.outputArrayValue(place, &stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    MArrayDataBuilder builder = places.builder(&stat);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    for (unsigned i = builder.elementCount(); i > (unsigned)n; i--) builder.removeElement(i - 1);
    for (int i = 0; i < n; i++) {
        MDataHandle element = builder.addElement(i, &stat);
        CHECK_MSTATUS_AND_RETURN_IT(stat);
        element.child(placeX).setMDistance(MDistance(where[i].x));
        element.child(placeY).setMDistance(MDistance(where[i].y));
    }
    stat = places.set(builder);
    CHECK_MSTATUS_AND_RETURN_IT(stat);
    places.setAllClean();
    data.setClean(plug);
    return MS::kSuccess;
}

MStatus initializePlugin(MObject obj) {
    MFnPlugin plugin(obj, "Somebody Else", "1.0", "Any");
    return plugin.registerNode("windRibbon", windRibbon::id, windRibbon::creator, windRibbon::initialize);
}

MStatus uninitializePlugin(MObject obj) {
    MFnPlugin plugin(obj);
    return plugin.deregisterNode(windRibbon::id);
}
