#pragma once

#include "Common/MayaUtils.h"

#include "MessageLog.h"
#include "base/Units.h"
#include "commands/Host.h"
#include "scene/Evaluation.h"
#include "scene/Scene.h"

#include <maya/MFnDependencyNode.h>

#include <gmock/gmock.h>

#include <iostream>
#include <sstream>
#include <string>

/// A new scene, the host's messages, and what is printed on the error stream.
class UtilityTest : public testing::Test {
protected:
    UtilityTest() : old_(std::cerr.rdbuf(printed_.rdbuf())) {
        host::setLinearUnit(host::LinearUnit::Centimetre);
        scene.reset();
    }
    ~UtilityTest() override {
        std::cerr.rdbuf(old_);
        host::setLinearUnit(host::LinearUnit::Centimetre);
        scene.reset();
    }
    static void mel(const std::string& script) { host::Host::instance().interpreter().execute(script); }
    static MObject node(const char* name) {
        MObject found;
        EXPECT_FALSE(orvo::dependencyNodeByName(name, found).error()) << name;
        return found;
    }
    static MObject attribute(const MObject& node, const char* name) {
        MStatus status;
        const MObject found = MFnDependencyNode(node).attribute(name, &status);
        EXPECT_FALSE(status.error()) << name;
        return found;
    }
    static MPlug plug(const char* nodeName, const char* attributeName) {
        const MObject n = node(nodeName);
        return MPlug(n, attribute(n, attributeName));
    }
    void set(const char* plugName, double value) { scene.setNumber(scene.findPlug(plugName), value); }
    std::string printed() {
        const std::string text = printed_.str();
        printed_.str("");
        return text;
    }

    host::scene::Scene& scene = host::scene::Scene::current();
    MessageLog log_;

private:
    std::ostringstream printed_;
    std::streambuf* old_;
};
