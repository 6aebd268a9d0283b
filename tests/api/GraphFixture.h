#pragma once

#include "api/graph/Handle.h"
#include "api/plugins/PluginManager.h"
#include "base/Messages.h"
#include "base/Units.h"
#include "commands/Host.h"
#include "kit/MessageSink.h"
#include "scene/Scene.h"

#include <maya/MFnDagNode.h>
#include <maya/MFnPlugin.h>
#include <maya/MGlobal.h>
#include <maya/MPlug.h>
#include <maya/MPlugArray.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>
#include <maya/MStringArray.h>
#include <maya/MTypeId.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

inline std::string str(const MString& s) { return {s.asChar(), s.length()}; }
inline void PrintTo(const MString& s, std::ostream* out) { *out << '"' << str(s) << '"'; }
inline void PrintTo(const MStatus& s, std::ostream* out) { *out << str(s.errorString()); }

/// The running host with an empty scene; what it tells the user is kept.
class GraphFixture : public testing::Test {
protected:
    GraphFixture() {
        static const bool started = (host::Host::instance().start({}), true);
        (void)started;
        host::setLinearUnit(host::LinearUnit::Centimetre);
        host::setAngularUnit(host::AngularUnit::Degree);
        host::setTimeUnit(host::filmUnit);
        scene.reset();
    }
    ~GraphFixture() override { scene.reset(); }

    /// What the script answers, an array's elements separated by spaces; a failing one's message.
    static std::string run(const std::string& script) {
        try {
            const host::mel::Value value = host::Host::instance().interpreter().execute(script);
            if (!value.isArray()) return value.toString();
            std::string text;
            for (const auto& element : value.toStringArray()) text += (text.empty() ? "" : " ") + element;
            return text;
        } catch (const host::mel::Error& e) {
            return std::string("Error: ") + e.what();
        }
    }

    MObject object(const std::string& name) { return host::api::Access::object(scene.findNode(name)); }
    MObject make(const char* type, const char* name) {
        return host::api::Access::object(scene.createNode(*scene.findType(type), name).get());
    }
    /// The plug that a text like "node.list[2].part" names.
    MPlug plug(const std::string& text) {
        MSelectionList list;
        MPlug found;
        if (list.add(MString(text.c_str()))) list.getPlug(0, found);
        EXPECT_FALSE(found.isNull()) << text;
        return found;
    }

    host::scene::Scene& scene = host::scene::Scene::current();
    std::vector<std::string> infos, warnings, errors;

private:
    orvo::test::MessageSink sink_{[this](host::Severity severity, std::string_view text) {
        if (severity == host::Severity::Info) infos.emplace_back(text);
        if (severity == host::Severity::Warning) warnings.emplace_back(text);
        if (severity == host::Severity::Error) errors.emplace_back(text);
    }};
};

/// A plug-in without a file: what a test registers through it is gone with it.
class TestPlugin {
public:
    TestPlugin() { plugin_.name = "testPlugin"; }
    ~TestPlugin() {
        auto& scene = host::scene::Scene::current();
        scene.reset();
        MFnPlugin fn(object);
        for (const auto& name : std::vector<std::string>(plugin_.nodeTypes))
            fn.deregisterNode(MTypeId(scene.findType(name)->id));
        for (const auto& name : std::vector<std::string>(plugin_.commands)) fn.deregisterCommand(name.c_str());
    }

private:
    host::api::Plugin plugin_;

public:
    MObject object = host::api::Access::object(std::make_shared<host::api::PluginHandle>(&plugin_));
    MFnPlugin fn{object};
};
