#pragma once

#include <cstddef>

// The address sanitizer tells of things that are used when they are gone only where each has memory of its own.
#if defined(__SANITIZE_ADDRESS__)
#define ORVO_CELL_BLOCKS 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ORVO_CELL_BLOCKS 0
#endif
#endif
#ifndef ORVO_CELL_BLOCKS
#define ORVO_CELL_BLOCKS 1
#endif

namespace host::scene {

/// Memory for things of one size, side by side in blocks of two megabytes: what is made one after the other lies one
/// after the other, and a graph of a hundred thousand nodes is walked without a miss of the address cache at each.
/// Blocks go back when nothing is left in them. One thread at a time.
class CellBlocks {
public:
    /// `size` and `alignment` are those of all that it gives.
    CellBlocks(std::size_t size, std::size_t alignment);
    CellBlocks(const CellBlocks&) = delete;
    CellBlocks& operator=(const CellBlocks&) = delete;

    void* take();
    void give(void* place) noexcept;
    std::size_t blocks() const { return blocks_; }

private:
    struct Block;
    struct Free {
        Free* next;
    };
    static Block& blockOf(void* place);
    void enter(Block& block);
    void leave(Block& block);

    std::size_t size_, first_; ///< of a place; where the first one of a block begins
    Block* open_ = nullptr;    ///< those with room
    std::size_t blocks_ = 0;
};

/// Memory of `size` bytes, side by side in blocks with all that has that size; what is large has memory of its own.
void* takeInBlocks(std::size_t size);
/// Gives it back; `size` is what it was taken with.
void giveInBlocks(void* place, std::size_t size) noexcept;

/// Has containers and std::allocate_shared keep what they hold in such blocks.
template <class T>
struct BlockAllocator {
    static_assert(alignof(T) <= sizeof(void*), "places in blocks have the alignment of a pointer");
    using value_type = T;
    BlockAllocator() = default;
    template <class Other>
    BlockAllocator(const BlockAllocator<Other>&) {} // NOLINT(google-explicit-constructor): as allocators convert
    T* allocate(std::size_t count) { return static_cast<T*>(takeInBlocks(count * sizeof(T))); }
    void deallocate(T* place, std::size_t count) noexcept { giveInBlocks(place, count * sizeof(T)); }
    template <class Other>
    bool operator==(const BlockAllocator<Other>&) const {
        return true;
    }
};

} // namespace host::scene
