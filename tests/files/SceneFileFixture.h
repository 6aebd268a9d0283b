#pragma once

#include "base/Messages.h"
#include "files/SceneReader.h"
#include "files/SceneWriter.h"
#include "kit/MessageSink.h"
#include "kit/Places.h"
#include "kit/TemporaryFolder.h"
#include "scene/Evaluation.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

/// A test that opens scenes: starts with a new scene, and collects what the user would be told.
class SceneFileFixture : public testing::Test {
protected:
    void SetUp() override { scene.reset(); }
    void TearDown() override {
        scene.reset();
        host::files::FileUnits().makeCurrent();
    }

    host::files::SceneReader::Result open(const std::string& text, host::files::SceneReader::Options options = {}) {
        return host::files::SceneReader(scene, std::move(options)).readText(text, "test.ma");
    }
    static std::string sample(const std::string& name) { return orvo::test::testData("scenes/" + name); }
    double number(const std::string& plug) {
        host::scene::Cell& cell = scene.findPlug(plug);
        host::scene::evaluate(cell);
        return cell.number();
    }
    std::string text(const std::string& plug) { return std::get<std::string>(scene.findPlug(plug).value); }
    std::string allMessages() const {
        std::string all;
        for (const auto& m : messages) all += m + "\n";
        return all;
    }
    std::filesystem::path temporary(const std::string& name) const { return folder_ / name; }
    static void put(const std::filesystem::path& file, const std::string& bytes) { orvo::test::write(file, bytes); }
    static std::string get(const std::filesystem::path& file) { return orvo::test::content(file); }

    host::scene::Scene& scene = host::scene::Scene::current();
    std::vector<std::string> messages;
    std::vector<host::Severity> severities;

private:
    orvo::test::MessageSink sink_{[this](host::Severity severity, std::string_view text) {
        messages.emplace_back(text);
        severities.push_back(severity);
    }};
    orvo::test::TemporaryFolder folder_;
};
