# Simulation and goodness of fit: from a fit (its model, attributes and estimates), from a
# formula with parameters, or from a network (or a node count) with effects and parameters.

# What a simulation or goodness of fit runs: the model's request form, the engine's values in
# request order, and the reported values by term.
model_source <- function(x, effects, parameters, attributes, covariates, directed) {
  if (inherits(x, "vexa_fit")) {
    if (is.null(x$engine_values)) fail("the fit has no estimates: every run was degenerate")
    model <- x$model
    return(list(model = model, values = x$engine_values, parameters = x$coefficients))
  }
  if (inherits(x, "formula")) {
    model <- formula_model(x, attributes, covariates, directed)
  } else if (is.numeric(x) && length(x) == 1L && !is.matrix(x)) {
    if (!is.finite(x) || x < 1 || x != floor(x)) {
      fail("the node count must be a whole number of 1 or more")
    }
    empty <- list(matrix = NULL, directed = isTRUE(directed), n = as.integer(x))
    model <- effects_model(NULL, effects, attributes, covariates, directed, network = empty)
  } else {
    model <- effects_model(x, effects, attributes, covariates, directed)
  }
  if (is.null(parameters)) fail("parameters are needed: one value per term")
  shown <- presentation(model$labels, seq_along(model$labels), model$reparameterised, model$effects)
  theta <- effect_values(parameters, data.frame(name = model$labels), "parameters")
  list(model = model, values = engine_values(shown, theta),
       parameters = setNames(theta, model$labels))
}

# The reported form of a task's statistics, by the engine's placing of the terms.
result_presentation <- function(model, result) {
  presentation(model$labels, result$slots, model$reparameterised, model$effects)
}

vexa_simulate <- function(x, effects = NULL, parameters = NULL, attributes = NULL,
                          covariates = NULL, settings = vexa_settings(), seed = NULL,
                          networks = FALSE, density = NULL, directed = NULL,
                          save_network = NULL, start = c("random", "observed")) {
  if (!is.null(save_network) && (!is.character(save_network) || length(save_network) != 1L ||
                                 is.na(save_network) || !nzchar(save_network))) {
    fail("save_network must be one file name")
  }
  start <- match.arg(start)
  source <- model_source(x, effects, parameters, attributes, covariates, directed)
  model <- source$model
  network <- model$network
  observed <- network$matrix
  if (start == "observed") {
    if (is.null(observed)) fail("start = \"observed\" needs an observed network")
    # Dyads not observed start absent.
    observed[is.na(observed)] <- 0
    model$network$matrix <- observed
  } else {
    model$network$matrix <- NULL
  }
  if (is.null(density)) {
    density <- if (is.null(observed) || network$n < 2L) 0 else
      sum(observed, na.rm = TRUE) / (network$n * (network$n - 1))
  }
  number_setting(density, "density")
  if (density > 1) fail("setting 'density' must lie between 0 and 1")
  request <- task_request("simulation", model, source$values, "simulate", isTRUE(networks),
                          density)
  # The engine writes the final network there as a tie list, which vexa_run reads back.
  if (!is.null(save_network)) request$save_network <- path.expand(save_network)
  result <- run_task(request, settings, seed)
  shown <- result_presentation(model, result)
  statistics <- as.data.frame(shown_statistics(shown, result$sample_statistics),
                              check.names = FALSE)
  statistics <- cbind(sample = result$sample_numbers, statistics)
  sampled <- if (isTRUE(networks)) lapply(result$networks, function(m) {
    dimnames(m) <- if (is.null(observed)) NULL else dimnames(observed)
    m
  }) else NULL
  structure(list(statistics = statistics, networks = sampled, accepted = result$accepted,
                 parameters = source$parameters, directed = network$directed, n = network$n,
                 model = model, output_dir = output_directory(settings),
                 saved_network = request$save_network), class = "vexa_simulation")
}

