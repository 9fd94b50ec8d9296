#pragma once
// The per-sample descriptive files of a digraph simulation or goodness of fit, and the triad
// census block of the digraph goodness-of-fit report.

#include <cstdio>
#include <vector>

#include "describe/digraph_describe.h"
#include "describe/triad_census.h"

namespace vexa {

// In-degrees "ind%d" and their moments, then out-degrees "outd%d" and theirs; nodes from 1.
// Each writer serves both digraph stores (defined for Digraph and SparseDigraph).
template <class D>
void write_in_out_degree_header(FILE* out, const D& digraph);
template <class D>
void write_in_out_degree_row(FILE* out, const D& digraph);

// Ordered pairs by the length of their shortest directed path: "geo1" .. "geo(n-1)", "geoInf".
template <class D>
void write_directed_geodesic_header(FILE* out, const D& digraph);
template <class D>
void write_directed_geodesic_row(FILE* out, const D& digraph, const DigraphScratch& scratch);

// The clustering coefficients. The header's text, "\a" between akct and kcd included, is the
// one the front end knows.
void write_digraph_clustering_header(FILE* out);
void write_digraph_clustering_row(FILE* out, const DigraphClustering& clustering);

// "\nGOF on Triad Census\n", the heading, and per class the observed count beside the mean,
// standard deviation and t-ratio of the sampled counts.
void write_triad_census_block(FILE* out, const TriadCensus& observed,
                              const std::vector<TriadCensus>& sample);

}  // namespace vexa
