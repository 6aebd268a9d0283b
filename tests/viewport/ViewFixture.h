#pragma once

#include "api/graph/Handle.h"
#include "api/plugins/PluginManager.h"
#include "base/Messages.h"
#include "kit/MessageSink.h"
#include "mesh/Primitives.h"
#include "scene/MeshNode.h"
#include "scene/Scene.h"
#include "viewport/Viewport.h"

#include <maya/MFnPlugin.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MString.h>
#include <maya/MTypeId.h>

#include <gmock/gmock.h>

#include <functional>
#include <map>
#include <numbers>
#include <string>
#include <vector>

inline constexpr double degree = std::numbers::pi / 180;

/// What a draw is told.
struct DrawCall {
    M3dView& view;
    const MDagPath& path;
    M3dView::DisplayStatus status;
};

/// A plug-in's locator whose draw is given by the test, by node name.
class TestLocator : public MPxLocatorNode {
public:
    void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle, M3dView::DisplayStatus status) override {
        drawn.push_back(name().asChar());
        if (const auto it = draws.find(drawn.back()); it != draws.end()) it->second({view, path, status});
    }
    bool drawLast() const override { return std::string(name().asChar()).starts_with("last"); }
    bool excludeAsLocator() const override { return !std::string(name().asChar()).starts_with("kept"); }
    static void* create() { return new TestLocator; }

    static inline std::map<std::string, std::function<void(DrawCall)>> draws;
    static inline std::vector<std::string> drawn;
};

/// An empty scene in which a plug-in's locator type is known, and everything that is said to the user.
class ViewFixture : public testing::Test {
protected:
    using Node = host::scene::DagNode;

    void SetUp() override {
        scene.reset();
        if (!scene.findType("testLocator")) {
            static host::api::Plugin plugin;
            plugin.name = "viewTest";
            MObject object = host::api::Access::object(std::make_shared<host::api::PluginHandle>(&plugin));
            ASSERT_TRUE(MFnPlugin(object).registerNode("testLocator", MTypeId(0x7f001), TestLocator::create, nullptr,
                                                       MPxNode::kLocatorNode));
        }
    }
    void TearDown() override {
        TestLocator::draws.clear();
        TestLocator::drawn.clear();
        view.reset();
        scene.reset();
    }

    void openView(int width, int height) {
        std::string error;
        view = host::viewport::Viewport::create(width, height, &error);
        if (!view) GTEST_SKIP() << error;
    }
    Node& make(const char* type, const std::string& name, Node* parent = nullptr) {
        return *scene.createNode(*scene.findType(type), name, parent)->dag();
    }
    void set(Node& node, const char* attribute, double value) { scene.setNumber(node.cell(attribute), value); }
    void set3(Node& node, const char* attribute, double x, double y, double z) {
        scene.setValue(node.cell(attribute), host::scene::Numeric(host::scene::NumericType::Double, 3, x, y, z));
    }
    /// A camera of one inch of film each way behind a lens of one inch: what it sees at a distance is as wide as that
    /// distance. It stands at (0, 0, 10) under a transform "eye", or shows a width of 10 when it is orthographic.
    Node& makeCamera(bool orthographic = false) {
        Node& eye = make("transform", "eye");
        set3(eye, "translate", 0, 0, 10);
        Node& camera = make("camera", "eyeShape", &eye);
        set(camera, "focalLength", 25.4);
        set(camera, "horizontalFilmAperture", 1);
        set(camera, "verticalFilmAperture", 1);
        set(camera, "orthographic", orthographic);
        return camera;
    }
    /// A locator that draws a point of one pixel.
    Node& makePoint(const std::string& name, double x, double y, double z, MColor colour, Node* parent = nullptr) {
        TestLocator::draws[name] = [=](DrawCall) {
            glColor4f(colour.r, colour.g, colour.b, 1);
            glBegin(GL_POINTS);
            glVertex3d(x, y, z);
            glEnd();
        };
        return make("testLocator", name, parent);
    }
    Node& makeMesh(const std::string& name, std::shared_ptr<const host::mesh::PolyMesh> mesh, Node* parent = nullptr) {
        Node& shape = make("mesh", name, parent);
        host::scene::setMesh(scene, shape, std::move(mesh));
        return shape;
    }
    void render() {
        std::string error;
        ASSERT_TRUE(view->render(&error)) << error;
    }
    /// Every pixel that is not black, as "x,y:r,g,b" with y counted from the top.
    std::vector<std::string> litPixels() {
        const auto picture = view->picture();
        std::vector<std::string> lit;
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x) {
                const auto* p = picture.at(x, y);
                if (p[0] || p[1] || p[2])
                    lit.push_back(std::to_string(x) + "," + std::to_string(y) + ":" + std::to_string(p[0]) + "," +
                                  std::to_string(p[1]) + "," + std::to_string(p[2]));
            }
        return lit;
    }

    host::scene::Scene& scene = host::scene::Scene::current();
    std::unique_ptr<host::viewport::Viewport> view;
    std::vector<std::string> errors, warnings;

private:
    orvo::test::MessageSink sink_{[this](host::Severity severity, std::string_view text) {
        (severity == host::Severity::Error ? errors : warnings).emplace_back(text);
    }};
};