# Parameter sets drawn from the normal distribution a fit's estimates and covariance give, in
# the engine's order of the parameters; R's generator, seeded by `seed` when one is given and
# left as it was found.
parameter_sets <- function(fit, count, seed) {
  run <- fit$runs[[fit$reported_run]]
  mean <- run$estimates
  e <- eigen(run$covariance, symmetric = TRUE)
  if (any(!is.finite(e$values)) || any(e$values < -1e-8 * max(abs(e$values)))) {
    fail("the fit's covariance matrix is not one (not positive semi-definite)")
  }
  root <- e$vectors %*% diag(sqrt(pmax(e$values, 0)), length(mean))
  if (!is.null(seed)) {
    had <- exists(".Random.seed", envir = globalenv(), inherits = FALSE)
    if (had) saved <- get(".Random.seed", envir = globalenv())
    on.exit(if (had) assign(".Random.seed", saved, envir = globalenv()) else
      rm(".Random.seed", envir = globalenv()))
    set.seed(as.numeric(seed) %% .Machine$integer.max)
  }
  lapply(seq_len(count), function(k) as.vector(mean + root %*% stats::rnorm(length(mean))))
}

vexa_gof <- function(x, effects = NULL, parameters = NULL, attributes = NULL,
                     covariates = NULL, settings = vexa_settings(), seed = NULL,
                     directed = NULL, bayes = FALSE, sets = 200) {
  if (!is.logical(bayes) || length(bayes) != 1L || is.na(bayes)) fail("bayes must be TRUE or FALSE")
  source <- model_source(x, effects, parameters, attributes, covariates, directed)
  model <- source$model
  if (is.null(model$network$matrix)) fail("goodness of fit needs the observed network")
  request <- task_request(if (bayes) "bayes" else "gof", model, source$values, "gof")
  if (bayes) {
    if (!inherits(x, "vexa_fit")) fail("the Bayesian goodness of fit draws its parameters from a fit")
    whole_setting(sets, "sets", 1)
    request$parameter_sets <- parameter_sets(x, sets, seed)
  }
  result <- run_task(request, settings, seed)
  gof_result(result, model, source$parameters, settings, bayes)
}

gof_result <- function(result, model, parameters, settings, bayes) {
  g <- result$gof
  shown <- result_presentation(model, result)
  statistics <- shown_statistics(shown, g$statistics)
  observed <- shown_statistics(shown, g$observed)
  means <- colMeans(statistics)
  spread <- apply(statistics, 2L, stats::sd)
  p <- length(observed)
  rest <- seq_len(length(g$comparisons$observed) - p) + p
  table <- data.frame(statistic = c(model$labels, g$measure_names),
                      observed = c(observed, g$comparisons$observed[rest]),
                      mean = c(means, g$comparisons$mean[rest]),
                      sd = c(spread, g$comparisons$sd[rest]),
                      t = c((observed - means) / spread, g$comparisons$t[rest]),
                      stringsAsFactors = FALSE)
  quartiles <- data.frame(quartile = c("25%", "50%", "75%"), observed = g$quartile_table$observed,
                          median = g$quartile_table$median, iqr = g$quartile_table$iqr,
                          below = g$quartile_table$below, above = g$quartile_table$above,
                          stringsAsFactors = FALSE)
  measures <- g$measures
  colnames(measures) <- g$measure_names
  directed <- model$network$directed
  structure(list(
    table = table, quartiles = quartiles,
    mahalanobis = if (g$mahalanobis_available) g$mahalanobis else NA_real_,
    mahalanobis_closer = if (g$mahalanobis_available) g$mahalanobis_closer else NA_real_,
    statistics = statistics, measures = measures, observed_statistics = observed,
    observed_profile = g$observed_profile,
    degree = g$degree, in_degree = if (directed) g$in_degree else NULL,
    geodesics = g$geodesics, triads = if (directed) g$triads else NULL,
    parameters = parameters, bayes = bayes, directed = directed,
    n = model$network$n, output_dir = output_directory(settings)), class = "vexa_gof")
}

# The statistics of a formula's terms on its network, each under the term's name: what a fit
# of the formula matches its expectations to.
vexa_statistics <- function(formula, attributes = NULL, covariates = NULL, directed = NULL) {
  model <- formula_model(formula, attributes, covariates, directed)
  if (is.null(model$network$matrix)) fail("the formula's left side must be a network")
  request <- task_request("gof", model, numeric(length(model$labels)), "statistics")
  # The observed side of a goodness of fit, with as short a sample as the task takes.
  result <- run_task(request, vexa_settings(progress = FALSE, burn_in = 0, iterations = 1,
                                            samples = 1), 1)
  shown_statistics(result_presentation(model, result), result$gof$observed)
}
