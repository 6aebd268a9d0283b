#include "SkyTexture.h"

#include "../Common/MayaUtils.h"
#include "../Common/Paths.h"

namespace orvo {

std::uint32_t SkyTexture::update(const MObject& node, const MObject& pathAttribute, Load load, Fallback fallback) {
    const std::string stored = readString(node, pathAttribute).asChar();
    if (texture_ && stored == loadedPath_) return texture_->name();
    std::string path = stored;
    if (!makeProjectRelative(path))
        path = stored;
    else if (path != stored)
        writeString(node, pathAttribute, path.c_str());

    release();
    auto texture = std::make_unique<TextureHandle>();
    if (!load(*texture, absoluteCopy(path))) texture = fallback();
    texture_ = std::move(texture);
    // Read back: an attribute that is locked or connected keeps its value, and a path outside the project is stored
    // as the artist gave it.
    loadedPath_ = readString(node, pathAttribute).asChar();
    return texture_ ? texture_->name() : 0;
}

void SkyTexture::release() {
    texture_.reset();
    loadedPath_.clear();
}

std::string buildPath(const MObject& node, const MObject& pathAttribute, bool& inFolder) {
    std::string path = readString(node, pathAttribute).asChar();
    inFolder = stripBuildFolder(path);
    return path;
}

} // namespace orvo
