#pragma once

#include "Common/InstanceList.h"
#include "Common/MayaUtils.h"
#include "Common/Messages.h"
#include "SkyTool/export/ExportNode.h"

#include <array>
#include <cstddef>
#include <maya/MPxLocatorNode.h>

namespace orvo {

/// What the locators of the sky have in common: each is listed while it lives, is named when it is made, and has no
/// bounds unless it says so.
///
/// A class derives from SkyLocator<itself> and has the constants `nodeName`, its name in messages, and `shapeName`, the
/// name that a new node is given.
template <class Node>
class SkyLocator : public MPxLocatorNode {
public:
    /// The live instance that a node's name or full path name stands for; null when there is none.
    static Node* findInstance(const MString& name) { return InstanceList<Node>::shared().find(name); }

    void postConstructor() override {
        guardedAs("::postConstructor", [&] { renameNode(thisMObject(), Node::shapeName); });
    }
    bool isBounded() const override { return false; }

protected:
    /// Runs a callback of the host's, whose failures are reported under the class's name with `callback` behind it.
    template <std::size_t length, class Body>
    static void guardedAs(const char (&callback)[length], Body&& body) noexcept {
        std::array<char, sizeof Node::nodeName + length - 1> name{};
        std::copy_n(callback, length, std::copy_n(Node::nodeName, sizeof Node::nodeName - 1, name.begin()));
        guarded(name.data(), body);
    }

private:
    InstanceEntry<Node> entry_{*this};
};

/// A sky locator that the artist can switch off, and that is exported.
///
/// A class derives from SwitchedSkyLocator<itself>, makes it a friend, and has the attribute `Enable` (or an
/// isEnabled() of its own) and `release()`, which frees what a node that is switched off does not need.
template <class Node>
class SwitchedSkyLocator : public SkyLocator<Node>, public ExportNode {
public:
    bool isEnabled() override {
        if constexpr (requires { Node::Enable; })
            return readBool(this->thisMObject(), Node::Enable);
        else
            return readBool(this->thisMObject(), Node::enable);
    }
    /// The host's draw shows nothing: the sky renderer draws the node. It frees what is not needed any more.
    void draw(M3dView&, const MDagPath&, M3dView::DisplayStyle, M3dView::DisplayStatus) override {
        SkyLocator<Node>::guardedAs("::draw", [&] {
            if (!isEnabled()) static_cast<Node&>(*this).release();
        });
    }
};

} // namespace orvo
