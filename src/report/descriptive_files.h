#pragma once
// The per-sample descriptive files of a graph simulation or goodness of fit: a header once,
// then one row per sample. Nodes are numbered from 1 in the headers. The geodesic and cluster
// rows read the pair counts and the giant component of the scratch, so geodesics() must have
// run on the sample first. Each writer serves both graph stores (Graph and SparseGraph).

#include <cstdio>

#include "describe/graph_describe.h"

namespace vexa {

template <class G>
void write_degree_header(FILE* out, const G& graph);
template <class G>
void write_degree_row(FILE* out, const G& graph);

template <class G>
void write_geodesic_header(FILE* out, const G& graph);
template <class G>
void write_geodesic_row(FILE* out, const G& graph, const DescribeScratch& scratch);

void write_cluster_giant_header(FILE* out);
template <class G>
void write_cluster_giant_row(FILE* out, const G& graph, DescribeScratch& scratch);

template <class G>
void write_triangle_header(FILE* out, const G& graph);
template <class G>
void write_triangle_row(FILE* out, const G& graph);

template <class G>
void write_two_path_header(FILE* out, const G& graph);
template <class G>
void write_two_path_row(FILE* out, const G& graph);

template <class G>
void write_edge_triangle_header(FILE* out, const G& graph);
template <class G>
void write_edge_triangle_row(FILE* out, const G& graph, DescribeScratch& scratch);

void write_quartile_header(FILE* out);
void write_quartile_row(FILE* out, const GeodesicQuartiles& quartiles);

}  // namespace vexa
