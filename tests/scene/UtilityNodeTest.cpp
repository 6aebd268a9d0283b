#include "kit/SceneFixture.h"

#include <gmock/gmock.h>

namespace {

/// What a node gives for its inputs, by the formula that stands in the documentation of its type.
struct Calculation {
    const char *type, *inputs, *output;
    std::vector<double> wanted;
    friend void PrintTo(const Calculation& c, std::ostream* out) { *out << c.type << ' ' << c.inputs; }
};

struct UtilityNodes : SceneFixture, testing::WithParamInterface<Calculation> {
    UtilityNodes() { host::mel::registerNodeStatementCommands(mel); }
};

} // namespace

TEST_P(UtilityNodes, Calculates) {
    const Calculation& c = GetParam();
    run(std::string("shadingNode -asUtility -n u ") + c.type + "; " + c.inputs);
    EXPECT_THAT(numbers(std::string("getAttr u.") + c.output), testing::Pointwise(testing::DoubleNear(1e-6), c.wanted));
}

INSTANTIATE_TEST_SUITE_P(
    Nodes, UtilityNodes,
    testing::Values(
        Calculation{"multiplyDivide", "setAttr u.i1 2 3 4; setAttr u.i2 5 6 8", "o", {10, 18, 32}},
        Calculation{"multiplyDivide", "setAttr u.op 2; setAttr u.i1 2 3 4; setAttr u.i2 4 6 8", "o", {0.5, 0.5, 0.5}},
        Calculation{"multiplyDivide", "setAttr u.op 3; setAttr u.i1 2 3 4; setAttr u.i2 3 2 0.5", "o", {8, 9, 2}},
        Calculation{"multiplyDivide", "setAttr u.op 0; setAttr u.i1 2 3 4; setAttr u.i2 3 2 1", "o", {2, 3, 4}},
        Calculation{"plusMinusAverage", "setAttr \"u.i1[0]\" 7; setAttr \"u.i1[3]\" 2", "o1", {9}},
        Calculation{
            "plusMinusAverage", "setAttr u.op 2; setAttr \"u.i2[0]\" 7 8; setAttr \"u.i2[5]\" 2 1", "o2", {5, 7}},
        Calculation{"plusMinusAverage",
                    "setAttr u.op 3; setAttr \"u.i3[0]\" 1 2 3; setAttr \"u.i3[1]\" 3 4 6",
                    "o3",
                    {2, 3, 4.5}},
        Calculation{"condition", "setAttr u.op 4; setAttr u.ft 1; setAttr u.st 2; setAttr u.ct 5 6 7", "oc", {5, 6, 7}},
        Calculation{"condition", "setAttr u.op 3; setAttr u.ft 1; setAttr u.st 2; setAttr u.cf 5 6 7", "oc", {5, 6, 7}},
        Calculation{"reverse", "setAttr u.i 0.25 1 -1", "o", {0.75, 0, 2}},
        Calculation{"setRange",
                    "setAttr u.v 5 -5 50; setAttr u.on 0 0 0; setAttr u.om 10 10 10; setAttr u.n 1 1 1;"
                    "setAttr u.m 3 3 3",
                    "o",
                    {2, 1, 3}},
        Calculation{"clamp", "setAttr u.ip 5 -5 0.5; setAttr u.mn 0 0 0; setAttr u.mx 1 1 1", "op", {1, 0, 0.5}},
        Calculation{"blendColors", "setAttr u.b 0.25; setAttr u.c1 4 0 0; setAttr u.c2 0 4 8", "op", {1, 3, 6}},
        Calculation{"remapValue", "setAttr u.imx 4; setAttr u.i 1; setAttr u.omn 10; setAttr u.omx 20", "ov", {12.5}},
        // Smooth between (0, 0) and (1, 8): 8 (3 t^2 - 2 t^3) at a quarter; the colour steps at a half.
        Calculation{
            "remapValue", "setAttr u.i 0.25; setAttr \"u.vl[1]\" 1 8 1; setAttr \"u.vl[0]\" 0 0 2", "ov", {1.25}},
        Calculation{"remapValue",
                    "setAttr u.i 0.75; setAttr \"u.cl[0].clp\" 0.5; setAttr \"u.cl[0].clc\" 1 2 3;"
                    "setAttr \"u.cl[0].cli\" 0; setAttr \"u.cl[1].clp\" 1",
                    "oc",
                    {1, 2, 3}},
        Calculation{"addDoubleLinear", "setAttr u.i1 2; setAttr u.i2 3", "o", {5}},
        Calculation{"multDoubleLinear", "setAttr u.i1 2; setAttr u.i2 3", "o", {6}},
        Calculation{"blendWeighted", "setAttr \"u.i[0]\" 2; setAttr \"u.i[1]\" 3; setAttr \"u.w[1]\" 0.5", "o", {3.5}},
        // In and out of a conversion numbers are as they are held: a quarter turn in radians, by its factor.
        Calculation{"unitConversion",
                    "group -em -n g; setAttr g.rx 90; setAttr u.cf 57.29577951308232;"
                    "connectAttr g.rx u.i; connectAttr u.o g.ty",
                    "o",
                    {90}},
        Calculation{"distanceBetween",
                    "setAttr u.p1 1 0 0; setAttr u.p2 4 4 0; group -em -n g; setAttr g.ty 4;"
                    "connectAttr g.worldMatrix u.im1",
                    "d",
                    {3}},
        // A turn about y, then one about x, then a move; in the order zyx.
        Calculation{"decomposeMatrix",
                    "group -em -n g; setAttr g.t 1 2 3; setAttr g.ro 5; setAttr g.r 20 30 0; setAttr g.s 1 2 3;"
                    "connectAttr g.worldMatrix u.imat; setAttr u.ro 5",
                    "or",
                    {20, 30, 0}},
        Calculation{"decomposeMatrix",
                    "group -em -n g; setAttr g.t 1 2 3; setAttr g.s 1 2 3; connectAttr g.worldMatrix u.imat",
                    "os",
                    {1, 2, 3}},
        Calculation{"decomposeMatrix",
                    "group -em -n g; setAttr g.r 90 0 0; connectAttr g.worldMatrix u.imat",
                    "oq",
                    {0.70710678, 0, 0, 0.70710678}},
        // Scaled first, moved then; the other way round the move would be scaled.
        Calculation{"multMatrix",
                    "group -em -n g; setAttr g.s 2 2 2; group -em -n h; setAttr h.tx 5;"
                    "connectAttr g.matrix \"u.i[0]\"; connectAttr h.matrix \"u.i[4]\"",
                    "o",
                    {2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 5, 0, 0, 1}}));
