#include "scene/Selection.h"

#include <map>
#include <tuple>

namespace host::scene {
namespace {

using Key = std::tuple<const Node*, int, std::string>;

Key keyOf(const Selected& item) {
    return {item.node.get(), item.components ? static_cast<int>(item.components->kind()) : -1, item.part};
}

} // namespace

std::vector<Selected> merged(const std::vector<Selected>& items) {
    std::vector<Selected> all;
    std::vector<std::vector<Components::Range>> ranges;
    std::map<Key, std::size_t> places;
    for (const Selected& item : items) {
        const auto [place, isNew] = places.try_emplace(keyOf(item), all.size());
        if (isNew) {
            all.push_back(item);
            ranges.emplace_back();
        }
        if (!item.components) continue;
        auto& gathered = ranges[place->second];
        gathered.insert(gathered.end(), item.components->ranges().begin(), item.components->ranges().end());
    }
    for (std::size_t i = 0; i < all.size(); ++i)
        if (all[i].components) all[i].components = Components(all[i].components->kind(), std::move(ranges[i]));
    return all;
}

std::vector<Selected> without(const std::vector<Selected>& items, const std::vector<Selected>& taken) {
    const std::vector<Selected> gone = merged(taken);
    std::map<Key, const Selected*> places;
    for (const Selected& item : gone) places[keyOf(item)] = &item;
    std::vector<Selected> left;
    for (const Selected& item : merged(items)) {
        const auto place = places.find(keyOf(item));
        if (place == places.end()) {
            left.push_back(item);
        } else if (item.components) {
            left.push_back(item);
            left.back().components->remove(*place->second->components);
            if (left.back().components->isEmpty()) left.pop_back();
        }
    }
    return left;
}

std::vector<Selected> toggled(const std::vector<Selected>& items, const std::vector<Selected>& others) {
    std::vector<Selected> all = without(items, others);
    for (Selected& item : without(others, items)) all.push_back(std::move(item));
    return merged(all);
}

} // namespace host::scene
