#include "SkyTexture.h"

#include "Common/HostText.h"
#include "Common/MayaUtils.h"
#include "Common/Paths.h"

namespace orvo {

void SkyTexture::storePath(const MObject& node, const MObject& pathAttribute) {
    const std::string given = readString(node, pathAttribute).asUTF8();
    if (given == storedPath_) return;
    const std::string stored = storedForm(given);
    if (stored != given && isFreeToChange(node, pathAttribute)) writeString(node, pathAttribute, hostText(stored));
    // Read back: an attribute that is locked or connected keeps its value.
    storedPath_ = readString(node, pathAttribute).asUTF8();
}

std::uint32_t SkyTexture::update(const MObject& node, const MObject& pathAttribute, TextureLoad load,
                                 Fallback fallback) {
    storePath(node, pathAttribute);
    if (texture_ && storedPath_ == loadedPath_) return texture_->name();
    release();
    texture_ = sharedTexture(load, absoluteCopy(storedForm(storedPath_)));
    if (!texture_) texture_ = fallback();
    loadedPath_ = storedPath_;
    return texture_ ? texture_->name() : 0;
}

void SkyTexture::release() {
    texture_.reset();
    loadedPath_.clear();
}

std::string buildPath(const MObject& node, const MObject& pathAttribute, bool& inFolder) {
    std::string path = readString(node, pathAttribute).asUTF8();
    inFolder = stripBuildFolder(path);
    return path;
}

} // namespace orvo
