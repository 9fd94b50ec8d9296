#pragma once
// The two kinds of network the engine models, with the codes the run file gives them.

#include <cstdint>

namespace vexa {

enum class NetworkKind : int32_t { graph = 1, digraph = 2 };

}  // namespace vexa
