#pragma once

#include <cstddef>

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

/// Has std::allocate_shared make its objects side by side in such blocks.
template <class T>
struct BlockAllocator {
    using value_type = T;
    BlockAllocator() = default;
    template <class Other>
    BlockAllocator(const BlockAllocator<Other>&) {} // NOLINT(google-explicit-constructor): as allocators convert
    T* allocate(std::size_t count) {
        return static_cast<T*>(count == 1 ? blocks().take() : ::operator new(count * sizeof(T)));
    }
    void deallocate(T* place, std::size_t count) noexcept {
        count == 1 ? blocks().give(place) : ::operator delete(place);
    }
    template <class Other>
    bool operator==(const BlockAllocator<Other>&) const {
        return true;
    }

private:
    static CellBlocks& blocks() {
        // Never destroyed: the objects end with the process.
        static CellBlocks& all = *new CellBlocks(sizeof(T), alignof(T));
        return all;
    }
};

} // namespace host::scene
