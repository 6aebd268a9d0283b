#pragma once

#include "base/Messages.h"
#include "files/SceneReader.h"
#include "files/SceneWriter.h"
#include "kit/MessageSink.h"
#include "kit/Places.h"
#include "scene/Evaluation.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

/// A test that opens scenes: starts with a new scene, and collects what the user would be told.
class SceneFileFixture : public testing::Test {
protected:
    void SetUp() override { scene.reset(); }
    void TearDown() override {
        std::error_code ignored;
        if (!folder_.empty()) std::filesystem::remove_all(folder_, ignored);
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
    std::filesystem::path temporary(const std::string& name) const {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        std::string folder = std::string(test->test_suite_name()) + "." + test->name();
        for (char& c : folder)
            if (c == '/') c = '_';
        folder_ = std::filesystem::path(testing::TempDir()) / (folder + "-" + std::to_string(getpid()));
        std::filesystem::create_directories(folder_);
        return folder_ / name;
    }
    static void put(const std::filesystem::path& file, const std::string& bytes) {
        std::ofstream(file, std::ios::binary) << bytes;
    }
    static std::string get(const std::filesystem::path& file) {
        std::ifstream in(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }

    host::scene::Scene& scene = host::scene::Scene::current();
    std::vector<std::string> messages;
    std::vector<host::Severity> severities;

private:
    orvo::test::MessageSink sink_{[this](host::Severity severity, std::string_view text) {
        messages.emplace_back(text);
        severities.push_back(severity);
    }};
    mutable std::filesystem::path folder_; ///< of files; made when one is asked for
};
