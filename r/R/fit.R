# Fitting a model: from a formula (vexa) or an effect list (vexa_estimate), through one
# request to the engine, to a fit that reports each term under its own name.

# A model given as effect names with lambdas and a data frame of attributes, each column's
# kind from its class (logical binary, numeric continuous, factor or character categorical),
# on a network (a matrix or network object) or on `network`, a node count's empty one.
effects_model <- function(net, effects, attributes, covariates, directed,
                          network = as_network(net, directed)) {
  parsed <- parse_effects(effects)
  list(network = network, net = net, labels = make.unique(parsed$name), effects = parsed,
       columns = parse_attributes(attributes, network$n), covariate = covariates,
       attributes = attributes, reparameterised = rep(list(NULL), nrow(parsed)))
}

task_request <- function(task, model, values, name, keep_networks = FALSE, density = 0) {
  network <- model$network
  adjacency <- if (is.null(network$matrix)) NULL else as.numeric(t(network$matrix))
  list(what = paste0("vexa_", name), task = task, directed = network$directed,
       n = network$n, name = name, adjacency = adjacency, density = density,
       effects = list(name = model$effects$name, value = values, lambda = model$effects$lambda),
       attributes = model$columns, covariate = parse_covariates(model$covariate, network$n),
       constraint = model$constraint, keep_networks = keep_networks)
}

# The dyads the samplers may change: TRUE (1) where a dyad may change, FALSE (0) where it stays
# as observed; a matrix or a network object. Returned row by row, as the engine takes it.
constraint_values <- function(constraint, network) {
  if (is.null(constraint)) return(NULL)
  if (inherits(constraint, "network")) {
    constraint <- network::as.matrix.network.adjacency(constraint)
  }
  n <- network$n
  if (!is.matrix(constraint) || nrow(constraint) != n || ncol(constraint) != n ||
      !(is.logical(constraint) || is.numeric(constraint)) || anyNA(constraint) ||
      any(!(constraint %in% c(0, 1)))) {
    fail("the constraint must be an ", n, " x ", n, " matrix of TRUE (the dyad may change) and ",
         "FALSE (it stays as observed)")
  }
  storage.mode(constraint) <- "double"
  if (!network$directed && !isSymmetric(unname(constraint))) {
    fail("the undirected network's constraint is not symmetric")
  }
  if (sum(constraint[row(constraint) != col(constraint)]) == 0) {
    fail("the constraint fixes every dyad: no dyad is left to change")
  }
  as.numeric(t(constraint))
}

# The engine's starting values, in request order, of starting values given per term.
start_values <- function(start, model) {
  shown <- presentation(model$labels, seq_along(model$labels), model$reparameterised, model$effects)
  theta <- effect_values(start, data.frame(name = model$labels), "starting values")
  if (is.null(start)) return(theta)
  engine_values(shown, theta)
}

fit_model <- function(model, settings, seed, start, auto, call) {
  if (!is.logical(auto) || length(auto) != 1L || is.na(auto)) fail("auto must be TRUE or FALSE")
  request <- task_request("estimation", model, start_values(start, model), "estimate")
  request$automatic <- auto
  result <- run_task(request, settings, seed)
  shown <- presentation(model$labels, result$slots, model$reparameterised, model$effects)
  runs <- result$runs
  # The run the fit reports: the converged one, else the engine's best; when every run was
  # degenerate there are no estimates, and the last run tells why.
  reported <- as.integer(result$reported_run)
  run <- runs[[if (reported > 0L) reported else length(runs)]]
  view <- shown_run(shown, run)
  fit <- list(
    coefficients = view$estimates, std_errors = view$std_errors, t_ratios = view$t_ratios,
    covariance = view$covariance, converged = isTRUE(result$converged), verdict = run$verdict,
    verdicts = vapply(runs, function(r) r$verdict, ""), reported_run = reported, auto = auto,
    largest_t = run$largest_t, overall_ratio = run$overall_ratio,
    effective_sizes = view$effective_sizes,
    confirmed = if (result$confirmed < 0) NA else result$confirmed == 1,
    trace = shown_trace(shown, run$trace), runs = runs, observed = view$observed,
    engine_values = if (reported > 0L) unname(run$estimates[result$slots]) else NULL,
    engine_labels = result$labels, shown = shown, model = model, effects = model$effects,
    network = model$network, seed = seed, settings = settings,
    output_dir = output_directory(settings), console = result$console, call = call)
  class(fit) <- "vexa_fit"
  if (!fit$converged) {
    warn_not_converged(sprintf("vexa: the fit did not converge (%s): %s", fit$verdict,
                               convergence_note(fit)))
  }
  fit
}

vexa <- function(formula, attributes = NULL, covariates = NULL, constraint = NULL,
                 settings = vexa_settings(), seed = NULL, start = NULL, directed = NULL,
                 auto = TRUE) {
  model <- formula_model(formula, attributes, covariates, directed)
  model$constraint <- constraint_values(constraint, model$network)
  model$formula <- formula
  fit_model(model, settings, seed, start, auto, match.call())
}

vexa_estimate <- function(net, effects, attributes = NULL, covariates = NULL,
                          settings = vexa_settings(), seed = NULL, start = NULL,
                          directed = NULL, auto = TRUE, constraint = NULL) {
  model <- effects_model(net, effects, attributes, covariates, directed)
  model$constraint <- constraint_values(constraint, model$network)
  fit_model(model, settings, seed, start, auto, match.call())
}
