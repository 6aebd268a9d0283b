#include "files/importer/ModelConversion.h"
#include "base/Letters.h"

#include <assimp/DefaultIOSystem.h>
#include <assimp/Importer.hpp>
#include <assimp/config.h>
#include <assimp/scene.h>
#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <new>
#include <stdexcept>
#include <unordered_map>

namespace host::files {
namespace {

using mesh::Float3;

constexpr std::size_t kMostCorners = std::numeric_limits<int>::max();

/// Letters, digits and underscores, not starting with a digit; one underscore for each other character.
std::string legalName(std::string_view text) {
    std::string name;
    for (const char c : text) {
        if ((static_cast<unsigned char>(c) & 0xC0) == 0x80) continue; // the rest of a character beyond ASCII
        name += isLetter(c) || isDigit(c) ? c : '_';
    }
    if (!name.empty() && isDigit(name.front())) name.insert(name.begin(), '_');
    return name;
}

std::string textOf(const aiString& s) { return {s.C_Str(), s.length}; }
bool finite(const aiVector3D& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

/// Three numbers by their bits.
struct Key {
    std::uint32_t a, b, c;
    bool operator==(const Key&) const = default;
    struct Hash {
        std::size_t operator()(const Key& k) const {
            std::uint64_t h = (std::uint64_t{k.a} << 32 | k.b) * 0x9E3779B97F4A7C15ull;
            h = (h ^ (h >> 29) ^ k.c) * 0xBF58476D1CE4E5B9ull;
            return h ^ (h >> 32);
        }
    };
};

std::uint32_t bits(float value) { return std::bit_cast<std::uint32_t>(value + 0.0f); } // both zeros are one

/// Hands out numbers to keys in the order of their first use.
class Numbers {
public:
    int operator()(const Key& key, bool& isNew) {
        const auto [at, added] = known_.try_emplace(key, static_cast<int>(known_.size()));
        isNew = added;
        return at->second;
    }

private:
    std::unordered_map<Key, int, Key::Hash> known_;
};

/// Joins the parts of one object.
class MeshMaker {
public:
    MeshMaker(double scale, std::size_t& leftOut) : scale_(scale), leftOut_(leftOut) {}

    void add(const aiMesh& part) {
        if (part.mNumVertices > 0 && !part.mVertices) throw std::runtime_error("a mesh has no positions");
        const bool withNormals = part.HasNormals();
        if (withNormals && mesh_.normals.empty()) mesh_.normals.resize(mesh_.connects.size(), noNormal());
        for (unsigned int set = 0; set < AI_MAX_NUMBER_OF_TEXTURECOORDS; ++set)
            if (part.HasTextureCoords(set)) addSet(part, set);
        for (unsigned int f = 0; f < part.mNumFaces; ++f) addFace(part, part.mFaces[f]);
    }

    RawModel::Mesh finish() {
        for (std::size_t k = 0; k < mesh_.uvSets.size(); ++k) name(k);
        return std::move(mesh_);
    }

private:
    static Float3 noNormal() {
        return {mesh::PolyMesh::kNoNormal, mesh::PolyMesh::kNoNormal, mesh::PolyMesh::kNoNormal};
    }

    void addSet(const aiMesh& part, unsigned int set) {
        if (mesh_.uvSets.size() <= set) {
            mesh_.uvSets.resize(set + 1);
            uvNumbers_.resize(set + 1);
        }
        auto& uvs = mesh_.uvSets[set];
        if (uvs.name.empty() && part.HasTextureCoordsName(set))
            if (const aiString* given = part.GetTextureCoordsName(set)) uvs.name = legalName(textOf(*given));
    }

    void name(std::size_t set) {
        const auto taken = [&](const std::string& text) {
            return std::any_of(mesh_.uvSets.begin(), mesh_.uvSets.begin() + static_cast<std::ptrdiff_t>(set),
                               [&](const auto& other) { return other.name == text; });
        };
        std::string& text = mesh_.uvSets[set].name;
        for (std::size_t n = set + 1; text.empty() || taken(text); ++n) text = fmt::format("map{}", n);
    }

    void addFace(const aiMesh& part, const aiFace& face) {
        vertices_.clear();
        corners_.clear();
        for (unsigned int i = 0; i < face.mNumIndices; ++i) {
            const unsigned int corner = face.mIndices[i];
            if (corner >= part.mNumVertices) throw std::runtime_error("a face has a corner that does not exist");
            const int vertex = vertexOf(part.mVertices[corner]);
            if (!vertices_.empty() && vertices_.back() == vertex) continue;
            vertices_.push_back(vertex);
            corners_.push_back(corner);
        }
        while (vertices_.size() > 1 && vertices_.back() == vertices_.front()) {
            vertices_.pop_back();
            corners_.pop_back();
        }
        if (vertices_.size() < 3) {
            ++leftOut_;
            return;
        }
        if (mesh_.connects.size() + vertices_.size() > kMostCorners) throw std::runtime_error("a mesh is too large");
        mesh_.counts.push_back(static_cast<int>(vertices_.size()));
        mesh_.connects.insert(mesh_.connects.end(), vertices_.begin(), vertices_.end());
        for (unsigned int set = 0; set < mesh_.uvSets.size(); ++set) {
            auto& ids = mesh_.uvSets[set].ids;
            ids.resize(mesh_.connects.size() - vertices_.size(), -1); // of parts that do not have the set
            for (std::size_t i = 0; i < corners_.size(); ++i) ids.push_back(uvOf(part, set, corners_[i], vertices_[i]));
        }
        if (!mesh_.normals.empty() || part.HasNormals())
            for (const unsigned int corner : corners_) mesh_.normals.push_back(normalOf(part, corner));
    }

    int vertexOf(const aiVector3D& p) {
        if (!finite(p)) throw std::runtime_error("a position is not a number");
        bool isNew = false;
        const int vertex = vertexNumbers_({bits(p.x), bits(p.y), bits(p.z)}, isNew);
        if (isNew)
            mesh_.points.push_back(
                {static_cast<float>(p.x * scale_), static_cast<float>(p.y * scale_), static_cast<float>(p.z * scale_)});
        return vertex;
    }

    int uvOf(const aiMesh& part, unsigned int set, unsigned int corner, int vertex) {
        if (!part.HasTextureCoords(set)) return -1;
        const aiVector3D& uv = part.mTextureCoords[set][corner];
        if (!std::isfinite(uv.x) || !std::isfinite(uv.y)) return -1;
        bool isNew = false;
        const int id = uvNumbers_[set]({bits(uv.x), bits(uv.y), static_cast<std::uint32_t>(vertex)}, isNew);
        if (isNew) {
            mesh_.uvSets[set].u.push_back(uv.x);
            mesh_.uvSets[set].v.push_back(uv.y);
        }
        return id;
    }

    static Float3 normalOf(const aiMesh& part, unsigned int corner) {
        if (!part.HasNormals()) return noNormal();
        const aiVector3D& n = part.mNormals[corner];
        const float length = std::hypot(n.x, n.y, n.z);
        return finite(n) && length > 0 ? Float3{n.x / length, n.y / length, n.z / length} : noNormal();
    }

    double scale_;
    std::size_t& leftOut_;
    RawModel::Mesh mesh_;
    Numbers vertexNumbers_;
    std::vector<Numbers> uvNumbers_;
    std::vector<int> vertices_;
    std::vector<unsigned int> corners_;
};

/// A number that the file says about itself.
double meta(const aiScene& scene, const char* key, double otherwise) {
    if (!scene.mMetaData) return otherwise;
    double number = 0;
    float single = 0;
    std::int32_t integer = 0;
    if (scene.mMetaData->Get(key, number)) return number;
    if (scene.mMetaData->Get(key, single)) return single;
    return scene.mMetaData->Get(key, integer) ? integer : otherwise;
}

/// Turns the file's axes to Y up, Z towards the viewer.
aiMatrix4x4 turnOf(const aiScene& scene) {
    aiMatrix4x4 turn;
    bool used[3] = {};
    const char* names[3][2] = {
        {"CoordAxis", "CoordAxisSign"}, {"UpAxis", "UpAxisSign"}, {"FrontAxis", "FrontAxisSign"}};
    for (unsigned int row = 0; row < 3; ++row) {
        const double axis = meta(scene, names[row][0], row);
        if (!(axis == 0 || axis == 1 || axis == 2) || used[static_cast<int>(axis)]) return {};
        used[static_cast<int>(axis)] = true;
        for (unsigned int column = 0; column < 3; ++column) turn[row][column] = 0;
        turn[row][static_cast<unsigned int>(axis)] = meta(scene, names[row][1], 1) < 0 ? -1.0f : 1.0f;
    }
    return turn;
}

class Conversion {
public:
    Conversion(const aiScene& scene, const std::filesystem::path& file, const std::string& extension)
        : scene_(scene), file_(file) {
        if (extension == ".gltf" || extension == ".glb") {
            scale_ = 100;
        } else if (extension == ".fbx") {
            scale_ = meta(scene, "UnitScaleFactor", 1);
            if (!(scale_ > 0) || !std::isfinite(scale_)) scale_ = 1;
            turn_ = turnOf(scene);
        }
        // The formats that have no single root get one from Assimp.
        const aiNode& root = *scene.mRootNode;
        const bool made = extension == ".obj" || extension == ".fbx" || textOf(root.mName) == "ROOT";
        if (made && root.mNumMeshes == 0) {
            const aiMatrix4x4 above = turn_ * root.mTransformation;
            for (unsigned int i = 0; i < root.mNumChildren; ++i) add(*root.mChildren[i], above, -1, 1);
        } else {
            add(root, turn_, -1, 1);
        }
    }
    RawModel finish() { return std::move(model_); }

private:
    void add(const aiNode& node, const aiMatrix4x4& above, int parent, int depth) {
        if (depth > kDeepestModel)
            throw std::runtime_error(fmt::format("its objects are nested more than {} deep", kDeepestModel));
        RawModel::Node made;
        made.name = legalName(textOf(node.mName));
        if (made.name == "defaultobject") made.name = legalName(file_.stem().string());
        made.parent = parent;
        const aiMatrix4x4 local = above * node.mTransformation;
        for (unsigned int r = 0; r < 4; ++r)
            for (unsigned int c = 0; c < 4; ++c) {
                const double value = local[c][r];
                if (!std::isfinite(value))
                    throw std::runtime_error("the transform of '" + made.name + "' is not a number");
                made.matrix[r * 4 + c] = r == 3 && c < 3 ? value * scale_ : value;
            }
        made.mesh = meshOf(node);
        const auto index = static_cast<int>(model_.nodes.size());
        model_.nodes.push_back(std::move(made));
        for (unsigned int i = 0; i < node.mNumChildren; ++i) add(*node.mChildren[i], {}, index, depth + 1);
    }

    /// The mesh of all parts of a node; -1 when there is nothing of use in them.
    int meshOf(const aiNode& node) {
        const std::vector<unsigned int> parts(node.mMeshes, node.mMeshes + node.mNumMeshes);
        if (parts.empty()) return -1;
        const auto [at, isNew] = meshes_.try_emplace(parts, -1);
        if (!isNew) return at->second;
        MeshMaker maker(scale_, model_.leftOut);
        for (const unsigned int part : parts) {
            if (part >= scene_.mNumMeshes) throw std::runtime_error("an object has a mesh that does not exist");
            maker.add(*scene_.mMeshes[part]);
        }
        auto mesh = maker.finish();
        if (mesh.counts.empty()) return -1;
        at->second = static_cast<int>(model_.meshes.size());
        model_.meshes.push_back(std::move(mesh));
        return at->second;
    }

    const aiScene& scene_;
    const std::filesystem::path& file_;
    double scale_ = 1; // to centimetres
    aiMatrix4x4 turn_;
    RawModel model_;
    std::map<std::vector<unsigned int>, int> meshes_;
};

/// Opens the model, and files of its folder: a model from elsewhere is not to reach the rest of the machine.
class ModelFolder final : public Assimp::DefaultIOSystem {
public:
    explicit ModelFolder(const std::filesystem::path& model)
        : model_(model), folder_(std::filesystem::canonical(model).parent_path()) {}
    bool Exists(const char* file) const override { return allowed(file) && DefaultIOSystem::Exists(file); }
    Assimp::IOStream* Open(const char* file, const char* mode) override {
        return allowed(file) && *mode == 'r' ? DefaultIOSystem::Open(file, mode) : nullptr;
    }

private:
    bool allowed(const char* file) const {
        if (file == model_) return true;
        std::error_code missing;
        const auto place = std::filesystem::canonical(file, missing);
        return !missing && std::filesystem::is_regular_file(place, missing) &&
               std::mismatch(folder_.begin(), folder_.end(), place.begin(), place.end()).first == folder_.end();
    }
    std::filesystem::path model_, folder_;
};

} // namespace

RawModel convertModel(const std::filesystem::path& file) {
    Assimp::Importer importer;
    importer.SetIOHandler(new ModelFolder(file)); // the importer's from now on
    importer.SetPropertyBool(AI_CONFIG_IMPORT_FBX_PRESERVE_PIVOTS, false);
    for (const char* unused :
         {AI_CONFIG_IMPORT_FBX_READ_TEXTURES, AI_CONFIG_IMPORT_FBX_READ_CAMERAS, AI_CONFIG_IMPORT_FBX_READ_LIGHTS,
          AI_CONFIG_IMPORT_FBX_READ_ANIMATIONS, AI_CONFIG_IMPORT_FBX_READ_WEIGHTS})
        importer.SetPropertyBool(unused, false);
    const aiScene* scene = importer.ReadFile(file.string(), 0);
    if (!scene) {
        const std::string error = importer.GetErrorString();
        if (error.find("bad_alloc") != error.npos) throw std::bad_alloc();
        throw std::runtime_error(error);
    }
    if (!scene->mRootNode) throw std::runtime_error("it holds no objects");
    const std::string extension = extensionOf(file);
    return Conversion(*scene, file, extension).finish();
}

} // namespace host::files
