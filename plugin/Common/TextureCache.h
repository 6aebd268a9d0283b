#pragma once

#include "Textures.h"

#include <memory>
#include <string>

/// Textures that are shown by several nodes at once, kept once. Used on the drawing thread, with the viewport's context
/// current.
namespace orvo {

/// Fills the handle from the image at a full path. @return whether there is a picture now
using TextureLoad = bool (*)(TextureHandle& handle, const std::string& path);

/// The picture that a loader makes of the image at a full path: the texture that another holder has in this context,
/// while the file is still the one that it was made of; else a new one. It lives as long as somebody holds it. Null
/// when it cannot be loaded. A loader that needs no file is given an empty path.
std::shared_ptr<const TextureHandle> sharedTexture(TextureLoad load, const std::string& path);

/// Lets the next sharedTexture() of the path load it anew. Who holds the texture keeps it.
void forgetSharedTexture(TextureLoad load, const std::string& path);

} // namespace orvo
