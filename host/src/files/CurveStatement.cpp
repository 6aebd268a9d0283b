#include "files/SceneStatements.h"
#include "scene/AnimCurve.h"

namespace host::files {

using namespace scene;

bool setCurveList(const StatementContext& c, Node& node, std::string_view path, const ListValues& values) {
    CurveKeys* keys = curveKeys(node);
    const auto list = keys ? curveList(path.substr(0, path.find('['))) : std::nullopt;
    if (!list || c.scene.undo.recording() || values.empty() || !path.ends_with(']')) return false;
    const std::string name(path.substr(0, path.find('[')));
    Cell& array = node.cell(name);
    // What is said of single elements, and of the list as a whole, is looked at one by one.
    if (!array.elements.empty() || array.locked || node.locked) return false;
    PlugRange range(path);
    if (!range.isRange) {
        const std::string element(path.substr(name.size() + 1));
        const PlugRange single(name + "[" + element.substr(0, element.size() - 1) + ":" + element);
        if (!single.isRange) return false;
        range.first = range.last = single.first;
    }
    const std::vector<double> numbers = values.numbers<double>();
    const std::size_t width = *list == CurveKey::TimeValue ? 2 : 1;
    const auto count = static_cast<std::size_t>(range.last - range.first) + 1;
    if (numbers.size() != count * width)
        throw SceneError("'" + std::string(path) + "' has " + std::to_string(count) + " elements, with values for " +
                         std::to_string(numbers.size() / width) + ".");
    double factors[2] = {1, 1};
    for (std::size_t k = 0; k < array.attribute.children.size(); ++k)
        factors[k] = c.units.factor(array.attribute.children[k]->type);
    for (std::size_t i = 0; i < count; ++i) {
        CurveKey& key = keys->at(range.first + static_cast<int>(i));
        if (*list == CurveKey::TimeValue) {
            key.time = numbers[2 * i] * factors[0];
            key.value = numbers[2 * i + 1] * factors[1];
        } else if (!setCurveNumber(key, *list, numbers[i])) {
            throw SceneError("'" + std::string(path) + "' cannot have the value " + std::to_string(numbers[i]) + ".");
        }
        key.given = static_cast<std::uint16_t>(key.given | *list);
    }
    c.scene.modified = true;
    curveChanged(node);
    return true;
}

} // namespace host::files
