#pragma once

#include "Common/InstanceList.h"
#include "Common/OutputFile.h"
#include "SkyTool/SkyProgram.h"
#include "SkyTool/SkyTexture.h"
#include "SkyTool/export/ExportNode.h"

#include <array>
#include <maya/MPxLocatorNode.h>
#include <maya/MTypeId.h>

namespace orvo {

/// The 2 by 2 matrix, column by column, that turns (x, z) of a view direction by an angle in degrees.
std::array<float, 4> skyRotation(double degrees);

/// A sky from a cube map, turned about the vertical axis and scaled in linear light. The +Y face is overhead; alpha
/// divides the colour. A cube map that cannot be loaded shows as a checkerboard. Exported as a TexturedSky element.
class TexturedSkyLocator : public MPxLocatorNode, public ExportNode {
public:
    static const MTypeId id;
    static MStatus initialize();
    /// The live instance that a node's name or full path name stands for; null when there is none.
    static TexturedSkyLocator* findInstance(const MString& name);

    void postConstructor() override;
    /// The host's draw shows nothing; it frees the program and the texture of a node that is switched off.
    void draw(M3dView& view, const MDagPath& path, M3dView::DisplayStyle style, M3dView::DisplayStatus status) override;
    bool isBounded() const override { return false; }
    bool isEnabled() override;

    /// Brings the image's path into its stored form. Every render does so first; it needs no GL.
    void bringUpToDate();
    /// The viewport preview, called by the sky renderer between the view's beginGL and endGL.
    void render(M3dView& view);
    /// Writes the TexturedSky element. An image outside the build folder is reported and left out. Always true.
    bool saveToXml(OutputFile& file, const char* indent);

private:
    void release();

    static MObject Enable, cubeMapTexture, brightness, rotation;

    SkyProgram program_;
    SkyTexture texture_;
    InstanceEntry<TexturedSkyLocator> entry_{*this};
};

} // namespace orvo
