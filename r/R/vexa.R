# The R front end of the vexa engine: turns R networks, effect lists and data frames into a
# task request, runs it in the linked engine and wraps the engine's result records.

#' @noRd
vexa_error <- function(message) {
  structure(class = c("vexa_error", "error", "condition"),
            list(message = message, call = NULL))
}

fail <- function(...) stop(vexa_error(paste0("vexa: ", ...)))

whole_setting <- function(value, name, lowest) {
  if (!is.numeric(value) || length(value) != 1L || is.na(value) || value != floor(value) ||
      value < lowest || value > .Machine$integer.max) {
    fail("setting '", name, "' must be a whole number of ", lowest, " or more")
  }
  value
}

number_setting <- function(value, name, lowest = 0) {
  if (!is.numeric(value) || length(value) != 1L || !is.finite(value) || value < lowest) {
    fail("setting '", name, "' must be a number of ", lowest, " or more")
  }
  value
}

vexa_settings <- function(runs = 3, subphases = 5, gain = 0.1, multiplication_factor = 2,
                          phase3_steps = 500, burn_in = 10000, iterations = 100000,
                          samples = 1000, sampler = NULL, degree_cap = NULL, check = FALSE,
                          progress = interactive(), output_dir = NULL, chains = NULL,
                          threads = NULL, method = "sa") {
  whole_setting(runs, "runs", 1)
  whole_setting(subphases, "subphases", 0)
  number_setting(gain, "gain")
  whole_setting(multiplication_factor, "multiplication_factor", 1)
  whole_setting(phase3_steps, "phase3_steps", 2)
  number_setting(burn_in, "burn_in")
  number_setting(iterations, "iterations", 1)
  whole_setting(samples, "samples", 1)
  if (!is.null(sampler) && (length(sampler) != 1L || !(sampler %in% c(0:4, proposals)))) {
    fail("setting 'sampler' must be one of ", paste(dQuote(proposals, FALSE), collapse = ", "),
         " or a number from 0 to 4")
  }
  if (!is.character(method) || length(method) != 1L || !(method %in% c("sa", "ee"))) {
    fail("setting 'method' must be \"sa\" (stochastic approximation) or \"ee\" ",
         "(equilibrium expectation)")
  }
  if (!is.null(degree_cap)) whole_setting(degree_cap, "degree_cap", 0)
  if (!is.null(chains)) {
    whole_setting(chains, "chains", 1)
    if (chains > 1024) fail("setting 'chains' must be at most 1024")
  }
  if (!is.null(threads)) whole_setting(threads, "threads", 1)
  if (!is.logical(check) || length(check) != 1L || is.na(check)) {
    fail("setting 'check' must be TRUE or FALSE")
  }
  if (!is.null(output_dir) && (!is.character(output_dir) || length(output_dir) != 1L)) {
    fail("setting 'output_dir' must be one directory name")
  }
  structure(list(runs = runs, subphases = subphases, gain = gain,
                 multiplication_factor = multiplication_factor, phase3_steps = phase3_steps,
                 burn_in = burn_in, iterations = iterations, samples = samples,
                 sampler = sampler, degree_cap = degree_cap, check = check,
                 progress = if (is.function(progress)) progress else isTRUE(progress),
                 output_dir = output_dir, chains = chains, threads = threads,
                 method = method),
            class = "vexa_settings")
}

