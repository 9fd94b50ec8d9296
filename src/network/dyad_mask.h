#pragma once
// The constraint of a run: the dyads a sampler may change, as a bit matrix. Read from a
// matrix file by the rules of the network kind (a graph's upper triangle, made symmetric; a
// digraph's off-diagonal cells), so that a graph mask allows {i,j} from either end and a
// digraph mask allows i->j alone.

#include <cstdint>
#include <string>
#include <vector>

#include "base/matrix_text.h"
#include "network/network_kind.h"

namespace vexa {

struct DyadMask {
    int32_t node_count = 0;
    int32_t row_words = 0;
    int64_t allowed_count = 0;  // dyads allowed: unordered pairs for a graph, ordered for a digraph
    std::vector<uint64_t> bits;  // n rows of row_words

    const uint64_t* row(int i) const {
        return bits.data() + static_cast<size_t>(i) * static_cast<size_t>(row_words);
    }
    bool allows(int i, int j) const { return (row(i)[j >> 6] >> (j & 63)) & 1u; }
};

// Reads the constraint file for a network of n nodes of the kind: a cell of exactly 1 allows
// the dyad (for a graph, a cell above the diagonal). Throws InputFileError naming the
// constraint file, as the network readers do; `notes` as for the network readers.
DyadMask read_dyad_mask(const std::string& path, int n, NetworkKind kind,
                        MatrixNotes* notes = nullptr);

// The mask of an n x n matrix held in memory, row by row, read by the same rules as the file.
DyadMask dyad_mask_from_matrix(const std::vector<double>& values, int n, NetworkKind kind);

// A mask allowing exactly the listed dyads (tests and callers that build masks by hand).
DyadMask make_dyad_mask(int n, NetworkKind kind);
void allow_dyad(DyadMask& mask, NetworkKind kind, int i, int j);

}  // namespace vexa
