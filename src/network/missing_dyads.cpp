#include "network/missing_dyads.h"

namespace vexa {

MissingDyads missing_dyads_of(std::vector<uint64_t> noted, NetworkKind kind, const DyadMask* mask) {
    MissingDyads missing;
    missing.kind = kind;
    std::sort(noted.begin(), noted.end());
    noted.erase(std::unique(noted.begin(), noted.end()), noted.end());
    if (mask != nullptr) {
        std::erase_if(noted, [&](uint64_t key) {
            return !mask->allows(MissingDyads::first(key), MissingDyads::second(key));
        });
    }
    missing.keys = std::move(noted);
    return missing;
}

}  // namespace vexa
