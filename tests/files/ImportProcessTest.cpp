#include "files/ImportProcess.h"

#include "files/MeshImport.h"
#include "files/ModelMessage.h"
#include "kit/Places.h"
#include "kit/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <limits>
#include <string>
#include <thread>

namespace host::files {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::AllOf;
using testing::HasSubstr;

class ImportProcess : public testing::Test {
protected:
    ImportProcess() { fs::create_directories(folder_ / "model"); }
    fs::path script(const std::string& line) const {
        const fs::path file = folder_.write("reader", "#!/bin/sh\n" + line + "\n");
        fs::permissions(file, fs::perms::owner_all);
        return file;
    }
    static std::string failure(const std::function<void()>& read) {
        try {
            read();
            return "no error";
        } catch (const std::exception& e) {
            return e.what();
        }
    }
    const orvo::test::TemporaryFolder folder_;
};

// Faults: a reader that crashes, hangs or tells too much takes the host with it, keeps it waiting, or counts as a
// model.
TEST_F(ImportProcess, WhatGoesWrongInTheReaderIsTold) {
    const std::pair<const char*, const char*> cases[]{
        {"kill -KILL $$", "ended by SIGKILL"},
        {"kill -ABRT $$", "ended by SIGABRT"},
        {"kill -SEGV $$", "ended by SIGSEGV"},
        {"kill -XCPU $$", "takes longer than"},
        {"exit 3", "failed with status 3"},
        {"exec sleep 1000", "takes longer than 1 s"},
        {"yes", "meshes take more than 1 MiB"},
        {"exec >&-; exec sleep 1000", "takes longer than 1 s"},
        {"", "its meshes were not handed over"},
        {"echo some words that are no model", "its meshes were not handed over"}};
    for (const auto& [line, text] : cases)
        EXPECT_THAT(failure([&, command = line] { takeModel(runImporter(script(command), "x.obj", 1s, 1 << 20)); }),
                    HasSubstr(text))
            << line;
    EXPECT_THAT(failure([&] { runImporter(folder_ / "none", "x.obj", 1s, 1); }),
                AllOf(HasSubstr((folder_ / "none").string()), HasSubstr("cannot be started")));
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a reader was left behind";
}

// Fault: the reader goes on when the host is gone.
TEST_F(ImportProcess, TheReaderEndsWithTheHost) {
    const fs::path pipe = folder_ / "endless.obj"; // nobody ever writes to it
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const fs::path reader = fs::path(orvo::test::program()).parent_path() / "orvosky-import";
    const pid_t host = fork();
    if (host == 0) {
        failure([&] { runImporter(reader, pipe, 100s, 1); });
        _exit(0);
    }
    const auto soon = [](const std::function<bool()>& done) {
        for (int i = 0; i < 2000 && !done(); ++i) std::this_thread::sleep_for(5ms);
        return done();
    };
    const std::string task = "/proc/" + std::to_string(host) + "/task/" + std::to_string(host) + "/children";
    std::string child;
    const bool reading = soon([&] {
        if (child.empty()) std::ifstream(task) >> child;
        std::ifstream limits("/proc/" + child + "/limits");
        const std::string text{std::istreambuf_iterator<char>(limits), {}};
        return text.find("Max file size             0 ") != text.npos; // so it has come to reading
    });
    kill(host, SIGKILL);
    waitpid(host, nullptr, 0);
    EXPECT_TRUE(reading);
    EXPECT_TRUE(soon([&] { return !fs::exists("/proc/" + child); }));
}

// Fault: the reader takes all of the machine's memory.
TEST_F(ImportProcess, MemoryIsLimited) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "there is no limit with sanitizers";
#endif
    const fs::path file = folder_.write("large.fbx", "Kaydara FBX Binary  ");
    fs::resize_file(file, std::uintmax_t{5} << 30);
    EXPECT_THAT(failure([&] { readModel(file); }), AllOf(HasSubstr("large.fbx"), HasSubstr("4 GiB of memory")));
}

