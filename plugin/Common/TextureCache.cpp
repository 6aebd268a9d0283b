#include "TextureCache.h"

#include "FileSystem.h"
#include "GlShareMark.h"
#include "Undestroyed.h"

#include <map>
#include <optional>
#include <tuple>

namespace orvo {
namespace {

/// A loader and the path that the disk has for its image.
using TextureKey = std::pair<TextureLoad, std::string>;

/// A texture, with what it was made of and where.
struct SharedTexture {
    std::shared_ptr<const GlShareMark> mark;
    std::optional<FileState> state;
    TextureHandle handle;
};

using Textures = std::map<TextureKey, std::weak_ptr<const SharedTexture>>;

TextureKey keyOf(TextureLoad load, const std::string& path) { return {load, existingPath(path).value_or(path)}; }

/// Deletes a texture that nobody holds any more.
struct Drop {
    TextureKey key;
    void operator()(const SharedTexture* texture) const {
        delete texture;
        Textures& textures = undestroyed<Textures>();
        // A later one may stand in its place.
        if (const auto found = textures.find(key); found != textures.end() && found->second.expired())
            textures.erase(found);
    }
};

} // namespace

std::shared_ptr<const TextureHandle> sharedTexture(TextureLoad load, const std::string& path) {
    const TextureKey key = keyOf(load, path);
    const auto state = fileState(key.second);
    Textures& textures = undestroyed<Textures>();
    std::shared_ptr<const SharedTexture> texture;
    if (const auto found = textures.find(key); found != textures.end()) texture = found->second.lock();
    if (!texture || texture->state != state || !texture->mark || !texture->mark->isCurrent()) {
        auto made = std::make_unique<SharedTexture>();
        if (!load(made->handle, path)) return nullptr;
        made->mark = GlShareMark::ofCurrentContext();
        made->state = state;
        texture = std::shared_ptr<const SharedTexture>(made.release(), Drop{key});
        textures[key] = texture;
    }
    return {texture, &texture->handle};
}

void forgetSharedTexture(TextureLoad load, const std::string& path) {
    undestroyed<Textures>().erase(keyOf(load, path));
}

} // namespace orvo