# The observed network as a 0/1 matrix and its kind.
as_network <- function(net, directed = NULL) {
  if (inherits(net, "network")) {
    if (!requireNamespace("network", quietly = TRUE)) {
      fail("reading a network object needs the 'network' package")
    }
    kind_directed <- network::is.directed(net)
    m <- as.matrix(network::as.matrix.network.adjacency(net))
    if (is.null(directed)) directed <- kind_directed
  } else if (is.matrix(net) || is.data.frame(net)) {
    m <- as.matrix(net)
  } else {
    fail("the network must be an adjacency matrix or a network object, not ",
         class(net)[1L])
  }
  if (!is.numeric(m) && !is.logical(m)) fail("the network matrix must hold numbers")
  n <- nrow(m)
  if (n < 1L || ncol(m) != n) {
    fail("the network matrix must be square with at least 1 node, found ", nrow(m), " x ",
         ncol(m))
  }
  storage.mode(m) <- "double"
  diag(m) <- 0
  # NA marks a dyad not observed: the engine draws it from the model given the others.
  bad <- which(!is.na(m) & m != 0 & m != 1, arr.ind = TRUE)
  if (nrow(bad) > 0L) {
    fail("the network matrix holds ", m[bad[1L, , drop = FALSE]], " at row ", bad[1L, 1L],
         ", column ", bad[1L, 2L], "; ties are 1, non-ties 0 and dyads not observed NA")
  }
  if (all(is.na(m[row(m) != col(m)])) && n > 1L) {
    fail("every dyad of the network matrix is NA: nothing was observed")
  }
  unequal <- function(a) is.na(a) != is.na(t(a)) | (!is.na(a) & !is.na(t(a)) & a != t(a))
  if (is.null(directed)) directed <- any(unequal(m))
  if (!directed && any(unequal(m))) {
    bad <- which(unequal(m), arr.ind = TRUE)[1L, ]
    fail("the undirected network's matrix is not symmetric at row ", bad[1L], ", column ",
         bad[2L])
  }
  list(matrix = m, directed = isTRUE(directed), n = n,
       node_names = rownames(m) %||% colnames(m))
}

`%||%` <- function(a, b) if (is.null(a)) b else a

# `effects`: names of effects, with an alternating effect's lambda as its value:
# c("edge", AS = 2, AT = 2). Returns a data frame of name and lambda.
parse_effects <- function(effects) {
  if (is.null(effects) || length(effects) == 0L) fail("the model needs at least one effect")
  if (!is.character(effects) && !is.numeric(effects) && !is.list(effects)) {
    fail("effects must be a character vector such as c(\"edge\", AS = 2)")
  }
  keys <- names(effects) %||% rep("", length(effects))
  name <- character(length(effects))
  lambda <- numeric(length(effects))
  for (k in seq_along(effects)) {
    value <- effects[[k]]
    if (is.na(keys[k]) || keys[k] == "") {
      if (!is.character(value) || length(value) != 1L || is.na(value) || value == "") {
        fail("effect ", k, " has no name")
      }
      name[k] <- value
    } else {
      lambda_value <- suppressWarnings(as.numeric(value))
      if (length(lambda_value) != 1L || !is.finite(lambda_value) || lambda_value <= 0) {
        fail("effect '", keys[k], "': its lambda must be a number above 0, found '",
             format(value), "'")
      }
      name[k] <- keys[k]
      lambda[k] <- lambda_value
    }
  }
  data.frame(name = name, lambda = lambda, stringsAsFactors = FALSE)
}

# Values per effect, in the order of the effects: a plain vector, or one named by effect.
effect_values <- function(values, effects, what) {
  if (is.null(values)) return(numeric(nrow(effects)))
  if (!is.numeric(values) || any(!is.finite(values))) fail(what, " must be finite numbers")
  if (!is.null(names(values)) && all(names(values) != "")) {
    missing <- setdiff(effects$name, names(values))
    unknown <- setdiff(names(values), effects$name)
    if (length(unknown) > 0L) fail(what, " name an effect not in the model: '", unknown[1L], "'")
    if (length(missing) > 0L) fail(what, " give no value for effect '", missing[1L], "'")
    return(unname(values[effects$name]))
  }
  if (length(values) != nrow(effects)) {
    fail(what, " hold ", length(values), " values for ", nrow(effects), " effects")
  }
  unname(as.numeric(values))
}

# One column per attribute: logical columns are binary, numeric ones continuous, factors and
# character columns categorical.
parse_attributes <- function(attributes, n) {
  if (is.null(attributes)) return(list())
  if (!is.data.frame(attributes)) fail("attributes must be a data frame, one column per attribute")
  if (nrow(attributes) != n) {
    fail("attributes have ", nrow(attributes), " rows for a network of ", n, " nodes")
  }
  lapply(names(attributes), function(name) {
    x <- attributes[[name]]
    kind <- if (is.logical(x)) 0L else if (is.factor(x) || is.character(x)) 2L else
      if (is.numeric(x)) 1L else
        fail("attribute '", name, "' is neither logical, numeric, factor nor character")
    if (kind == 1L && any(is.infinite(x))) fail("attribute '", name, "' holds an infinite value")
    engine_column(name, kind, x)
  })
}

