#include "SkyTool/clouds/CloudDomeWorkers.h"
#include "kit/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <tinyxml.h>

#include <algorithm>
#include <cmath>
#include <condition_variable>
#include <cstdio>
#include <filesystem>
#include <mutex>
#include <system_error>
#include <thread>

using namespace orvo;
using testing::ElementsAre;

namespace {

/// A template of several shapes that overlap so far that sprites come out.
CloudTemplate cloudOf(double radius, std::uint32_t seed) {
    CloudTemplate cloud;
    cloud.settings.spriteDensity = 2000 / std::pow(2 * radius / 1e5, 3); // 2000 candidates
    cloud.settings.spriteSize = radius / 500;
    cloud.shapes = {{}, {500, 3000, -200}, radius, seed};
    for (int i = 0; i < 6; ++i) {
        const double s = 1 / (radius * (0.6 + 0.05 * i));
        CloudShapeSphere sphere{{{{s, 0, 0, 0}, {0, 1.5 * s, 0, 0}, {0, 0, s, 0}, {0, 0, 0, 1}}}, 0.9, 0.8};
        const Vector3 centre = cloud.shapes.boundCentre + Vector3{radius * 0.1 * i, 0, 0};
        sphere.transform.m[3][0] = -centre.x * s;
        sphere.transform.m[3][1] = -centre.y * s * 1.5;
        sphere.transform.m[3][2] = -centre.z * s;
        cloud.shapes.spheres.push_back(sphere);
    }
    return cloud;
}

class DomeWorkers : public testing::Test {
protected:
    std::vector<CloudTemplate> templates_{cloudOf(9000, 11), cloudOf(14000, 22)};
    CloudShadingParams shading_;

    static std::vector<DomeCloudPlacement> places(int count) {
        std::vector<DomeCloudPlacement> list;
        for (int i = 0; i < count; ++i) list.push_back({i % 2, {i * 1000.0 - 30000, 0, i * -700.0}, 1.0, i * 0.025});
        return list;
    }
    DomeGeneration generate(int count, const ThreadStarter& start = startThread) const {
        return generateDomeClouds(templates_, places(count), shading_, start);
    }
};

/// Whether two runs gave the same clouds, bit for bit.
void expectSame(const std::vector<DomeCloud>& a, const std::vector<DomeCloud>& b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(a[i].basePosition, b[i].basePosition);
        EXPECT_EQ(a[i].geom->boundCentre, b[i].geom->boundCentre);
        EXPECT_EQ(a[i].geom->boundRadius, b[i].geom->boundRadius);
        EXPECT_EQ(a[i].geom->positions, b[i].geom->positions);
        EXPECT_EQ(a[i].geom->randoms, b[i].geom->randoms);
        EXPECT_EQ(a[i].geom->opacities, b[i].geom->opacities);
        EXPECT_EQ(a[i].geom->shadowCube0, b[i].geom->shadowCube0);
        EXPECT_EQ(a[i].geom->shadowCube1, b[i].geom->shadowCube1);
    }
}

/// Starts threads that count as alive until somebody begins to wait for them.
class CountingStarter {
public:
    std::jthread start(std::function<void()> work) {
        if (refuse && refuse(alive_, calls_++)) {
            throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
        }
        ++alive_;
        if (ended_) { // the first thread after a wait
            batches.push_back(0);
            ended_ = false;
        }
        ++batches.back();
        return std::jthread([this, work](const std::stop_token& stop) {
            work();
            std::unique_lock lock(mutex_);
            std::condition_variable_any().wait(lock, stop, [] { return false; });
            --alive_;
            ended_ = true;
        });
    }
    operator ThreadStarter() {
        return [this](std::function<void()> work) { return start(std::move(work)); };
    }

    std::function<bool(int alive, int calls)> refuse;
    std::vector<int> batches; ///< threads that were alive together

private:
    std::mutex mutex_;
    std::atomic<int> alive_ = 0;
    std::atomic<bool> ended_ = true;
    int calls_ = 0;
};

} // namespace

// Catches clouds that share a generator or a record, and an order that follows the threads' ends.
TEST_F(DomeWorkers, GiveTheSameCloudsWithAnyNumberOfThreads) {
    const DomeGeneration together = generate(70);
    EXPECT_EQ(together.started, 70u);
    ASSERT_EQ(together.clouds.size(), 70u);
    EXPECT_GT(together.clouds[0].geom->numSprites, 20);
    EXPECT_FALSE(together.clouds[0].geom->shadowCube0.empty());
    expectSame(together.clouds, generate(70).clouds);
    const auto oneByOne = generate(70, [](const std::function<void()>& work) {
        work();
        return std::jthread();
    });
    expectSame(together.clouds, oneByOne.clouds);
}

