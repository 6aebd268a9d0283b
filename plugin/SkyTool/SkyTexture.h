#pragma once

#include "Common/TextureCache.h"

#include <maya/MObject.h>
#include <memory>
#include <string>

namespace orvo {

/// The texture of the image that a text attribute of a node names, loaded anew when the attribute changes. Used on the
/// drawing thread, with the viewport's context current.
class SkyTexture {
public:
    /// A picture to show in place of one that cannot be loaded; null when there is none.
    using Fallback = std::unique_ptr<TextureHandle> (*)();

    /// Shortens a path under the project root to its project-relative form, in the attribute itself; once for a value.
    /// Needs no GL.
    void storePath(const MObject& node, const MObject& pathAttribute);
    /// The GL name of the texture, 0 when there is none. The path is stored as storePath does it. An image that cannot
    /// be loaded is not tried again before the attribute changes.
    std::uint32_t update(const MObject& node, const MObject& pathAttribute, TextureLoad load, Fallback fallback);
    /// Gives the texture up and forgets where it came from.
    void release();

private:
    std::shared_ptr<const TextureHandle> texture_;
    std::string storedPath_; ///< the attribute's value when it was last brought into its stored form
    std::string loadedPath_; ///< the attribute's value that the texture was made from
};

/// Reads the path that a text attribute holds and shortens it to the form of exported files, relative to the build
/// folder. For a path that is not in there `inFolder` is false, and the path comes out as it was.
std::string buildPath(const MObject& node, const MObject& pathAttribute, bool& inFolder);

} // namespace orvo
