#include "mesh/QueryCache.h"

#include <algorithm>
#include <cstring>
#include <set>

namespace host::mesh {
namespace {

// A mesh is asked in its own space, and where it is.
constexpr std::size_t kMostEntries = 2;

/// Every cache there is. Never destroyed: meshes may outlive static objects.
struct Registry {
    std::mutex mutex;
    std::set<QueryCache*> caches;
    static Registry& instance() {
        static Registry& registry = *new Registry;
        return registry;
    }
};

bool same(const Imath::M44d& a, const Imath::M44d& b) { return std::memcmp(&a, &b, sizeof a) == 0; }

} // namespace

QueryCache::QueryCache() {
    auto& registry = Registry::instance();
    std::lock_guard lock(registry.mutex);
    registry.caches.insert(this);
}

QueryCache::~QueryCache() {
    auto& registry = Registry::instance();
    std::lock_guard lock(registry.mutex);
    registry.caches.erase(this);
}

std::shared_ptr<const MeshQueries> QueryCache::get(const PolyMesh& mesh, const Imath::M44d& placement, double tolerance,
                                                   bool accelerate) {
    std::lock_guard lock(mutex_);
    const auto at = std::ranges::find_if(entries_, [&](const Entry& e) { return same(e.placement, placement); });
    const bool known = at != entries_.end();
    if (known) {
        if (at != entries_.begin()) std::rotate(entries_.begin(), at, at + 1);
    } else {
        if (entries_.size() == kMostEntries) entries_.pop_back();
        entries_.insert(entries_.begin(), {placement, std::make_shared<MeshQueries>(mesh, placement)});
    }
    auto& queries = entries_.front().queries;
    if ((known || accelerate) && !queries->accelerated(tolerance)) {
        // Others may be using the one without a tree.
        if (queries.use_count() > 1) queries = std::make_shared<MeshQueries>(mesh, placement);
        queries->accelerate(tolerance);
    }
    return queries;
}

void QueryCache::clear() {
    std::lock_guard lock(mutex_);
    entries_.clear();
}

QueryCache::Usage QueryCache::usage() const {
    std::lock_guard lock(mutex_);
    Usage usage;
    for (const Entry& entry : entries_) {
        usage.trees += entry.queries->accelerated(0);
        usage.triangles += static_cast<std::size_t>(entry.queries->numTriangles());
        usage.bytes += entry.queries->bytes();
    }
    return usage;
}

QueryCache::Usage QueryCache::totalUsage() {
    auto& registry = Registry::instance();
    std::lock_guard lock(registry.mutex);
    Usage total;
    for (const QueryCache* cache : registry.caches) {
        const Usage usage = cache->usage();
        total.trees += usage.trees;
        total.triangles += usage.triangles;
        total.bytes += usage.bytes;
    }
    return total;
}

void QueryCache::clearAll() {
    auto& registry = Registry::instance();
    std::lock_guard lock(registry.mutex);
    for (QueryCache* cache : registry.caches) cache->clear();
}

} // namespace host::mesh
