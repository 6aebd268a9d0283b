#pragma once

#if defined(_WIN32)
#include <windows.h>
#endif
#include <GL/gl.h>

#include <maya/MColor.h>
#include <maya/MDagPath.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MVector.h>

namespace host::api {
struct Access;
}

/// A model view: the port that a camera's picture is drawn into.
///
/// An object of this class is a reference that stays valid to use when its view is closed: every operation then
/// answers kFailure, and nothing is drawn. Ports are measured in pixels from the bottom left corner.
class OPENMAYAUI_EXPORT M3dView {
public:
    enum DisplayStyle { kBoundingBox, kFlatShaded, kGouraudShaded, kWireFrame, kPoints };
    enum DisplayStatus {
        kActive,
        kLive,
        kDormant,
        kInvisible,
        kHilite,
        kTemplate,
        kActiveTemplate,
        kActiveComponent,
        kLead,
        kIntermediateObject,
        kActiveAffected,
        kNoStatus
    };
    enum ColorTable { kActiveColors, kDormantColors, kTemplateColor, kBackgroundColor };
    enum TextPosition { kLeft, kCenter, kRight };
    /// The kinds of objects that a view shows or leaves out.
    enum DisplayObjects : unsigned int {
        kDisplayEverything = ~0U,
        kDisplayNurbsCurves = 1U << 0,
        kDisplayNurbsSurfaces = 1U << 1,
        kDisplayMeshes = 1U << 2,
        kDisplayPlanes = 1U << 3,
        kDisplayLights = 1U << 4,
        kDisplayCameras = 1U << 5,
        kDisplayJoints = 1U << 6,
        kDisplayIkHandles = 1U << 7,
        kDisplayDeformers = 1U << 8,
        kDisplayDynamics = 1U << 9,
        kDisplayParticleInstancers = 1U << 10,
        kDisplayLocators = 1U << 11,
        kDisplayDimensions = 1U << 12,
        kDisplaySelectHandles = 1U << 13,
        kDisplayPivots = 1U << 14,
        kDisplayTextures = 1U << 15,
        kDisplayGrid = 1U << 16,
        kDisplayCVs = 1U << 17,
        kDisplayHulls = 1U << 18,
        kDisplayStrokes = 1U << 19,
        kDisplaySubdivSurfaces = 1U << 20,
        kDisplayFluids = 1U << 21,
        kDisplayFollicles = 1U << 22,
        kDisplayHairSystems = 1U << 23,
        kDisplayImagePlane = 1U << 24,
        kDisplayNCloths = 1U << 25,
        kDisplayNRigids = 1U << 26,
        kDisplayDynamicConstraints = 1U << 27,
        kDisplayManipulators = 1U << 28,
        kDisplayNParticles = 1U << 29,
        kExcludeMotionTrails = 1U << 30,
        kExcludePluginShapes = 1U << 31
    };
    enum LightingMode { kLightAll, kLightSelected, kLightActive, kLightDefault, kUnused1, kLightNone };
    enum RendererName { kDefaultQualityRenderer, kHighQualityRenderer, kViewport2Renderer, kExternalRenderer };

    /// Refers to no view.
    M3dView();
    virtual ~M3dView();

    /// @name The views that there are
    /// @{
    static M3dView active3dView(MStatus* ReturnStatus = NULL);
    static unsigned int numberOf3dViews();
    static MStatus get3dView(const unsigned int index, M3dView& view);
    /// How an object is shown: the most telling of invisible, intermediate, template, lead, active and dormant.
    static M3dView::DisplayStatus displayStatus(const MDagPath& path, MStatus* ReturnStatus = NULL);
    /// @}

