#pragma once

#include "mesh/MeshQueries.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <vector>

namespace host::mesh {

/// The queries that belong to the shape of a mesh, kept from one call to the next: for the mesh as it is and as it was
/// last placed. A mesh that changes gets a new cache; copies of a mesh share one. May be used from several threads.
class QueryCache {
public:
    QueryCache();
    ~QueryCache();
    QueryCache(const QueryCache&) = delete;
    QueryCache& operator=(const QueryCache&) = delete;

    /// The queries of the mesh that the cache belongs to. They get their tree at once when `accelerate` is set, else
    /// when they are asked for again. Throws std::bad_alloc.
    std::shared_ptr<const MeshQueries> get(const PolyMesh& mesh, const Imath::M44d& placement, double tolerance,
                                           bool accelerate);
    /// Frees what is kept.
    void clear();

    struct Usage {
        std::size_t trees = 0, triangles = 0, bytes = 0;
    };
    Usage usage() const;
    /// That of all meshes together.
    static Usage totalUsage();
    static void clearAll();

private:
    struct Entry {
        Imath::M44d placement;
        std::shared_ptr<MeshQueries> queries;
    };
    mutable std::mutex mutex_;
    std::vector<Entry> entries_; // the last used one first
};

} // namespace host::mesh
