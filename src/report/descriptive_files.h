#pragma once
// The per-sample descriptive files of a graph simulation or goodness of fit: a header once,
// then one row per sample. Nodes are numbered from 1 in the headers. The geodesic and cluster
// rows read the pair counts and the giant component of the scratch, so geodesics() must have
// run on the sample first.

#include <cstdio>

#include "describe/graph_describe.h"

namespace vexa {

void write_degree_header(FILE* out, const Graph& graph);
void write_degree_row(FILE* out, const Graph& graph);

void write_geodesic_header(FILE* out, const Graph& graph);
void write_geodesic_row(FILE* out, const Graph& graph, const DescribeScratch& scratch);

void write_cluster_giant_header(FILE* out);
void write_cluster_giant_row(FILE* out, const Graph& graph, DescribeScratch& scratch);

void write_triangle_header(FILE* out, const Graph& graph);
void write_triangle_row(FILE* out, const Graph& graph);

void write_two_path_header(FILE* out, const Graph& graph);
void write_two_path_row(FILE* out, const Graph& graph);

void write_edge_triangle_header(FILE* out, const Graph& graph);
void write_edge_triangle_row(FILE* out, const Graph& graph, DescribeScratch& scratch);

void write_quartile_header(FILE* out);
void write_quartile_row(FILE* out, const GeodesicQuartiles& quartiles);

}  // namespace vexa
