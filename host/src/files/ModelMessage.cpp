#include "files/ModelMessage.h"

#include "base/Letters.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <type_traits>

namespace host::files {
namespace {

enum class Mark : std::uint64_t { Model = 0x316c65646f4d764f, Error = 0x31726f727245764f, End = 0x21646e456e456e45 };

constexpr std::size_t kLongestText = 4096, kLongestName = 1024;
constexpr const char* kNotWhole = "its meshes were not handed over whole";

/// One pass over a model's parts, for writing and reading alike. The numbers are the fewest bytes of an item.
template <class Pass, class Model>
void walk(Pass& pass, Model& model) {
    pass.value(model.leftOut);
    pass.list(model.nodes, 144, [&](auto& node) {
        pass.values(node.name);
        pass.value(node.parent);
        pass.value(node.mesh);
        pass.value(node.matrix);
    });
    pass.list(model.meshes, 40, [&](auto& mesh) {
        pass.values(mesh.points);
        pass.values(mesh.counts);
        pass.values(mesh.connects);
        pass.values(mesh.normals);
        pass.list(mesh.uvSets, 32, [&](auto& set) {
            pass.values(set.name);
            pass.values(set.u);
            pass.values(set.v);
            pass.values(set.ids);
        });
    });
}

class Sender {
public:
    explicit Sender(const SendBytes& send) : send_(send) {}
    template <class T>
    void value(const T& v) {
        static_assert(std::is_trivially_copyable_v<T>);
        good_ = good_ && send_(&v, sizeof v);
    }
    template <class Values>
    void values(const Values& v) {
        value(std::uint64_t{v.size()});
        if (!v.empty()) good_ = good_ && send_(v.data(), v.size() * sizeof(v[0]));
    }
    template <class List, class Each>
    void list(List& items, std::size_t, Each&& each) {
        value(std::uint64_t{items.size()});
        for (auto& item : items) each(item);
    }
    bool good() const { return good_; }

private:
    const SendBytes& send_;
    bool good_ = true;
};

class Receiver {
public:
    explicit Receiver(std::span<const char> message) : rest_(message) {}
    template <class T>
    void value(T& v) {
        static_assert(std::is_trivially_copyable_v<T>);
        take(&v, sizeof v);
    }
    template <class Values>
    void values(Values& v) {
        v.resize(count(sizeof(v[0])));
        take(v.data(), v.size() * sizeof(v[0]));
    }
    template <class List, class Each>
    void list(List& items, std::size_t least, Each&& each) {
        items.resize(count(least));
        for (auto& item : items) each(item);
    }
    void require(Mark word) {
        Mark found{};
        value(found);
        if (found != word) throw ModelError(kNotWhole);
    }
    bool atEnd() const { return rest_.empty(); }

private:
    std::size_t count(std::size_t size) {
        std::uint64_t n = 0;
        value(n);
        if (n > rest_.size() / size) throw ModelError(kNotWhole);
        return static_cast<std::size_t>(n);
    }
    void take(void* to, std::size_t size) {
        if (size > rest_.size()) throw ModelError(kNotWhole);
        if (size > 0) std::memcpy(to, rest_.data(), size);
        rest_ = rest_.subspan(size);
    }
    std::span<const char> rest_;
};

void require(bool condition, const char* text = kNotWhole) {
    if (!condition) throw ModelError(text);
}

/// Names go into scripts and scene files.
bool plain(const std::string& name) {
    const auto fits = [](char c) { return isLetter(c) || isDigit(c) || c == '_'; };
    return name.size() <= kLongestName && std::ranges::all_of(name, fits) && (name.empty() || !isDigit(name.front()));
}

bool finite(std::span<const float> values) {
    return std::ranges::all_of(values, [](float v) { return std::isfinite(v); });
}

bool finite(std::span<const mesh::Float3> points) {
    return std::ranges::all_of(
        points, [](const auto& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); });
}

void check(const RawModel& model) {
    std::vector<int> depths;
    depths.reserve(model.nodes.size());
    for (const auto& node : model.nodes) {
        const auto index = static_cast<int>(depths.size());
        require(plain(node.name) && node.parent >= -1 && node.parent < index && node.mesh >= -1 &&
                (node.mesh < 0 || static_cast<std::size_t>(node.mesh) < model.meshes.size()));
        depths.push_back(node.parent < 0 ? 1 : depths[static_cast<std::size_t>(node.parent)] + 1);
        require(depths.back() <= kDeepestModel);
        require(std::ranges::all_of(node.matrix, [](double v) { return std::isfinite(v); }));
    }
    for (const auto& mesh : model.meshes) {
        require(finite(mesh.points), "a position is beyond what a mesh can hold");
        require(finite(mesh.normals));
        for (const auto& set : mesh.uvSets)
            require(!set.name.empty() && plain(set.name) && finite(set.u) && finite(set.v));
    }
}

/// One line without anything that steers a terminal.
std::string oneLine(std::string text) {
    text.erase(std::ranges::find(text, '\n'), text.end());
    if (text.size() > kLongestText) text.resize(kLongestText);
    for (char& c : text)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f) c = '?';
    return text.empty() ? "it cannot be read" : text;
}

} // namespace

bool sendModel(const RawModel& model, const SendBytes& send) {
    Sender sender(send);
    sender.value(Mark::Model);
    walk(sender, model);
    sender.value(Mark::End);
    return sender.good();
}

bool sendModelError(std::string_view text, const SendBytes& send) {
    Sender sender(send);
    sender.value(Mark::Error);
    sender.values(text.substr(0, kLongestText));
    sender.value(Mark::End);
    return sender.good();
}

RawModel takeModel(std::span<const char> message) {
    Receiver receiver(message);
    Mark word{};
    receiver.value(word);
    if (word == Mark::Error) {
        std::string text;
        receiver.values(text);
        receiver.require(Mark::End);
        throw ModelError(oneLine(std::move(text)));
    }
    require(word == Mark::Model);
    RawModel model;
    walk(receiver, model);
    receiver.require(Mark::End);
    require(receiver.atEnd());
    check(model);
    return model;
}

} // namespace host::files
