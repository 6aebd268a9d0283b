#include "SpriteOrder.h"

#include "Common/Undestroyed.h"

#include <algorithm>
#include <limits>
#include <system_error>

namespace orvo {
namespace {

/// The part of its distance by which an eye may move before sorting begins: sprites that change places within it differ
/// in their distance by less than a thousandth of their size.
constexpr double nearMove = 0.001;

struct Keyed {
    double distance2;
    std::uint32_t sprite;
    bool operator<(const Keyed& other) const {
        return distance2 > other.distance2 || (distance2 == other.distance2 && sprite < other.sprite);
    }
};

/// Sorts what is nearly sorted.
void insertionSort(std::vector<Keyed>& keys) {
    for (std::size_t i = 1; i < keys.size(); ++i) {
        const Keyed key = keys[i];
        std::size_t at = i;
        for (; at > 0 && key < keys[at - 1]; --at) keys[at] = keys[at - 1];
        keys[at] = key;
    }
}

std::vector<double> distances2(const SpriteCentres& centres, const Vector3& eye) {
    std::vector<double> squares(centres.count());
    for (std::size_t i = 0; i < squares.size(); ++i) {
        const double x = centres.x[i] - eye.x, y = centres.y[i] - eye.y, z = centres.z[i] - eye.z;
        squares[i] = x * x + y * y + z * z;
    }
    // What is nowhere is drawn first.
    for (double& square : squares)
        if (!(square <= std::numeric_limits<double>::max())) square = std::numeric_limits<double>::max();
    return squares;
}

} // namespace

SpriteCentres::SpriteCentres(const ParticleCloudGeom& geom) {
    const auto sprites = static_cast<std::size_t>(std::max(geom.numSprites, 0));
    for (auto* axis : {&x, &y, &z}) axis->reserve(sprites);
    Vector3 low{1e300, 1e300, 1e300}, high{-1e300, -1e300, -1e300};
    for (std::size_t i = 0; i < sprites; ++i) {
        const float* p = &geom.positions[i * 12];
        x.push_back(p[0]);
        y.push_back(p[1]);
        z.push_back(p[2]);
        low = {std::min(low.x, double(p[0])), std::min(low.y, double(p[1])), std::min(low.z, double(p[2]))};
        high = {std::max(high.x, double(p[0])), std::max(high.y, double(p[1])), std::max(high.z, double(p[2]))};
    }
    if (sprites == 0) return;
    middle = (low + high) * 0.5;
    radius = length(high - low) * 0.5;
}

double SpriteCentres::distanceFrom(const Vector3& point) const {
    return std::max(length(point - middle) - radius, 0.1 * radius);
}

void sortBackToFront(const SpriteCentres& centres, const Vector3& eye, SpriteVertices& vertices) {
    const std::size_t count = centres.count();
    vertices.resize(count * 4);
    if (count == 0) return;
    const std::vector<double> squares = distances2(centres, eye);
    const auto [nearest, farthest] = std::minmax_element(squares.begin(), squares.end());
    // As many buckets as there are sprites, of equal widths: what little is out of order within them is then moved.
    // Rounding is monotone, so that no sprite comes into a bucket beyond one that it precedes.
    const double far = *farthest, width = far - *nearest;
    const double wanted = static_cast<double>(count - 1) / width, scale = wanted < 1e300 ? wanted : 0.0;
    std::vector<std::uint32_t> bucketOf(count), ends(count + 1, 0);
    for (std::size_t i = 0; i < count; ++i) {
        bucketOf[i] = std::min(static_cast<std::uint32_t>((far - squares[i]) * scale), std::uint32_t(count - 1));
        ++ends[bucketOf[i] + 1];
    }
    std::uint32_t crowded = 0;
    for (std::size_t b = 1; b <= count; ++b) {
        crowded = std::max(crowded, ends[b]);
        ends[b] += ends[b - 1];
    }
    std::vector<Keyed> keys(count);
    for (std::size_t i = 0; i < count; ++i) keys[ends[bucketOf[i]]++] = {squares[i], static_cast<std::uint32_t>(i)};
    if (crowded > 64)
        std::sort(keys.begin(), keys.end());
    else
        insertionSort(keys);

    std::uint16_t* vertex = vertices.data();
    for (const Keyed& key : keys)
        for (std::uint32_t corner = 0; corner < 4; ++corner)
            *vertex++ = static_cast<std::uint16_t>(key.sprite * 4 + corner);
}

void SpriteSort::run() noexcept {
    State expected = State::Waiting;
    if (!state_.compare_exchange_strong(expected, State::Running, std::memory_order_acq_rel)) return;
    try {
        sortBackToFront(*centres_, eye_, vertices_);
    } catch (...) { // out of memory
        vertices_.clear();
    }
    state_.store(State::Done, std::memory_order_release);
    state_.notify_all();
}

SpriteVertices SpriteSort::take() {
    run();
    for (State state = state_.load(std::memory_order_acquire); state != State::Done;
         state = state_.load(std::memory_order_acquire))
        state_.wait(state, std::memory_order_acquire);
    if (vertices_.size() != centres_->count() * 4) sortBackToFront(*centres_, eye_, vertices_);
    return std::move(vertices_);
}

std::shared_ptr<SpriteSorter> SpriteSorter::shared() {
    auto& known = undestroyed<std::weak_ptr<SpriteSorter>>();
    if (auto sorter = known.lock()) return sorter;
    std::shared_ptr<SpriteSorter> sorter(new SpriteSorter);
    known = sorter;
    return sorter;
}

SpriteSorter::~SpriteSorter() {
    undestroyed<std::weak_ptr<SpriteSorter>>().reset();
    thread_.request_stop();
    if (thread_.joinable()) thread_.join();
}

std::shared_ptr<SpriteSort> SpriteSorter::begin(std::shared_ptr<const SpriteCentres> centres, const Vector3& eye) {
    auto sort = std::make_shared<SpriteSort>(std::move(centres), eye);
    try {
        if (!thread_.joinable()) thread_ = std::jthread([this](const std::stop_token& stop) { work(stop); });
    } catch (const std::system_error&) {
        sort->run();
        return sort;
    }
    {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(sort);
    }
    changed_.notify_one();
    return sort;
}

void SpriteSorter::work(const std::stop_token& stop) {
    for (;;) {
        std::shared_ptr<SpriteSort> next;
        {
            std::unique_lock lock(mutex_);
            if (!changed_.wait(lock, stop, [this] { return !waiting_.empty(); })) return;
            next = waiting_.front().lock();
            waiting_.pop_front();
        }
        if (stop.stop_requested()) return;
        if (next) next->run();
    }
}

void SpriteOrder::sortFor(const Vector3& eye) {
    if (sortedFor_ == eye) return;
    if (pending_ && pending_->eye() == eye) return use(pending_->take(), eye);
    sortedFor_.reset(); // nothing is sorted while memory may run out
    SpriteVertices vertices = std::move(vertices_);
    sortBackToFront(*centres_, eye, vertices);
    use(std::move(vertices), eye);
}

void SpriteOrder::follow(const Vector3& eye, SpriteSorter& sorter) {
    stays_ = lastEye_ == eye;
    lastEye_ = eye;
    if (!pending_ && (stays_ || !(movedTo(eye) < nearMove))) pending_ = sorter.begin(centres_, eye);
}

bool SpriteOrder::catchUp() {
    const unsigned before = revision_;
    if (stays_)
        sortFor(*lastEye_);
    else if (pending_ && pending_->isDone())
        use(pending_->take(), pending_->eye());
    return revision_ != before;
}

void SpriteOrder::use(SpriteVertices vertices, const Vector3& eye) {
    vertices_ = std::move(vertices);
    sortedFor_ = eye; // which may be the pending one's
    pending_.reset();
    ++revision_;
}

double SpriteOrder::movedTo(const Vector3& eye) const {
    return length(eye - *sortedFor_) / centres_->distanceFrom(eye);
}

} // namespace orvo
