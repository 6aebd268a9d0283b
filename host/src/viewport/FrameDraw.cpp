#define GL_GLEXT_PROTOTYPES
#include "viewport/FrameDraw.h"

#include "base/Messages.h"
#include "mesh/PolyMesh.h"
#include "scene/MeshNode.h"
#include "scene/Scene.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>
#include <exception>

namespace host::viewport {
namespace {

/// The look of the material that every mesh has to start with: a grey of 0.5 that gives 0.8 of the light back.
constexpr float meshGrey = 0.5f * 0.8f;

void setMaterial() {
    const float black[] = {0, 0, 0, 1}, grey[] = {meshGrey, meshGrey, meshGrey, 1};
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, grey);
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, grey);
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, black);
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, black);
}

void drawShaded(const mesh::PolyMesh& mesh) {
    std::vector<mesh::Float3> points, normals;
    points.reserve(static_cast<std::size_t>(mesh.numTriangles()) * 3);
    normals.reserve(points.capacity());
    const auto connects = mesh.connects();
    const auto cornerNormals = mesh.faceVertexNormals();
    for (const auto& triangle : mesh.triangles()) {
        for (const int corner : triangle) {
            const auto c = static_cast<std::size_t>(corner);
            points.push_back(mesh.point(connects[c]));
            normals.push_back(cornerNormals[c]);
        }
    }
    if (points.empty()) return;
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glVertexPointer(3, GL_FLOAT, sizeof(mesh::Float3), points.data());
    glNormalPointer(GL_FLOAT, sizeof(mesh::Float3), normals.data());
    glDrawArrays(GL_TRIANGLES, 0, static_cast<GLsizei>(points.size()));
}

void drawWireframe(const mesh::PolyMesh& mesh) {
    glColor3f(Viewport::templateGrey, Viewport::templateGrey, Viewport::templateGrey);
    glBegin(GL_LINES);
    for (const auto& edge : mesh.edges()) {
        for (const int vertex : {edge.v1, edge.v2}) {
            const auto& p = mesh.point(vertex);
            glVertex3f(p.x, p.y, p.z);
        }
    }
    glEnd();
}

} // namespace

void FrameDraw::clear(const std::array<float, 4>& colour) {
    glClearColor(colour[0], colour[1], colour[2], colour[3]);
    glClearDepth(1);
    glClearStencil(0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
}

std::vector<FrameDraw::Item> FrameDraw::visibleShapes() const {
    struct Open {
        scene::DagNode* node;
        bool templated;
    };
    std::vector<Item> shapes;
    std::vector<Open> open;
    const auto openChildren = [&](const scene::DagNode& node, bool templated) {
        std::for_each(node.children.rbegin(), node.children.rend(), [&](scene::DagNode* child) {
            open.push_back({child, templated});
        });
    };
    if (const scene::DagNode* world = scene::Scene::current().world()) openChildren(*world, false);
    while (!open.empty()) {
        const Open next = open.back();
        open.pop_back();
        if (!next.node->visible() || next.node->intermediate()) continue;
        const bool templated = next.templated || next.node->templated();
        if (next.node->isShape()) shapes.push_back({next.node->shared_from_this(), templated});
        openChildren(*next.node, templated);
    }
    return shapes;
}

void FrameDraw::loadObject(const MMatrix& objectToWorld) {
    view_.object_ = objectToWorld;
    loadMatrices(projection_, objectToWorld * worldToCamera_);
}

void FrameDraw::drawMesh(scene::DagNode& shape, bool templated) {
    const auto mesh = scene::meshOf(shape);
    if (!mesh || mesh->isEmpty()) return;
    StateGuard guard;
    const MMatrix objectToWorld = shape.worldMatrix();
    if (!templated) {
        lights_.load(worldToCamera_, view_.headlight());
        setMaterial();
    }
    loadObject(objectToWorld);
    // Mirroring turns the winding of what is seen, but not the side that a normal is on.
    if (objectToWorld.det3x3() < 0) glFrontFace(GL_CW);
    if (templated)
        drawWireframe(*mesh);
    else
        drawShaded(*mesh);
    if (problem_.empty()) problem_ = guard.finish();
}

void FrameDraw::drawItself(scene::DagNode& shape) {
    const auto ports = view_.ports_;
    const std::size_t beginDepth = view_.begun_.size();
    std::string failure, errors;
    {
        StateGuard guard;
        loadObject(shape.worldMatrix());
        try {
            shape.behavior->draw(view_.serial());
        } catch (const std::exception& e) {
            failure = e.what();
            if (failure.empty()) failure = "unknown exception";
        } catch (...) {
            failure = "unknown exception";
        }
        view_.makeCurrent(); // for the case that the draw made another context current
        errors = guard.finish();
        view_.ports_ = ports;
        while (view_.begun_.size() > beginDepth) view_.begun_.pop_back();
    }
    if (!failure.empty()) showError("Drawing " + shape.partialPath() + " failed: " + failure);
    if (!errors.empty() && view_.told_.insert(shape.serial).second)
        showWarning("Drawing " + shape.partialPath() + " caused OpenGL errors: " + errors);
}

void FrameDraw::drawShape(const std::shared_ptr<scene::Node>& node, bool templated, bool last) {
    // A draw that came before may have taken the node out of the scene.
    if (!node->inScene) return;
    scene::DagNode& shape = *node->dag();
    try {
        const auto drawing = shape.behavior ? shape.behavior->drawing() : std::nullopt;
        if (drawing) {
            if (drawing->last == last && (shows(Viewport::showLocators) || !drawing->asLocator)) drawItself(shape);
        } else if (!last && shows(Viewport::showMeshes) && scene::meshBehavior(shape)) {
            drawMesh(shape, templated);
        }
    } catch (const std::exception& e) {
        showError("Drawing " + shape.partialPath() + " failed: " + e.what());
    }
}

std::string FrameDraw::run() {
    takeGlErrors();
    setDefaultState();
    clear(view_.background());
    const bool floats = view_.colourDepth() == ColourDepth::Floats;
    if (floats) glClampColor(GL_CLAMP_VERTEX_COLOR, GL_FALSE); // the light on meshes
    problem_ = takeGlErrors();
    const auto shapes = visibleShapes();
    for (const Item& item : shapes) lights_.add(item.node);
    if (lights_.size() > SceneLights::most() && view_.told_.insert(0).second)
        showWarning("The view shows the first " + std::to_string(SceneLights::most()) + " of the scene's " +
                    std::to_string(lights_.size()) + " lights.");
    for (const bool last : {false, true})
        for (const Item& item : shapes) drawShape(item.node, item.templated, last);
    if (floats) glClampColor(GL_CLAMP_VERTEX_COLOR, GL_TRUE);
    glFinish();
    return problem_;
}

} // namespace host::viewport