// Fault: a model reads files from anywhere; or those beside it no more.
TEST_F(ImportProcess, ModelsReadTheirOwnFolder) {
    const std::string triangle(reinterpret_cast<const char*>(std::array<float, 9>{0, 0, 0, 1, 0, 0, 0, 1, 0}.data()),
                               36);
    folder_.write("outside.bin", triangle);
    folder_.write("model/beside.bin", triangle);
    fs::create_symlink(folder_ / "outside.bin", folder_ / "model/link.bin");
    const auto read = [&](const std::string& buffer) {
        const fs::path file =
            folder_.write("model/a.gltf", R"({"asset":{"version":"2.0"},"scene":0,"scenes":[{"nodes":[0]}],
            "nodes":[{"mesh":0}],"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],
            "accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3"}],
            "bufferViews":[{"buffer":0,"byteLength":36}],"buffers":[{"byteLength":36,"uri":")" +
                                              buffer + "\"}]}");
        return failure([&] { readModel(file); });
    };
    EXPECT_EQ(read("beside.bin"), "no error");
    for (const std::string& place :
         {std::string("../outside.bin"), (folder_ / "outside.bin").string(), std::string("link.bin")})
        EXPECT_THAT(read(place), HasSubstr("a.gltf: ")) << place;
}

RawModel square() {
    RawModel model;
    model.nodes.resize(2);
    model.nodes[0] = {"above", -1, -1, {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}};
    model.nodes[1] = {"below", 0, 0, model.nodes[0].matrix};
    model.meshes.push_back({{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}},
                            {4},
                            {0, 1, 2, 3},
                            {},
                            {{"map1", {0, 1}, {0, 1}, {0, 1, 1, -1}}}});
    return model;
}

ImportedModel taken(const RawModel& model) {
    std::vector<char> message;
    EXPECT_TRUE(sendModel(model, [&](const void* data, std::size_t size) {
        message.insert(message.end(), static_cast<const char*>(data), static_cast<const char*>(data) + size);
        return true;
    }));
    message.pop_back();
    EXPECT_THROW(takeModel(message), ModelError);
    message.push_back('!');
    return buildModel(takeModel(message), "x.obj");
}

// Fault: what a reader that was taken over hands on is believed.
TEST_F(ImportProcess, MessagesAreChecked) {
    EXPECT_EQ(taken(square()).nodes[1].mesh->uvId(0, 0, 2), 1);
    constexpr float infinite = std::numeric_limits<float>::infinity();
    const std::function<void(RawModel&)> harms[]{[](auto& m) { m.nodes[1].name = "a\"; system(\"b"; },
                                                 [](auto& m) { m.nodes[1].name = "1a"; },
                                                 [](auto& m) { m.nodes[1].parent = 1; },
                                                 [](auto& m) { m.nodes[1].parent = -2; },
                                                 [](auto& m) { m.nodes[1].mesh = 1; },
                                                 [](auto& m) { m.nodes[1].mesh = -2; },
                                                 [](auto& m) { m.nodes[1].matrix[12] = infinite; },
                                                 [](auto& m) { m.meshes[0].points[2].y = infinite; },
                                                 [](auto& m) { m.meshes[0].connects[3] = 4; },
                                                 [](auto& m) {
                                                     m.meshes[0].counts = {2, 2};
                                                 },
                                                 [](auto& m) { m.meshes[0].normals.resize(3); },
                                                 [](auto& m) { m.meshes[0].uvSets[0].name = "a b"; },
                                                 [](auto& m) { m.meshes[0].uvSets[0].u[0] = infinite; },
                                                 [](auto& m) { m.meshes[0].uvSets[0].v.pop_back(); },
                                                 [](auto& m) { m.meshes[0].uvSets[0].ids[1] = 2; },
                                                 [](auto& m) { m.meshes[0].uvSets.push_back(m.meshes[0].uvSets[0]); },
                                                 [](auto& m) {
                                                     for (int i = 1; i < 600; ++i) {
                                                         m.nodes.push_back(m.nodes[1]);
                                                         m.nodes.back().parent = i;
                                                     }
                                                 },
                                                 [](auto& m) { m.nodes.clear(); }};
    for (const auto& harm : harms) {
        RawModel model = square();
        harm(model);
        EXPECT_NE(failure([&] { taken(model); }), "no error") << &harm - harms;
    }
}

} // namespace
} // namespace host::files