parse_covariates <- function(covariates, n) {
  if (is.null(covariates)) return(NULL)
  if (is.matrix(covariates)) covariates <- list(covariate = covariates)
  if (!is.list(covariates) || length(covariates) != 1L || is.null(names(covariates))) {
    fail("covariates must be one named n x n matrix, as list(name = matrix)")
  }
  m <- covariates[[1L]]
  if (!is.matrix(m) || !is.numeric(m) || nrow(m) != n || ncol(m) != n) {
    fail("covariate '", names(covariates), "' must be a numeric ", n, " x ", n, " matrix")
  }
  m[is.na(m)] <- 0
  if (any(!is.finite(m))) fail("covariate '", names(covariates), "' holds an infinite value")
  list(name = names(covariates), values = as.numeric(t(m)))
}

check_seed <- function(seed) {
  if (is.null(seed)) return(NULL)
  if (!is.numeric(seed) || length(seed) != 1L || is.na(seed) || seed < 0 ||
      seed > 4294967295 || seed != floor(seed)) {
    fail("the seed must be a whole number from 0 to 4294967295")
  }
  as.numeric(seed)
}

# The proposals of the sampler by name; a number (as a run file gives it) names one of them,
# 2 being the receiver move on a digraph and the toggle on a graph, 4 the closure proposal on a
# graph and the tie/no-tie proposal on a digraph.
proposals <- c("toggle", "swap", "receiver_move", "tie_no_tie", "closure")

proposal_name <- function(sampler, directed) {
  if (is.null(sampler)) return("toggle")
  if (is.character(sampler)) return(sampler)
  c("toggle", "swap", if (directed) "receiver_move" else "toggle", "tie_no_tie",
    if (directed) "tie_no_tie" else "closure")[sampler + 1L]
}

# The run file's number of the proposal a user named; -1 when none was named, which leaves the
# automatic mode free to choose the proposal for the network.
sampler_code <- function(sampler) {
  if (is.null(sampler)) return(-1L)
  if (is.character(sampler)) return(match(sampler, proposals) - 1L)
  as.integer(sampler)
}

# The directory the reports go to when the settings ask for them (NULL: no file is written).
output_directory <- function(settings) {
  dir <- settings$output_dir
  if (is.null(dir)) return(NULL)
  if (!dir.exists(dir) && !dir.create(dir, recursive = TRUE, showWarnings = FALSE)) {
    fail("cannot create the output directory '", dir, "'")
  }
  normalizePath(dir, mustWork = TRUE)
}

# Runs one task request in the engine, with a progress bar (moved by the engine's events) when
# asked, and raises the engine's one line as an error. The results come back in memory; the
# reports are written only when the settings name an output directory.
run_task <- function(request, settings, seed) {
  if (!inherits(settings, "vexa_settings")) fail("settings must come from vexa_settings()")
  request$settings <- unclass(settings)
  request$settings$sampler <- proposal_name(settings$sampler, request$directed)
  request$settings$sampler_code <- sampler_code(settings$sampler)
  request$output_dir <- output_directory(settings)
  request$settings$output_dir <- request$output_dir
  update <- NULL
  if (is.function(settings$progress)) {
    update <- settings$progress
  } else if (isTRUE(settings$progress)) {
    bar <- txtProgressBar(min = 0, max = 1, style = 3)
    on.exit(close(bar), add = TRUE)
    update <- function(share) setTxtProgressBar(bar, share)
  }
  result <- .vexa_task(request, check_seed(seed), update)
  if (nzchar(result$error)) stop(vexa_error(result$error))
  if (!is.null(update)) update(1)
  result
}

# A warning of class vexa_not_converged, which a script can catch apart from other warnings.
warn_not_converged <- function(message) {
  warning(structure(class = c("vexa_not_converged", "warning", "condition"),
                    list(message = message, call = NULL)))
}

