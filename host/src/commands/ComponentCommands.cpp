#include "commands/CommandSupport.h"
#include "commands/Commands.h"

#include "mesh/PolyMesh.h"

namespace host::mel {

using namespace scene;

namespace {

Value pointPosition(Call& call) {
    const ParsedArguments args(call, {{"l", "local"}, {"w", "world"}});
    const StringArray names = args.names();
    std::vector<Selected> items;
    for (const std::string& name : names)
        for (auto& item : itemsNamed(name)) items.push_back(std::move(item));
    if (names.empty()) items = theScene().selection();
    if (items.size() != 1 || items.front().isWhole()) throw Error("pointPosition needs one point.");
    const Selected& item = items.front();
    MPoint place;
    DagNode* node = item.node->dag();
    if (item.components) {
        const Points points(item);
        if (item.components->kind() != ComponentKind::Vertex || points.vertices.size() != 1)
            throw Error("pointPosition needs one vertex: " + namesOf(item).front());
        place = points.at(points.vertices.front());
    } else if (node && node->isTransform() && (item.part == "rotatePivot" || item.part == "scalePivot")) {
        place = pointOf(tripleOf(*node, item.part.c_str()));
    } else {
        throw Error("'" + namesOf(item).front() + "' is not a point.");
    }
    if (!args.has("l")) place = place * node->worldMatrix();
    const double unit = lengthUnit();
    return FloatArray{place.x / unit, place.y / unit, place.z / unit};
}

} // namespace

void registerComponentCommands(Interpreter& interpreter) {
    registerSceneCommand(interpreter, "pointPosition", pointPosition);
}

} // namespace host::mel
