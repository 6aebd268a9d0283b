#include "scene/CellBlocks.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <set>
#include <vector>

using host::scene::CellBlocks;

// Faults: a place that is given twice, lies over another one or over its block's end; blocks that stay when nothing is
// left in them, or go while something is.
TEST(CellBlocks, GivesEveryPlaceOnceAndBlocksBack) {
    constexpr std::size_t size = 192, alignment = 64, many = 30000; // a block of two megabytes has room for 10922
    CellBlocks blocks(size, alignment);
    std::vector<unsigned char*> places;
    const auto fill = [&] {
        while (places.size() < many) {
            auto* place = static_cast<unsigned char*>(blocks.take());
            ASSERT_EQ(reinterpret_cast<std::uintptr_t>(place) % alignment, 0u);
            std::memset(place, static_cast<int>(places.size() % 251), size);
            places.push_back(place);
        }
    };
    fill();
    EXPECT_EQ(blocks.blocks(), 3u);
    EXPECT_EQ(std::set<unsigned char*>(places.begin(), places.end()).size(), many);
    for (std::size_t i = 0; i < many; ++i) ASSERT_TRUE(places[i][0] == i % 251 && places[i][size - 1] == i % 251) << i;
    // Every other one, and in their room as many again.
    std::vector<unsigned char*> kept;
    for (std::size_t i = 0; i < many; ++i) i % 2 == 0 ? kept.push_back(places[i]) : blocks.give(places[i]);
    places = kept;
    fill();
    EXPECT_EQ(blocks.blocks(), 3u);
    EXPECT_EQ(std::set<unsigned char*>(places.begin(), places.end()).size(), many);
    for (unsigned char* place : places) blocks.give(place);
    EXPECT_EQ(blocks.blocks(), 1u);
    EXPECT_NE(blocks.take(), nullptr);
}

// Faults: sizes that share blocks or take another's; an object too large, or none, in them.
TEST(CellBlocks, ContainersOfAnySizeKeepWhatTheyHold) {
    std::vector<std::vector<int, host::scene::BlockAllocator<int>>> rows;
    for (int i = 0; i < 3000; ++i) rows.emplace_back(static_cast<std::size_t>(i % 300), i);
    for (int i = 0; i < 3000; i += 2) rows[static_cast<std::size_t>(i)].assign(static_cast<std::size_t>(i % 7), -i);
    for (int i = 0; i < 3000; ++i) {
        const auto& row = rows[static_cast<std::size_t>(i)];
        ASSERT_EQ(row.size(), static_cast<std::size_t>(i % 2 == 0 ? i % 7 : i % 300));
        for (const int value : row) ASSERT_EQ(value, i % 2 == 0 ? -i : i);
    }
}
