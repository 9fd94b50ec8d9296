# The goodness-of-fit plot: one panel per model statistic (the sampled values as a box, the
# observed value as a red point), then the distributions of degrees, geodesic distances and,
# for digraphs, the triad census (a box per value, the observed network as a red line).

# Boxes of each column of `sample` with the observed values drawn over them.
distribution_panel <- function(sample, observed, labels, main, xlab) {
  columns <- max(ncol(sample), length(observed))
  sample <- cbind(sample, matrix(0, nrow(sample), columns - ncol(sample)))
  observed <- c(observed, rep(0, columns - length(observed)))
  keep <- seq_len(columns)
  # The whiskers and the observed values set the scale; outliers are not drawn.
  whiskers <- boxplot(sample[, keep, drop = FALSE], plot = FALSE)$stats
  boxplot(sample[, keep, drop = FALSE], names = labels[keep], main = main, xlab = xlab,
          ylab = "count", col = "grey90", border = "grey40", outline = FALSE,
          ylim = range(c(whiskers, observed)), las = if (length(keep) > 8L) 2L else 1L,
          cex.axis = 0.8)
  lines(keep, observed, col = "red", lwd = 2)
  points(keep, observed, col = "red", pch = 19, cex = 0.7)
}

# The counts of a distribution up to its last non-zero entry over all networks.
trimmed <- function(sample, observed, first) {
  columns <- max(ncol(sample), length(observed))
  sample <- cbind(sample, matrix(0, nrow(sample), columns - ncol(sample)))
  observed <- c(observed, rep(0, columns - length(observed)))
  used <- which(colSums(sample) > 0 | observed > 0)
  last <- max(c(first, used))
  keep <- first:last
  list(sample = sample[, keep, drop = FALSE], observed = observed[keep], keep = keep)
}

plot.vexa_gof <- function(x, ...) {
  statistics <- colnames(x$statistics)
  extra <- if (x$directed) 4L else 2L
  panels <- length(statistics) + extra
  columns <- ceiling(sqrt(panels))
  old <- par(mfrow = c(ceiling(panels / columns), columns), mar = c(4, 4, 2.5, 1),
             oma = c(0, 0, 2, 0))
  on.exit(par(old))
  for (k in seq_along(statistics)) {
    sample <- x$statistics[, k]
    observed <- x$observed_statistics[k]
    boxplot(sample, main = statistics[k], col = "grey90", border = "grey40",
            ylim = range(c(sample, observed)), ylab = "value")
    points(1, observed, col = "red", pch = 19, cex = 1.4)
    t <- x$table$t[k]
    mtext(sprintf("t = %.2f", t), side = 1, line = 1, cex = 0.7)
  }
  profile <- x$observed_profile
  # Degree d is column d + 1.
  degree <- function(sample, observed, main) {
    d <- trimmed(sample, observed, 1L)
    distribution_panel(d$sample, d$observed, as.character(d$keep - 1L), main, "degree")
  }
  if (x$directed) {
    degree(x$in_degree, profile$in_degree, "In-degree distribution")
    degree(x$degree, profile$degree, "Out-degree distribution")
  } else {
    degree(x$degree, profile$degree, "Degree distribution")
  }
  # Distance d is column d + 1; the last column (n) counts pairs without a path.
  n <- x$n
  finite <- function(m) m[, seq_len(min(ncol(m), n))[-1L], drop = FALSE]
  g <- trimmed(finite(x$geodesics), profile$geodesics[seq_len(min(length(profile$geodesics), n))[-1L]], 1L)
  unreachable <- if (ncol(x$geodesics) > n) x$geodesics[, n + 1L] else rep(0, nrow(x$geodesics))
  observed_unreachable <- if (length(profile$geodesics) > n) profile$geodesics[n + 1L] else 0
  distribution_panel(cbind(g$sample, unreachable), c(g$observed, observed_unreachable),
                     c(as.character(g$keep), "Inf"), "Geodesic distribution", "distance")
  if (x$directed) {
    classes <- c("300", "210", "120C", "120D", "120U", "201", "111D", "111U", "030T",
                 "030C", "102", "021D", "021C", "021U", "012", "003")
    distribution_panel(x$triads, profile$triads, classes, "Triad census", "class")
  }
  title(sprintf("Goodness of fit: %d samples; Mahalanobis distance %s", nrow(x$statistics),
                if (is.na(x$mahalanobis)) "not available" else sprintf("%.2f", x$mahalanobis)),
        outer = TRUE)
  invisible(x)
}
