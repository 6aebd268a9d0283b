#pragma once

#include "CloudGeneration.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

/// In what order a cloud's sprites are drawn. Plain data; only the order that SpriteOrder keeps belongs to one thread.
namespace orvo {

/// The centres of a cloud's sprites, coordinate by coordinate, and a sphere around them.
struct SpriteCentres {
    explicit SpriteCentres(const ParticleCloudGeom& geom);
    std::size_t count() const { return x.size(); }
    /// How far off a point is from where the sprites begin; for one among them, and near them, a tenth of their radius.
    double distanceFrom(const Vector3& point) const;

    std::vector<float> x, y, z;
    Vector3 middle;
    double radius = 0.0;
};

/// Vertices of sprites, four a sprite, as an element array holds them.
using SpriteVertices = std::vector<std::uint16_t>;
static_assert(maxSprites * 4 <= 65536);

/// The sprite that is farthest from the eye comes first; sprites at one distance keep their order.
void sortBackToFront(const SpriteCentres& centres, const Vector3& eye, SpriteVertices& vertices);

/// One sorting, by whichever thread comes to it first.
class SpriteSort {
public:
    SpriteSort(std::shared_ptr<const SpriteCentres> centres, const Vector3& eye)
        : centres_(std::move(centres)), eye_(eye) {}
    const Vector3& eye() const { return eye_; }
    bool isDone() const { return state_.load(std::memory_order_acquire) == State::Done; }
    /// Sorts, unless another thread has begun to.
    void run() noexcept;
    /// The vertices, which are waited for. Once only, after which there are none.
    SpriteVertices take();

private:
    enum class State { Waiting, Running, Done };
    const std::shared_ptr<const SpriteCentres> centres_;
    const Vector3 eye_;
    std::atomic<State> state_{State::Waiting};
    SpriteVertices vertices_; ///< empty, too, when there was no memory
};

/// A thread that sorts while others draw. It ends with the last holder.
class SpriteSorter {
public:
    /// The one of all clouds.
    static std::shared_ptr<SpriteSorter> shared();
    ~SpriteSorter();
    SpriteSorter(const SpriteSorter&) = delete;
    SpriteSorter& operator=(const SpriteSorter&) = delete;

    /// Begins a sorting. Nobody does it any more once the answer is given up. Where no thread can be had it is done at
    /// once.
    std::shared_ptr<SpriteSort> begin(std::shared_ptr<const SpriteCentres> centres, const Vector3& eye);

private:
    SpriteSorter() = default;
    void work(const std::stop_token& stop);

    std::mutex mutex_;
    std::condition_variable_any changed_;
    std::deque<std::weak_ptr<SpriteSort>> waiting_;
    std::jthread thread_;
};

/// Keeps the order of one cloud's sprites right for an eye that moves.
///
/// A draw that another one will follow need not sort: another thread does, and meanwhile the order is the one for where
/// the eye was. Sprites of nearly one distance then change places some draws late, and after a jump all of them.
class SpriteOrder {
public:
    explicit SpriteOrder(const ParticleCloudGeom& geom) : centres_(std::make_shared<SpriteCentres>(geom)) {}

    /// Whether there is an order, right or not.
    bool exists() const { return sortedFor_.has_value(); }
    bool isRightFor(const Vector3& eye) const { return sortedFor_ == eye; }
    /// Makes it right for the eye, at once.
    void sortFor(const Vector3& eye);
    /// Lets the order that exists follow the eye: another thread begins to sort when that has moved enough to matter.
    void follow(const Vector3& eye, SpriteSorter& sorter);
    /// Takes what has been sorted since; for an eye that was the same at the last two calls of follow(), it sorts
    /// here what is not there yet, so that the order becomes right.
    /// @return whether the order has changed
    bool catchUp();

    const SpriteVertices& vertices() const { return vertices_; }
    /// Another number after each change of the vertices.
    unsigned revision() const { return revision_; }

private:
    void use(SpriteVertices vertices, const Vector3& eye);
    /// How far the eye has moved from where the order is right, in parts of its distance.
    double movedTo(const Vector3& eye) const;

    std::shared_ptr<const SpriteCentres> centres_;
    std::shared_ptr<SpriteSort> pending_;
    std::optional<Vector3> lastEye_, sortedFor_;
    bool stays_ = false; ///< whether the eye was the same at the last two calls of follow()
    SpriteVertices vertices_;
    unsigned revision_ = 0;
};

} // namespace orvo
