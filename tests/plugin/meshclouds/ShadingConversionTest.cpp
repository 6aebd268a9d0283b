// The shading conversion node against plain arithmetic on its matrix.
#include "PluginScene.h"

#include <gmock/gmock.h>

#include <array>
#include <cmath>

using testing::ElementsAre;

namespace {

using Triple = std::array<double, 3>;
/// The three rows of a matrix for row vectors.
using Rows = std::array<Triple, 3>;

Rows product(const Rows& a, const Rows& b) {
    Rows c{};
    for (int i = 0; i < 3; ++i)
        for (int j = 0; j < 3; ++j)
            for (int k = 0; k < 3; ++k) c[i][j] += a[i][k] * b[k][j];
    return c;
}

/// A turn about one of the axes, as row vectors are turned.
Rows turn(int axis, double degrees) {
    const double c = std::cos(degrees * M_PI / 180), s = std::sin(degrees * M_PI / 180);
    const int a = (axis + 1) % 3, b = (axis + 2) % 3;
    Rows rows{};
    rows[axis][axis] = 1;
    rows[a][a] = rows[b][b] = c;
    rows[a][b] = s;
    rows[b][a] = -s;
    return rows;
}

std::string numbers(const Triple& t) {
    std::ostringstream text;
    text.precision(17);
    text << t[0] << ' ' << t[1] << ' ' << t[2];
    return text.str();
}

class ShadingConversion : public PluginScene {
protected:
    ShadingConversion() { must("createNode orvosky_ShadingConversionNode -n \"n\""); }
    void setMatrix(const Rows& m, const Triple& translation) {
        must("setAttr \"n.inMatrix\" -type \"matrix\" " + numbers(m[0]) + " 0 " + numbers(m[1]) + " 0 " +
             numbers(m[2]) + " 0 " + numbers(translation) + " 1");
    }
    void setVector(const Triple& v) { must("setAttr \"n.inVector\" -type \"double3\" " + numbers(v)); }
    Triple output() {
        must("getAttr \"n.outVector\"");
        const auto v = result_.toFloatArray();
        return {v.at(0), v.at(1), v.at(2)};
    }
    double number(const std::string& plug) {
        must("getAttr \"" + plug + "\"");
        return result_.toFloat();
    }
    void expectOutput(const Triple& expected, const std::string& what) {
        const Triple found = output();
        for (int i = 0; i < 3; ++i) EXPECT_NEAR(found[i], expected[i], 1e-12) << what << ", component " << i;
    }
};

} // namespace

// Catches columns for rows, the direction along instead of against, scale and shear that bend the direction.
TEST_F(ShadingConversion, TurnsTheDirectionByTheRotationAlone) {
    setVector({0, -1, 0});
    expectOutput({0, 1, 0}, "identity");
    const Rows scales[] = {{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}},
                           {{{7, 0, 0}, {0, 7, 0}, {0, 0, 7}}},
                           {{{0.1, 0, 0}, {0, 3, 0}, {0, 0, 20}}},
                           {{{2, 0, 0}, {0.6, 3, 0}, {-1.5, 0.25, 4}}}}; // with shears xy, xz and yz
    const Triple angles[] = {{0, 0, 0}, {30, 0, 0}, {0, -75, 0}, {0, 0, 140}, {20, 50, -110}, {-170, 10, 95}};
    for (const Triple& a : angles) {
        const Rows rotation = product(product(turn(0, a[0]), turn(1, a[1])), turn(2, a[2]));
        for (const Triple& v : {Triple{0, -1, 0}, Triple{3, 4, -12}}) {
            const double size = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
            Triple expected{};
            for (int i = 0; i < 3; ++i)
                for (int k = 0; k < 3; ++k) expected[i] -= v[k] / size * rotation[k][i];
            setVector(v);
            for (std::size_t s = 0; s < std::size(scales); ++s) {
                setMatrix(product(scales[s], rotation), {5, 6, 7});
                expectOutput(expected, numbers(a) + " scale " + std::to_string(s));
            }
        }
    }
    EXPECT_EQ(number("n.outW"), 0.0);
    EXPECT_THAT(log_.errors(), ElementsAre());
}

