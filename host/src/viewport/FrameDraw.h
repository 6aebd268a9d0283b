#pragma once

#include "viewport/SceneLights.h"
#include "viewport/Viewport.h"

namespace host::viewport {

/// Draws one frame of a view, between the view's beginGL and endGL.
///
/// The DAG is walked depth first, in its own order; what is hidden, or intermediate, is left out with all below it.
/// Meshes and locators are drawn in that order, except for the locators that ask to be drawn last. A view that is to
/// show no locators still has those that do not want to be left out with the others. Locators and lights of the host's
/// own, cameras and curves are only icons in a model view, and are not drawn.
class FrameDraw {
public:
    FrameDraw(Viewport& view, const MMatrix& projection, const MMatrix& worldToCamera)
        : view_(view), projection_(projection), worldToCamera_(worldToCamera) {}

    /// @return what GL failed at in the host's own drawing; empty when all went well
    std::string run();

    /// Gives the target one colour, and makes it as deep as can be.
    static void clear(const std::array<float, 4>& colour);

private:
    struct Item {
        std::shared_ptr<scene::Node> node;
        bool templated = false;
    };
    std::vector<Item> visibleShapes() const;
    bool shows(unsigned kind) const { return (view_.objectDisplay() & kind) != 0; }
    void loadObject(const MMatrix& objectToWorld);
    void drawShape(const std::shared_ptr<scene::Node>& node, bool templated, bool last);
    void drawMesh(scene::DagNode& shape, bool templated);
    void drawItself(scene::DagNode& shape);

    Viewport& view_;
    MMatrix projection_, worldToCamera_;
    SceneLights lights_;
    std::string problem_;
};

} // namespace host::viewport
