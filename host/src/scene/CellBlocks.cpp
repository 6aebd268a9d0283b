#include "scene/CellBlocks.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>

#include <sys/mman.h>

namespace host::scene {
namespace {

constexpr std::size_t blockSize = std::size_t{2} << 20; ///< a large page of the processor

} // namespace

struct CellBlocks::Block {
    Block *next = nullptr, *previous = nullptr; ///< among those with room
    Free* free = nullptr;                       ///< places that were given back
    std::size_t fresh = 0;                      ///< where those begin that nobody has had yet
    std::size_t used = 0;
};

CellBlocks::CellBlocks(std::size_t size, std::size_t alignment)
    : size_((size + alignment - 1) / alignment * alignment),
      first_((sizeof(Block) + alignment - 1) / alignment * alignment) {}

CellBlocks::Block& CellBlocks::blockOf(void* place) {
    return *reinterpret_cast<Block*>(reinterpret_cast<std::uintptr_t>(place) / blockSize * blockSize);
}

void CellBlocks::enter(Block& block) {
    block.previous = nullptr;
    block.next = open_;
    if (open_) open_->previous = &block;
    open_ = &block;
}

void CellBlocks::leave(Block& block) {
    (block.previous ? block.previous->next : open_) = block.next;
    if (block.next) block.next->previous = block.previous;
}

void* CellBlocks::take() {
    if (!open_) {
        void* memory = std::aligned_alloc(blockSize, blockSize);
        if (!memory) throw std::bad_alloc();
        // A small scene touches a part of its first block, and need not have all of it.
        if (blocks_ > 0) madvise(memory, blockSize, MADV_HUGEPAGE);
        ++blocks_;
        auto* block = new (memory) Block;
        block->fresh = first_;
        enter(*block);
    }
    Block& block = *open_;
    ++block.used;
    void* place = block.free;
    if (place) {
        block.free = block.free->next;
    } else {
        place = reinterpret_cast<std::byte*>(&block) + block.fresh;
        block.fresh += size_;
    }
    if (!block.free && block.fresh + size_ > blockSize) leave(block);
    return place;
}

void CellBlocks::give(void* place) noexcept {
    Block& block = blockOf(place);
    const bool full = !block.free && block.fresh + size_ > blockSize;
    block.free = new (place) Free{block.free};
    if (full) enter(block);
    // The last one stays for what comes next.
    if (--block.used > 0 || blocks_ == 1) return;
    leave(block);
    --blocks_;
    block.~Block();
    std::free(&block);
}

namespace {

#if ORVO_CELL_BLOCKS
constexpr std::size_t unit = sizeof(void*), largest = 1024;

bool inBlocks(std::size_t size) { return size > 0 && size <= largest; }

CellBlocks& blocksOf(std::size_t size) {
    // Never destroyed: nodes end with the process.
    static auto& all = *new std::array<std::unique_ptr<CellBlocks>, largest / unit + 1>;
    auto& blocks = all[(size + unit - 1) / unit];
    if (!blocks) blocks = std::make_unique<CellBlocks>(size, unit);
    return *blocks;
}
#endif

} // namespace

void* takeInBlocks(std::size_t size) {
#if ORVO_CELL_BLOCKS
    if (inBlocks(size)) return blocksOf(size).take();
#endif
    return ::operator new(size);
}

void giveInBlocks(void* place, std::size_t size) noexcept {
#if ORVO_CELL_BLOCKS
    if (inBlocks(size)) return blocksOf(size).give(place);
#endif
    ::operator delete(place);
}

} // namespace host::scene
