// The goodness-of-fit report's one line that no bundled run reaches: collinear sampled statistics
// leave no Mahalanobis distance. The report's layout, for both kinds and over parameter sets, is in
// the golden outputs; its numbers are the goodness-of-fit tests' concern.

#include "report/gof_report.h"

#include <gtest/gtest.h>

#include <string>

#include "support/test_support.h"

namespace vexa {
namespace {

TEST(GofReport, AMissingMahalanobisDistanceSaysWhy) {
    Mahalanobis distance;
    distance.available = false;
    for (const NetworkKind kind : {NetworkKind::graph, NetworkKind::digraph}) {
        EXPECT_EQ(testing::capture([&](FILE* out) { write_gof_mahalanobis(out, kind, distance); }),
                  "Mahalanobis distance not available: the sampled statistics are collinear (their "
                  "covariance matrix is singular)\n");
    }
}

}  // namespace
}  // namespace vexa
