#pragma once

namespace orvo {

/// What every node that can be exported offers beside its host base class.
class ExportNode {
public:
    virtual ~ExportNode() = default;
    /// Whether the artist left the node switched on.
    virtual bool isEnabled() = 0;
};

} // namespace orvo