// Catches a direction that is lost where squares overflow or vanish, and one that a collapsed axis turns away: what the
// scale has left must decide, and where nothing is left to decide with there is no rotation.
TEST_F(ShadingConversion, KeepsTheDirectionUnderExtremeScales) {
    for (const double size : {1e-200, 1e200, 4e-320}) {
        setMatrix({{{size, 0, 0}, {0, 0, size}, {0, -size, 0}}}, {0, 0, 0}); // 90 degrees about x: y goes to z
        setVector({0, 3 * size, 4 * size});
        expectOutput({0, 0.8, -0.6}, std::to_string(size));
    }
    const Rows rotation = product(product(turn(0, 20), turn(1, 50)), turn(2, -110));
    for (int axis = 0; axis < 3; ++axis) {
        for (int lost = 0; lost < 3; ++lost) {
            Rows scaled = rotation;
            scaled[lost] = {0, 0, 0};
            setMatrix(scaled, {0, 0, 0});
            Triple along{}, expected{};
            along[axis] = -7;
            setVector(along);
            for (int i = 0; i < 3; ++i) expected[i] = rotation[axis][i];
            expectOutput(expected, "axis " + std::to_string(axis) + " without " + std::to_string(lost));
        }
        Rows alone{};
        alone[axis] = rotation[axis];
        setMatrix(alone, {0, 0, 0});
        expectOutput(rotation[axis], "one axis");
        alone[axis] = {};
        alone[axis][axis] = 2; // no rotation, whatever the other two scales are
        setMatrix(alone, {0, 0, 0});
        setVector({1, 2, -2});
        expectOutput({-1.0 / 3, -2.0 / 3, 2.0 / 3}, "an axis in its place");
    }
    setMatrix({{{1, 1, 0}, {-2, -2, 0}, {0, 0, 1}}}, {0, 0, 0}); // a shear that leaves y along x
    setVector({0, 1, 0});
    expectOutput({std::sqrt(0.5), -std::sqrt(0.5), 0}, "sheared flat");
    setMatrix({}, {0, 0, 0});
    expectOutput({0, -1, 0}, "no axis");
}

TEST_F(ShadingConversion, AnswersThePositionInItsMode) {
    setMatrix(product(turn(0, 40), turn(2, 10)), {1, 2, 3});
    setVector({9, 9, 9});
    must("setAttr \"n.mode\" 1");
    expectOutput({1, 2, 3}, "position");
    EXPECT_EQ(number("n.outW"), 1.0);
    must("getAttr -asString \"n.mode\"");
    EXPECT_EQ(result_.toString(), "position");
    must("setAttr \"n.mode\" 0"); // a change of the mode reaches all outputs
    EXPECT_EQ(number("n.outW"), 0.0);
    EXPECT_NE(output(), (Triple{1, 2, 3}));
}

// Catches a child that is not computed when it alone is asked for, and inputs that do not reach the outputs.
TEST_F(ShadingConversion, FollowsATransform) {
    must("createNode transform -n \"lamp\"; connectAttr \"lamp.worldMatrix[0]\" \"n.inMatrix\";"
         "setAttr \"n.inVector\" 0 0 -1");
    EXPECT_NEAR(number("n.outVectorZ"), 1, 1e-12);
    must("setAttr \"lamp.r\" 0 90 0");
    EXPECT_NEAR(number("n.outVectorX"), 1, 1e-12);
    must("setAttr \"n.inVector\" 0 1 0");
    EXPECT_NEAR(number("n.outVectorY"), -1, 1e-12);
    must("connectAttr \"n.outVectorY\" \"lamp.visibility\" -f; setAttr \"n.inVector\" 0 -1 0; setAttr \"n.mode\" 0");
    EXPECT_NEAR(number("n.outVecY"), 1, 1e-12);
}

// Catches renamed plugs, defaults that changed, and a mode that is stored.
TEST_F(ShadingConversion, HasTheDocumentedPlugs) {
    for (const char* name : {"inMtx", "inVec", "mode", "outVecX", "outVecY", "outVecZ", "outVec", "outW"}) {
        must(std::string("attributeQuery -n \"n\" -ex \"") + name + "\"");
        EXPECT_EQ(result_.toInt(), 1) << name;
    }
    must("attributeQuery -n \"n\" -ld \"outVector\"");
    EXPECT_THAT(result_.toFloatArray(), ElementsAre(0, 1, 0));
    must("attributeQuery -n \"n\" -st \"mode\"");
    EXPECT_EQ(result_.toInt(), 0);
}
