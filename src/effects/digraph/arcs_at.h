#pragma once
// Arc tests around one node v, for the digraph effects: whether v->k (out) and k->v (in). The
// dense store answers from its bit rows in O(1); the sparse store scans the shorter of the two
// neighbour lists involved. The effects walk the same lists in the same order on both, so
// their sums agree to the last bit.

#include "network/digraph.h"
#include "network/sparse_digraph.h"

namespace vexa {

template <class D>
class ArcsAt {
public:
    ArcsAt(const D& d, int v) : d_(d), v_(v) {}
    int out(int k) const { return d_.has_arc(v_, k) ? 1 : 0; }
    int in(int k) const { return d_.has_arc(k, v_) ? 1 : 0; }

private:
    const D& d_;
    int v_;
};

template <>
class ArcsAt<Digraph> {
public:
    ArcsAt(const Digraph& d, int v) : out_(d.out_row(v)), in_(d.in_row(v)) {}
    int out(int k) const { return bit_of(out_, k) ? 1 : 0; }
    int in(int k) const { return bit_of(in_, k) ? 1 : 0; }

private:
    const uint64_t* out_;
    const uint64_t* in_;
};

}  // namespace vexa
