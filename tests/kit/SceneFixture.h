#pragma once

#include "base/Messages.h"
#include "base/Units.h"
#include "commands/Commands.h"
#include "kit/MessageSink.h"
#include "mel/Interpreter.h"
#include "mesh/PolyMesh.h"
#include "scene/Evaluation.h"
#include "scene/MeshNode.h"
#include "scene/Scene.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

/// A new scene with the commands that work on it.
class SceneFixture : public testing::Test {
protected:
    SceneFixture() {
        host::mel::registerLanguageCommands(mel);
        host::mel::registerSceneCommands(mel);
        host::setLinearUnit(host::LinearUnit::Centimetre);
        host::setAngularUnit(host::AngularUnit::Degree);
        host::setTimeUnit(host::filmUnit);
        scene.reset();
    }
    ~SceneFixture() override { scene.reset(); }

    /// What the last statement answers, an array's elements separated by spaces; a failed one's message.
    std::string run(const std::string& script) {
        try {
            const host::mel::Value value = mel.execute(script);
            std::string text;
            if (!value.isArray()) return value.toString();
            for (const auto& element : value.toStringArray()) text += (text.empty() ? "" : " ") + element;
            return text;
        } catch (const host::mel::Error& e) {
            return std::string("Error: ") + e.what();
        }
    }

    /// The numbers of the last statement's answer.
    std::vector<double> numbers(const std::string& script) {
        std::vector<double> found = mel.execute(script).toFloatArray();
        // Sines of right angles leave noise that no test is about.
        for (double& v : found)
            if (std::abs(v) < 1e-12) v = 0;
        return found;
    }

    host::mel::Interpreter mel;
    host::scene::Scene& scene = host::scene::Scene::current();
    std::vector<std::string> complaints;

private:
    orvo::test::MessageSink sink_{[this](host::Severity severity, std::string_view text) {
        if (severity == host::Severity::Warning || severity == host::Severity::Error) complaints.emplace_back(text);
    }};
};

/// One case of a table: what is run, and what it answers.
struct ScriptCase {
    const char* name;
    const char* script;
    const char* answer;
    friend void PrintTo(const ScriptCase& c, std::ostream* out) { *out << c.name; }
};
inline std::string caseName(const testing::TestParamInfo<ScriptCase>& info) { return info.param.name; }
