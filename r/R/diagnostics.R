# The sampling behind a fit's standard errors and convergence t-ratios: phase 3's draws of
# each term's statistic, as traces (one line per chain) and densities around the observed
# value, with their effective sizes.

mcmc_diagnostics <- function(fit, plot = TRUE, ...) {
  if (!inherits(fit, "vexa_fit")) fail("mcmc_diagnostics needs a fit from vexa() or vexa_estimate()")
  if (fit$reported_run == 0L) fail("the fit has no phase 3: every run was degenerate")
  run <- fit$runs[[fit$reported_run]]
  if (length(run$draws) == 0L) fail("the fit kept no draws of phase 3")
  draws <- shown_statistics(fit$shown, run$draws)
  deviations <- sweep(draws, 2L, fit$observed)
  chains <- max(1L, as.integer(run$phase3_chains))
  chain <- (seq_len(nrow(draws)) - 1L) %% chains + 1L
  table <- data.frame(observed = fit$observed, mean = colMeans(draws),
                      sd = apply(draws, 2L, stats::sd), t = fit$t_ratios,
                      effective_size = fit$effective_sizes, check.names = FALSE)
  result <- structure(list(draws = draws, deviations = deviations, chain = chain,
                           table = table, converged = fit$converged, verdict = fit$verdict),
                      class = "vexa_diagnostics")
  if (!isTRUE(plot)) return(result)
  print(result)
  plot(result, ...)
  invisible(result)
}

print.vexa_diagnostics <- function(x, digits = max(3L, getOption("digits") - 3L), ...) {
  cat(sprintf("Phase 3 of the fit: %d draws from %d chain%s; %s\n", nrow(x$draws),
              max(x$chain), if (max(x$chain) > 1L) "s" else "", x$verdict))
  cat("Statistics of the draws against the observed network (t: convergence t-ratio):\n")
  print(x$table, digits = digits)
  invisible(x)
}

plot.vexa_diagnostics <- function(x, per_page = 4L, ...) {
  labels <- colnames(x$draws)
  chains <- max(x$chain)
  colours <- seq_len(chains)
  old <- par(mfrow = c(min(per_page, length(labels)), 2L), mar = c(3.5, 3.5, 2, 1),
             mgp = c(2, 0.6, 0))
  on.exit(par(old))
  for (k in seq_along(labels)) {
    d <- x$deviations[, k]
    plot(NA, xlim = c(1, max(tabulate(x$chain))), ylim = range(d), xlab = "draw",
         ylab = "statistic - observed", main = labels[k])
    for (c in seq_len(chains)) lines(d[x$chain == c], col = colours[c])
    graphics::abline(h = 0, lty = 2)
    if (length(unique(d)) > 1L) {
      density <- stats::density(d)
      plot(density, main = sprintf("%s (effective size %.0f)", labels[k],
                                   x$table$effective_size[k]), xlab = "statistic - observed")
    } else {
      plot(NA, xlim = c(-1, 1), ylim = c(0, 1), main = labels[k], xlab = "statistic - observed",
           ylab = "")
      graphics::abline(v = d[1L])
    }
    graphics::abline(v = 0, lty = 2, col = "red")
  }
  invisible(x)
}

# Every effect a model may name on a kind of network, and the other names for them, with what
# each counts: `name` as a formula term takes it (an attribute effect with the attribute as
# its argument), the vexa effect an alias stands for, and the argument the term takes.
vexa_effects <- function(directed = FALSE) {
  if (!is.logical(directed) || length(directed) != 1L || is.na(directed)) {
    fail("directed must be TRUE or FALSE")
  }
  t <- effect_table(directed)
  attribute <- grepl("^<attribute>_", t$name)
  term <- ifelse(attribute, paste0(sub("^<attribute>_", "", t$name), "(\"attribute\")"),
                 ifelse(t$argument %in% c("lambda"), paste0(t$name, "(lambda)"),
                        ifelse(nzchar(t$argument), paste0(t$name, "(", t$argument, ")"),
                               t$name)))
  # R-safe spellings: AT-T as AT_T; a name that starts with a digit in backticks.
  term <- ifelse(t$kind == "structural",
                 ifelse(grepl("^[0-9]", term), sub("^([^(]*)", "`\\1`", term),
                        gsub("-", "_", term)), term)
  extra <- data.frame(
    name = reparameterised_names[if (directed) 2:3 else 1L],
    kind = "alias", argument = "decay",
    maps_to = if (directed) c("AinS", "AoutS") else "AS",
    meaning = if (directed) {
      c("e^decay times the sum over nodes of 1 - (1 - e^-decay)^(in-degree); fitted as AinS at lambda = e^decay (AinS = lambda (arcs - gwidegree)) and reported as its own coefficient, arc's adjusted to match; needs arc (edges)",
        "the same with out-degrees; fitted as AoutS at lambda = e^decay and reported as its own coefficient; needs arc (edges)")
    } else {
      "e^decay times the sum over nodes of 1 - (1 - e^-decay)^degree; fitted as AS at lambda = e^decay (AS = lambda (2 edges - gwdegree)) and reported as its own coefficient, edge's adjusted to match; needs edges"
    }, attribute_kind = "", stringsAsFactors = FALSE)
  out <- rbind(t, extra)
  out$term <- c(term, paste0(extra$name, "(decay)"))
  # The refusals of the alias table stay listed (they say what to write instead); the
  # reparameterised names replace theirs.
  keep <- !(out$kind == "alias" & out$name %in% reparameterised_names & !nzchar(out$maps_to))
  out <- out[keep, c("term", "kind", "maps_to", "attribute_kind", "meaning")]
  rownames(out) <- NULL
  out
}