# What a fit that did not converge says of itself, in its warning and when printed: the run
# whose estimates it reports, why they cannot be trusted, and what to try next.
convergence_note <- function(fit) {
  count <- length(fit$runs)
  last <- fit$runs[[count]]
  if (fit$reported_run == 0L) {
    return(sprintf("every run (%d) stopped before phase 3 and left no estimates; %s", count,
                   last$advice))
  }
  run <- fit$runs[[fit$reported_run]]
  note <- if (fit$verdict == "converged but noisy") {
    sprintf(paste("the estimates are those of run %d of %d, whose t-ratios (largest |t| %.3f)",
                  "rest on too few effective draws to be judged; try a larger",
                  "multiplication_factor%s%s"),
            fit$reported_run, count, fit$largest_t,
            if (run$suggested_factor > 0) sprintf(" (%d would give enough)", run$suggested_factor)
            else "",
            if (fit$auto) "" else ", or auto = TRUE, which draws until there are enough")
  } else {
    sprintf(paste("no run of %d converged; the estimates are those of run %d, whose largest",
                  "|t| (%.3f) was the smallest; try more runs (vexa_settings(runs = %d), each",
                  "going on from the last)%s or a larger multiplication_factor"),
            count, fit$reported_run, fit$largest_t,
            max(10L, 2L * as.integer(fit$settings$runs)), if (fit$auto) "" else ", auto = TRUE")
  }
  if (last$degenerate && fit$reported_run != count) {
    note <- paste0(note, "; run ", count, " was degenerate: ", last$advice)
  }
  note
}

coef.vexa_fit <- function(object, ...) object$coefficients

vcov.vexa_fit <- function(object, ...) object$covariance

network_words <- function(network) {
  ties <- sum(network$matrix, na.rm = TRUE) / if (network$directed) 1 else 2
  sprintf("%s of %d nodes and %g %s", if (network$directed) "digraph" else "graph",
          network$n, ties, if (network$directed) "arcs" else "edges")
}

# The line that marks a fit that did not converge, before anything else is read of it.
cat_not_converged <- function(fit) {
  if (fit$converged) return(invisible())
  mark <- sprintf("NOT CONVERGED (%s): %s", fit$verdict, convergence_note(fit))
  cat(strwrap(mark, width = 0.9 * getOption("width"), exdent = 2), sep = "\n")
}

# Which run the estimates come from, of the runs made and the runs allowed.
run_words <- function(fit) {
  run <- if (fit$reported_run > 0L) fit$reported_run else length(fit$runs)
  sprintf("Run %d of %d (at most %d)", run, length(fit$runs), as.integer(fit$settings$runs))
}

print.vexa_fit <- function(x, digits = max(3L, getOption("digits") - 3L), ...) {
  cat("vexa estimate of a ", network_words(x$network), "\n", sep = "")
  cat_not_converged(x)
  figures <- if (x$reported_run > 0L) {
    sprintf(" (largest |t| %.3f, overall convergence ratio %.3f)", x$largest_t, x$overall_ratio)
  } else ""
  cat(run_words(x), ": ", x$verdict, figures, "\n\n", sep = "")
  print(cbind(Estimate = x$coefficients, `Std. Error` = x$std_errors,
              `Convergence t` = x$t_ratios), digits = digits)
  invisible(x)
}

summary.vexa_fit <- function(object, ...) {
  z <- object$coefficients / object$std_errors
  table <- cbind(Estimate = object$coefficients, `Std. Error` = object$std_errors,
                 `Convergence t` = object$t_ratios, `z value` = z,
                 `Pr(>|z|)` = 2 * pnorm(-abs(z)))
  structure(list(fit = object, coefficients = table), class = "summary.vexa_fit")
}

