# How a fit is reported: one coefficient per term, under the term's own name and in the order
# the terms were given. The engine orders its parameters as a run file does; a term it fits
# in another parameterisation (gwdegree as the alternating star) is turned back here. With
# theta the reported coefficients and eta the engine's, theta = A eta, and the statistics turn
# by s_theta = C s_eta, with t(A) %*% C the identity, so that theta . s_theta = eta . s_eta.

# A and C for a model: `slots` says where each term's effect sits among the engine's parameters
# (from 1), `reparameterised` holds, per term, NULL or its lambda and c.
presentation <- function(labels, slots, reparameterised, effects) {
  q <- length(labels)
  A <- matrix(0, q, q, dimnames = list(labels, NULL))
  A[cbind(seq_len(q), slots)] <- 1
  C <- A
  for (g in which(!vapply(reparameterised, is.null, TRUE))) {
    r <- reparameterised[[g]]
    density <- which(effects$name %in% c("edge", "arc"))
    if (length(density) != 1L) {
      fail("term '", labels[g], "' is fitted beside the density term: add ",
           if (r$c == 2) "edges" else "edges (arcs)", " to the model")
    }
    A[g, slots[g]] <- -r$lambda
    A[density, slots[g]] <- A[density, slots[g]] + r$c * r$lambda
    C[g, slots[g]] <- -1 / r$lambda
    C[g, slots[density]] <- r$c
  }
  list(labels = labels, A = A, C = C, plain = vapply(reparameterised, is.null, TRUE),
       slots = slots)
}

# The engine's parameters (in request order, as a request takes them) of reported values.
engine_values <- function(shown, theta) {
  eta <- solve(shown$A, theta)
  unname(eta[shown$slots])
}

# Statistics (a vector or one row per draw) in the reported form.
shown_statistics <- function(shown, s) {
  if (is.null(dim(s))) return(setNames(as.vector(shown$C %*% s), shown$labels))
  out <- s %*% t(shown$C)
  colnames(out) <- shown$labels
  out
}

# A run of the engine in the reported form: estimates, covariance, standard errors and
# convergence t-ratios; a reparameterised statistic's t-ratio from phase 3's draws, as the
# engine takes the others, and its effective size the smallest of the statistics it sums.
shown_run <- function(shown, run) {
  labels <- shown$labels
  finished <- length(run$estimates) == length(labels)
  na <- setNames(rep(NA_real_, length(labels)), labels)
  estimates <- if (finished) setNames(as.vector(shown$A %*% run$estimates), labels) else na
  covariance <- if (finished) shown$A %*% run$covariance %*% t(shown$A) else
    matrix(NA_real_, length(labels), length(labels))
  dimnames(covariance) <- list(labels, labels)
  t_ratios <- na
  sizes <- na
  if (finished) {
    t_ratios[shown$plain] <- run$t_ratios[shown$slots[shown$plain]]
    draws <- run$draws
    if (any(!shown$plain) && length(draws) > 0L) {
      s <- shown_statistics(shown, draws)
      observed <- shown_statistics(shown, run$observed)
      spread <- apply(s, 2L, stats::sd)
      t_ratios[!shown$plain] <- ((colMeans(s) - observed) / spread)[!shown$plain]
    }
  }
  if (length(run$effective_sizes) == length(labels)) {
    for (k in seq_along(labels)) {
      sizes[k] <- min(run$effective_sizes[shown$C[k, ] != 0])
    }
  }
  list(estimates = estimates, covariance = covariance,
       std_errors = sqrt(pmax(diag(covariance), 0)), t_ratios = t_ratios,
       effective_sizes = sizes, observed = shown_statistics(shown, run$observed))
}

# The trace of a run's parameters, in the reported form, one row per step.
shown_trace <- function(shown, trace) {
  out <- trace %*% t(shown$A)
  colnames(out) <- shown$labels
  steps <- c("start", "phase 1", paste("sub-phase", seq_len(max(nrow(out) - 2L, 0L)) - 1L))
  rownames(out) <- steps[seq_len(nrow(out))]
  out
}
