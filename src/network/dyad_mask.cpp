#include "network/dyad_mask.h"

#include "base/errors.h"
#include "base/matrix_text.h"

namespace vexa {

DyadMask make_dyad_mask(int n, NetworkKind) {
    if (n < 1) {
        throw SettingError(
            format_message("vexa: a network needs at least one node (node count %d)", n));
    }
    DyadMask mask;
    mask.node_count = n;
    mask.row_words = (n + 63) / 64;
    mask.bits.assign(static_cast<size_t>(n) * static_cast<size_t>(mask.row_words), 0);
    return mask;
}

void allow_dyad(DyadMask& mask, NetworkKind kind, int i, int j) {
    if (i == j || mask.allows(i, j)) return;
    const auto set = [&](int a, int b) {
        mask.bits[static_cast<size_t>(a) * static_cast<size_t>(mask.row_words) +
                  static_cast<size_t>(b >> 6)] |= uint64_t{1} << (b & 63);
    };
    set(i, j);
    if (kind == NetworkKind::graph) set(j, i);
    ++mask.allowed_count;
}

DyadMask read_dyad_mask(const std::string& path, int n, NetworkKind kind, MatrixNotes* notes) {
    DyadMask mask = make_dyad_mask(n, kind);
    MatrixNotes seen;
    read_matrix_file(path, "constraint", n, [&](int a, int b, double value) {
        note_cell(seen, a, b, value);
        // A graph's constraint, like its network, is read from the upper triangle.
        const bool counts = kind == NetworkKind::graph ? a < b : a != b;
        if (counts && value == 1.0) allow_dyad(mask, kind, a, b);
        if (kind == NetworkKind::graph && a > b && (value == 1.0) != mask.allows(b, a))
            note_asymmetry(seen, b, a);
    });
    // A constraint of every dyad often marks the diagonal too; no dyad is lost by it.
    seen.loops = 0;
    if (notes != nullptr) *notes = seen;
    return mask;
}

DyadMask dyad_mask_from_matrix(const std::vector<double>& values, int n, NetworkKind kind) {
    DyadMask mask = make_dyad_mask(n, kind);
    const auto cell = [&](int a, int b) {
        return values[static_cast<size_t>(a) * static_cast<size_t>(n) + static_cast<size_t>(b)];
    };
    for (int a = 0; a < n; ++a) {
        for (int b = kind == NetworkKind::graph ? a + 1 : 0; b < n; ++b) {
            if (a != b && cell(a, b) == 1.0) allow_dyad(mask, kind, a, b);
        }
    }
    return mask;
}

}  // namespace vexa
