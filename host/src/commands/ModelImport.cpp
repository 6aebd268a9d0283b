#include "commands/ModelImport.h"

#include "base/Messages.h"
#include "commands/CommandSupport.h"
#include "files/MeshImport.h"
#include "scene/MeshNode.h"

namespace host::mel {

using namespace scene;

std::vector<NodePtr> importModel(const std::filesystem::path& file, const std::string& prefix) {
    const files::ImportedModel model = files::readModel(file);
    Scene& scene = theScene();
    const NodeType& transformType = *scene.findType("transform");
    std::vector<NodePtr> made;
    std::vector<DagNode*> transforms;
    for (const auto& node : model.nodes) {
        DagNode* parent = node.parent < 0 ? nullptr : transforms[static_cast<std::size_t>(node.parent)];
        const std::string name = !node.name.empty() ? node.name : node.mesh ? "polySurface#" : "group#";
        made.push_back(scene.createNode(transformType, prefix + name, parent));
        DagNode& transform = *made.back()->dag();
        transforms.push_back(&transform);
        setLocalMatrix(transform, node.matrix);
        if (!node.mesh) continue;
        made.push_back(scene.createNode(*scene.findType("mesh"), {}, &transform));
        setMesh(scene, *made.back(), node.mesh);
        addToSet(*scene.findNode("initialShadingGroup"), *made.back());
    }
    if (model.leftOut > 0)
        showWarning(file.generic_string() + ": " + std::to_string(model.leftOut) +
                    (model.leftOut == 1 ? " point, line or collapsed face is left out."
                                        : " points, lines or collapsed faces are left out."));
    return made;
}

} // namespace host::mel