print.summary.vexa_fit <- function(x, digits = max(3L, getOption("digits") - 3L), ...) {
  fit <- x$fit
  cat("vexa estimate of a ", network_words(fit$network), "\n", sep = "")
  cat("Call: ", paste(deparse(fit$call), collapse = "\n"), "\n", sep = "")
  cat_not_converged(fit)
  cat("\n")
  # Stars claim a significance that estimates of a run that did not converge cannot carry.
  stats::printCoefmat(x$coefficients, digits = digits, cs.ind = 1:2, tst.ind = 4L,
                      zap.ind = 3L, P.values = TRUE, has.Pvalue = TRUE,
                      signif.stars = fit$converged && isTRUE(getOption("show.signif.stars")))
  cat(sprintf("\n%s: %s\n", run_words(fit), fit$verdict))
  if (fit$reported_run > 0L) {
    cat(sprintf("Largest convergence t-ratio %.3f, overall maximum convergence ratio %.3f\n",
                fit$largest_t, fit$overall_ratio))
  }
  if (length(fit$effective_sizes) > 0L && all(is.finite(fit$effective_sizes))) {
    cat(sprintf("Smallest effective sample size %.0f (%s)\n", min(fit$effective_sizes),
                names(fit$effective_sizes)[which.min(fit$effective_sizes)]))
  }
  if (!is.na(fit$confirmed)) {
    cat("Long-chain check at the estimate:", if (fit$confirmed) "confirmed" else
      "not confirmed", "\n")
  }
  invisible(x)
}

print.vexa_simulation <- function(x, ...) {
  cat(sprintf("vexa simulation: %d samples of a %s of %d nodes, %.0f changes accepted\n",
              nrow(x$statistics), if (x$directed) "digraph" else "graph", x$n, x$accepted))
  means <- colMeans(x$statistics[, -1L, drop = FALSE])
  print(rbind(parameter = x$parameters, `sample mean` = means))
  invisible(x)
}

print.vexa_gof <- function(x, digits = max(3L, getOption("digits") - 3L), ...) {
  cat(sprintf("vexa goodness of fit: %d samples of a %s of %d nodes\n\n", nrow(x$statistics),
              if (x$directed) "digraph" else "graph", x$n))
  table <- x$table
  rownames(table) <- table$statistic
  print(table[, -1L], digits = digits)
  cat("\nGeodesic quartiles\n")
  print(x$quartiles, row.names = FALSE, digits = digits)
  if (is.na(x$mahalanobis)) {
    cat("\nMahalanobis distance: not available (the sampled statistics are collinear)\n")
  } else {
    cat(sprintf(paste("\nMahalanobis distance of the observed network: %.4f",
                      "(%.1f%% of samples lie nearer the sample mean)\n"),
                x$mahalanobis, x$mahalanobis_closer))
  }
  invisible(x)
}

vexa_run <- function(run_file, seed = NULL, check = FALSE, sampler = NULL, auto = TRUE,
                     chains = NULL, threads = NULL, method = "sa") {
  if (!is.character(run_file) || length(run_file) != 1L || is.na(run_file)) {
    fail("run_file must be one file name")
  }
  if (!is.logical(check) || length(check) != 1L || is.na(check)) {
    fail("check must be TRUE or FALSE")
  }
  if (!is.logical(auto) || length(auto) != 1L || is.na(auto)) fail("auto must be TRUE or FALSE")
  if (!is.null(sampler) && !(sampler %in% 0:4)) fail("sampler must be 0, 1, 2, 3 or 4")
  # The same checks as vexa_settings(); 0 takes the engine's default.
  counts <- vexa_settings(chains = chains, threads = threads, progress = FALSE, method = method)
  started <- Sys.time()
  result <- .vexa_run_file(path.expand(run_file), check_seed(seed), check,
                           if (is.null(sampler)) -1L else as.integer(sampler), auto,
                           as.integer(counts$chains %||% 0L), as.integer(counts$threads %||% 0L),
                           method == "ee")
  if (nzchar(result$console)) message(sub("\n$", "", result$console))
  if (nzchar(result$error)) stop(vexa_error(result$error))
  if (isTRUE(result$not_converged)) {
    warn_not_converged(paste("vexa: the estimation ended without a converged run;",
                             "its convergence file says why"))
  }
  written <- function(dir, pattern) {
    if (!dir.exists(dir)) return(character())
    files <- list.files(dir, pattern = pattern, full.names = TRUE)
    files[file.mtime(files) >= started - 1]
  }
  dir <- if (nzchar(result$output_dir)) result$output_dir else "."
  name <- gsub("([.|()\\^{}+$*?\\[\\]\\\\])", "\\\\\\1", result$name)
  sort(c(written(dir, paste0("_", name, "([.]|[0-9]*[.])")), written(".", "[.]vexa$")))
}