// Catches settings that do not reach the generation, or reach it in metres, and shapes of another template or place.
TEST_F(DomeWorkers, GenerateWhatTheTemplatesSettingsSay) {
    shading_.sunDir = {0.6, 0, -0.8};
    for (CloudTemplate& cloud : templates_) {
        cloud.settings.enableGroundFade = true;
        cloud.settings.groundFadeStart = 70;
        cloud.settings.groundFadeEnd = -10;
    }
    const auto clouds = generate(4).clouds;
    ASSERT_EQ(clouds.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i) {
        const DomeCloudPlacement place = places(4)[i];
        const CloudTemplate& source = templates_[i % 2];
        const auto geom =
            GenerateSprites(placedShapes(source.shapes, place.position, place.angle), source.settings.spriteDensity,
                            i % 2 ? 2800 : 1800, true, {0.6, 0, -0.8}, true, 7000, -1000);
        EXPECT_GT(geom->numSprites, 5);
        EXPECT_EQ(clouds[i].geom->positions, geom->positions);
        EXPECT_EQ(clouds[i].geom->boundRadius, geom->boundRadius);
        EXPECT_EQ(clouds[i].geom->shadowCube1, geom->shadowCube1);
    }
}

// Catches more than 64 threads at a time, and a batch that begins before the last one has ended.
TEST_F(DomeWorkers, RunInBatchesOf64) {
    CountingStarter counting;
    EXPECT_EQ(generate(150, counting).started, 150u);
    EXPECT_THAT(counting.batches, ElementsAre(64, 64, 22));
}

// Catches clouds that are lost, and threads that are left running, when a thread cannot be started or runs out of
// memory.
TEST_F(DomeWorkers, WaitForTheOpenBatchWhenAThreadCannotBeStarted) {
    CountingStarter atMostFive;
    atMostFive.refuse = [](int alive, int) { return alive == 5; };
    const DomeGeneration crowded = generate(13, atMostFive);
    EXPECT_EQ(crowded.started, 13u);
    EXPECT_THAT(atMostFive.batches, ElementsAre(5, 5, 3));
    expectSame(crowded.clouds, generate(13).clouds);

    CountingStarter never;
    never.refuse = [](int, int) { return true; };
    const DomeGeneration alone = generate(13, never);
    EXPECT_EQ(alone.started, 13u);
    expectSame(alone.clouds, crowded.clouds);

    CountingStarter untilSeven;
    untilSeven.refuse = [](int, int calls) { return calls >= 7; };
    const DomeGeneration some = generate(13, untilSeven);
    expectSame(some.clouds, crowded.clouds);
    EXPECT_EQ(crowded.failed + alone.failed + some.failed, 0u);

    // Threads that do nothing stand for those that ran out of memory beside the others.
    const DomeGeneration again = generate(13, [](const std::function<void()>&) { return std::jthread(); });
    expectSame(again.clouds, crowded.clouds);
}

// Catches work that cannot be given up, that goes on afterwards, or whose progress goes back or is told by other
// threads; clouds that are others because somebody watched.
TEST_F(DomeWorkers, ToldOfTheirProgressMayBeGivenUp) {
    const auto caller = std::this_thread::get_id();
    std::size_t last = 0;
    const auto rising = [&](std::size_t done, std::size_t all) {
        EXPECT_EQ(std::this_thread::get_id(), caller);
        EXPECT_EQ(all, 150u);
        EXPECT_GE(done, last);
        last = done;
        return true;
    };
    const auto places = this->places(150);
    const DomeGeneration watched = generateDomeClouds(templates_, places, shading_, startThread, rising);
    EXPECT_EQ(last, 150u);
    EXPECT_FALSE(watched.givenUp);
    expectSame(watched.clouds, generate(150).clouds);
    int asked = 0;
    const DomeGeneration early = generateDomeClouds(templates_, places, shading_, startThread,
                                                    [&](std::size_t, std::size_t) { return ++asked < 1; });
    EXPECT_TRUE(early.givenUp);
    EXPECT_EQ(asked, 1) << "nobody is asked again";
    EXPECT_LE(early.started, 64u);
    EXPECT_EQ(early.failed, 0u);
}

