#pragma once

#include "scene/Node.h"

#include <memory>

namespace host::mel {

/// What an expression node does: its internalExpression is compiled when it is set, and run when an output is asked
/// for. One that cannot be read, or that calls more than arithmetic, is reported with the node's name and only kept:
/// its outputs stay as they were.
std::unique_ptr<scene::NodeBehavior> makeExpressionNode(scene::Node& node);

} // namespace host::mel
