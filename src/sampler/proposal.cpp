#include "sampler/chain.h"

namespace vexa {

Proposal proposal_of(int32_t code, NetworkKind kind) {
    switch (code) {
        case 1: return Proposal::swap;
        case 2: return kind == NetworkKind::digraph ? Proposal::receiver_move : Proposal::toggle;
        case 3: return Proposal::tie_no_tie;
        case 4: return kind == NetworkKind::graph ? Proposal::closure : Proposal::tie_no_tie;
        default: return Proposal::toggle;
    }
}

const char* proposal_name(Proposal proposal, NetworkKind kind) {
    switch (proposal) {
        case Proposal::toggle: return "toggle";
        case Proposal::swap: return kind == NetworkKind::digraph ? "arc swap" : "edge swap";
        case Proposal::receiver_move: return "receiver move";
        case Proposal::tie_no_tie: return "tie/no-tie";
        case Proposal::closure: return "closure";
        case Proposal::missing_toggle: return "missing-dyad toggle";
    }
    return "toggle";
}

}  // namespace vexa
