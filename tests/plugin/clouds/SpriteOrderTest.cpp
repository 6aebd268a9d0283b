#include "SkyTool/clouds/SpriteOrder.h"
#include "RandomClouds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <numeric>
#include <thread>

using namespace orvo;

namespace {

ParticleCloudGeom geomOf(const std::vector<Vector3>& centres) {
    ParticleCloudGeom geom;
    geom.numSprites = static_cast<std::int32_t>(centres.size());
    for (const Vector3& c : centres)
        for (int corner = 0; corner < 4; ++corner)
            for (const double v : {c.x, c.y, c.z}) geom.positions.push_back(static_cast<float>(v));
    return geom;
}

/// Back to front by the standard library's stable sort.
SpriteVertices expected(const ParticleCloudGeom& geom, const Vector3& eye) {
    std::vector<int> sprites(static_cast<std::size_t>(geom.numSprites));
    std::iota(sprites.begin(), sprites.end(), 0);
    const auto distance2 = [&](int sprite) {
        const float* p = &geom.positions[static_cast<std::size_t>(sprite) * 12];
        const Vector3 d = Vector3{p[0], p[1], p[2]} - eye;
        return dot(d, d);
    };
    std::ranges::stable_sort(sprites, std::greater(), distance2);
    SpriteVertices vertices;
    for (const int sprite : sprites)
        for (int corner = 0; corner < 4; ++corner) vertices.push_back(static_cast<std::uint16_t>(sprite * 4 + corner));
    return vertices;
}

ParticleCloudGeom fullCloud(std::uint32_t seed) {
    return std::move(*GenerateSprites(randomCloud(20, seed).set, 200000.0, 8000.0, false, {0, 1, 0}, false, 0, 0));
}

/// The eye of frame i, on its way past a cloud.
Vector3 eyeAt(int i, double stride) { return {-250000.0 + i * stride, 3000.0, 150000.0 - i * stride * 0.3}; }

} // namespace

// Faults: two sprites in the wrong order, equal distances that change places, a vertex twice or never, buckets that
// overflow when all sprites are in one of them, and numbers that are none.
TEST(SpriteOrder, IsThatOfAStableSort) {
    RandomGenerator random(50);
    const auto value = [&](double size) { return (random.RandomDouble53() - 0.5) * size; };
    std::vector<Vector3> lattice, crowd, one{{1, 2, 3}};
    for (int i = 0; i < maxSprites; ++i) {
        lattice.push_back({i / 400 * 10.0, i / 20 % 20 * 10.0, i % 20 * 10.0});
        crowd.push_back({value(1e-3), value(1e-3), value(1e-3)});
    }
    crowd[17] = {1e7, 0, 0};
    const ParticleCloudGeom geoms[] = {fullCloud(51), geomOf(lattice), geomOf(crowd), geomOf(one), geomOf({})};
    EXPECT_EQ(geoms[0].numSprites, maxSprites);
    for (const ParticleCloudGeom& geom : geoms)
        for (const Vector3& eye : {Vector3{0, 0, 0}, {95, 95, 95}, {3e5, -2e4, 1e5}, {1e9, 1e9, 0}}) {
            SpriteVertices vertices;
            sortBackToFront(SpriteCentres(geom), eye, vertices);
            ASSERT_EQ(vertices, expected(geom, eye)) << geom.numSprites << " sprites from " << eye.x;
        }
    constexpr double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
    SpriteVertices vertices;
    sortBackToFront(SpriteCentres(geomOf({{1, 0, 0}, {nan, 0, 0}, {2, 0, 0}, {0, -inf, 0}})), {}, vertices);
    EXPECT_EQ(vertices, (SpriteVertices{4, 5, 6, 7, 12, 13, 14, 15, 8, 9, 10, 11, 0, 1, 2, 3}));
}

// Faults: an order that stays late when the eye stays, or when it is wanted at once; sorting on the drawing thread
// after a jump; one that is never brought up to date on a long way; a thread that reads what is gone, when orders are
// given up in the middle of it.
TEST(SpriteOrder, FollowsAnEyeThatMoves) {
    const auto sorter = SpriteSorter::shared();
    const ParticleCloudGeom geoms[] = {fullCloud(52), fullCloud(53), fullCloud(54)};
    for (const double stride : {30.0, 3000.0, 300000.0}) {
        std::vector<SpriteOrder> orders(geoms, geoms + 3);
        Vector3 eye = eyeAt(0, stride);
        for (SpriteOrder& order : orders) order.sortFor(eye);
        int changes = 0;
        for (int frame = 1; frame < 150; ++frame) {
            eye = eyeAt(frame, stride);
            for (SpriteOrder& order : orders) {
                order.follow(eye, *sorter);
                changes += order.catchUp();
                ASSERT_EQ(order.vertices().size(), std::size_t{maxSprites} * 4);
            }
            if (frame == 100) {
                orders[1] = SpriteOrder(geoms[1]);
                orders[1].sortFor(eye);
            }
            if (frame % 10 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(5)); // as others draw
        }
        EXPECT_GT(changes, 0) << "there was something to sort on the way";
        for (std::size_t i = 0; i < 3; ++i) {
            orders[i].follow(eye, *sorter);
            orders[i].catchUp();
            EXPECT_EQ(orders[i].vertices(), expected(geoms[i], eye)) << "the eye stays";
            const Vector3 near = eye + Vector3{50, 0, 0}, far = eye + Vector3{400000, 0, 0};
            orders[i].sortFor(near);
            EXPECT_EQ(orders[i].vertices(), expected(geoms[i], near)) << "no draw will follow";
            const unsigned revision = orders[i].revision();
            orders[i].follow(far, *sorter);
            EXPECT_EQ(orders[i].revision(), revision) << "a jump: the order is the last one's";
            orders[i].follow(far, *sorter);
            EXPECT_TRUE(orders[i].catchUp());
            EXPECT_EQ(orders[i].vertices(), expected(geoms[i], far)) << "it stays there";
            EXPECT_FALSE(orders[i].catchUp());
        }
    }
}

// Faults: sorting while the eye goes on in small steps, or a revision without a change.
TEST(SpriteOrder, SortsNothingForASmallStep) {
    const ParticleCloudGeom geom = fullCloud(55);
    const auto sorter = SpriteSorter::shared();
    SpriteOrder order(geom);
    EXPECT_FALSE(order.exists());
    order.sortFor(eyeAt(0, 0));
    const SpriteVertices first = order.vertices();
    const unsigned revision = order.revision();
    order.sortFor(eyeAt(0, 0));
    EXPECT_EQ(order.revision(), revision);
    // Ten centimetres at a distance of some kilometres; what another thread had to do would be done then.
    order.follow(eyeAt(1, 10), *sorter);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(order.catchUp());
    EXPECT_FALSE(order.isRightFor(eyeAt(1, 10)));
    EXPECT_EQ(order.vertices(), first);
}