// Catches empty clouds in the list, a memory count without the padding or after the scaling, and counts of clouds that
// leave out the empty ones.
TEST_F(DomeWorkers, BuildCountsCloudsAndBytes) {
    templates_.push_back(cloudOf(12000, 33));
    templates_[2].shapes.spheres.clear();
    for (const bool selfShadow : {true, false}) {
        shading_.enableSelfShadow = selfShadow;
        const DomeBuild dome = buildDome(templates_, {.scale = 2, .density = 1, .outerRadius = 100000}, shading_);
        EXPECT_GT(dome.clouds.size(), 3u);
        EXPECT_GT(dome.started, dome.clouds.size());
        EXPECT_FALSE(dome.limitReached);
        std::size_t bytes = 0;
        for (const DomeCloud& cloud : dome.clouds) {
            EXPECT_THAT(cloud.radius, testing::AnyOf(18000, 28000));
            bytes = (bytes + 127) / 128 * 128 + std::size_t(cloud.geom->numSprites) * (selfShadow ? 16 : 8);
        }
        EXPECT_EQ(dome.dataSize, bytes);
    }
    EXPECT_TRUE(buildDome({}, {.outerRadius = 100000}, shading_).clouds.empty());
    EXPECT_TRUE(buildDome(templates_, {.scale = 1e-3, .outerRadius = 100000}, shading_).limitReached);
}

// Catches an export whose readers put the sprites somewhere else: bounds that are not scaled with them, or a frame that
// is not the bounds'. Read from the written file and bytes alone: in metres,
// cullingSpherePos + geomBoundSpherePos + c / 32767 x geomBoundSphereRadius.
TEST_F(DomeWorkers, ExportedSpritesAreFoundWhereTheyAre) {
    const orvo::test::TemporaryFolder folder;
    for (const double scale : {1.0, 2.5}) {
        const DomeBuild dome = buildDome(templates_, {.scale = scale, .outerRadius = 100000}, shading_);
        ASSERT_FALSE(dome.clouds.empty());
        const std::string path = (folder / "dome.xml").string();
        std::vector<unsigned char> bytes;
        OutputFile file(path, "wt");
        file.print("<Clouds>\n");
        for (const DomeCloud& cloud : dome.clouds)
            ASSERT_TRUE(saveCloudToXml(file, "", bytes, exportedDomeCloud(cloud), shading_));
        file.print("</Clouds>\n");
        ASSERT_TRUE(file.close());

        TiXmlDocument document(path.c_str());
        ASSERT_TRUE(document.LoadFile());
        const TiXmlElement* element = document.RootElement()->FirstChildElement("ParticleCloud");
        for (const DomeCloud& cloud : dome.clouds) {
            ASSERT_TRUE(element);
            const auto number = [&](const char* name) { return std::atof(element->Attribute(name)); };
            const auto point = [&](const char* name) {
                Vector3 p;
                EXPECT_EQ(std::sscanf(element->Attribute(name), "%lf %lf %lf", &p.x, &p.y, &p.z), 3);
                return p;
            };
            EXPECT_EQ(number("enableDomePositioning"), 1);
            EXPECT_EQ(number("numSprites"), cloud.geom->numSprites);
            EXPECT_EQ(point("cullingSpherePos").y, 0);
            const double radius = number("geomBoundSphereRadius");
            const Vector3 origin = point("cullingSpherePos") + point("geomBoundSpherePos");
            for (int i = 0; i < cloud.geom->numSprites; ++i) {
                const unsigned char* record = &bytes.at(std::size_t(number("vertexDataAddress")) + std::size_t(i) * 16);
                const auto coordinate = [&](int axis) {
                    return static_cast<std::int16_t>(record[axis * 2] << 8 | record[axis * 2 + 1]) / 32767.0 * radius;
                };
                const Vector3 read = origin + Vector3{coordinate(0), coordinate(1), coordinate(2)};
                const float* p = &cloud.geom->positions[std::size_t(i) * 12];
                for (const double error : {read.x - p[0] / 100.0, read.y - p[1] / 100.0, read.z - p[2] / 100.0})
                    ASSERT_LE(std::abs(error), radius / 32767 + 2e-6) << "sprite " << i;
            }
            element = element->NextSiblingElement("ParticleCloud");
        }
    }
}