    /// @name The port
    /// @{
    int portWidth(MStatus* ReturnStatus = NULL);
    int portHeight(MStatus* ReturnStatus = NULL);
    bool isVisible(MStatus* ReturnStatus = NULL);
    /// Draws into a part of the port, until popViewport goes back to the part that was drawn into before.
    MStatus pushViewport(unsigned int x, unsigned int y, unsigned int width, unsigned int height);
    MStatus popViewport();
    MStatus viewport(unsigned int& x, unsigned int& y, unsigned int& width, unsigned int& height) const;
    /// @}

    /// @name Drawing
    /// @{
    /// Makes the view's GL context current, with its picture to draw into. Calls nest; each needs an endGL of its own,
    /// which puts the matrices back that were there. Outside of a draw the camera's matrices are loaded. The context
    /// stays current after the outermost endGL.
    MStatus beginGL();
    MStatus endGL();
    /// Whether draws are asked to say what is under the pointer: never, for a picture is made.
    bool selectMode() const;
    MStatus setDrawColor(const MColor& color);
    MStatus setDrawColorAndAlpha(const MColor& color);
    MStatus colorMask(bool& r, bool& g, bool& b, bool& a);
    MStatus setColorMask(bool r, bool g, bool b, bool a);
    /// kNotImplemented: there are no fonts.
    MStatus drawText(const MString& text, const MPoint position, M3dView::TextPosition textPosition = kLeft);
    M3dView::DisplayStyle displayStyle(MStatus* ReturnStatus = NULL) const;
    /// The kinds that the view shows, as a sum of DisplayObjects. Only meshes and locators are ever drawn; locators
    /// that answer false to excludeAsLocator() are drawn all the same.
    MStatus setObjectDisplay(unsigned int displayMask);
    unsigned int objectDisplay(MStatus* ReturnStatus = NULL);
    M3dView::RendererName getRendererName(MStatus* ReturnStatus) const;
    static bool isBackgroundGradient(MStatus* ReturnStatus = NULL);
    static MColor templateColor(MStatus* ReturnStatus = NULL);
    static MColor backgroundColor(MStatus* ReturnStatus = NULL);
    /// Draws the view anew (or, with `all`, every view) before it returns; not from within a draw.
    MStatus refresh(bool all = false, bool force = false);
    /// Has the view drawn anew when nothing else is to be done; allowed within a draw. kFailure where nobody watches
    /// the view, as in the program's pictures: then no draw follows by itself.
    MStatus scheduleRefresh();
    /// @}

    /// @name Camera and spaces
    /// @{
    /// The camera shape's path.
    MStatus getCamera(MDagPath& camera);
    /// Looks through another camera: its shape, or the transform above it.
    MStatus setCamera(MDagPath& camera);
    /// The point on the near plane at a pixel's bottom left corner, and the direction of unit length from there away
    /// from the eye.
    MStatus viewToWorld(short x_pos, short y_pos, MPoint& worldPt, MVector& worldVector) const;
    MStatus viewToWorld(short x_pos, short y_pos, MPoint& nearClipPt, MPoint& farClipPt) const;
    /// The same as a point and a direction in an object's space, given the inverse of the object's matrix.
    MStatus viewToObjectSpace(short x_pos, short y_pos, const MMatrix& localMatrixInverse, MPoint& oPt,
                              MVector& oVector) const;
    /// The pixel whose bottom left corner is nearest to where a point is seen; false when the point lies outside the
    /// view volume. Positions are held within what a short can tell, and 0 for a point in the plane of the eye.
    bool worldToView(const MPoint& worldPt, short& x_pos, short& y_pos, MStatus* ReturnStatus = NULL) const;
    MStatus projectionMatrix(MMatrix& projMat) const;
    /// Within a draw the matrix from the drawn object's space to the camera's, else that from the world's.
    MStatus modelViewMatrix(MMatrix& modelViewMatrix) const;
    /// Loads the camera's matrices into GL anew, after somebody changed the camera within a draw.
    MStatus updateViewingParameters();
    /// @}

    static const char* className();

private:
    friend struct host::api::Access;
    explicit M3dView(unsigned long serial);
    unsigned long serial_ = 0;
};
