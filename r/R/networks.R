# simulate() for a fit: networks drawn from the fitted model, started from the observed
# network, as network objects carrying the observed network's attributes (or as matrices).

# A network object of a 0/1 matrix, with the vertex attributes of `template` (a network
# object) or of the attribute columns the model read.
as_network_object <- function(m, directed, template, attributes) {
  net <- network::network(m, directed = directed, matrix.type = "adjacency")
  if (inherits(template, "network")) {
    for (a in setdiff(network::list.vertex.attributes(template), "na")) {
      net <- network::set.vertex.attribute(net, a,
                                           network::get.vertex.attribute(template, a,
                                                                         unlist = FALSE))
    }
  } else {
    if (!is.null(rownames(m))) net <- network::set.vertex.attribute(net, "vertex.names",
                                                                    rownames(m))
    if (is.data.frame(attributes)) {
      for (a in names(attributes)) {
        net <- network::set.vertex.attribute(net, a, attributes[[a]])
      }
    }
  }
  net
}

simulate.vexa_fit <- function(object, nsim = 1, seed = NULL, output = c("network", "matrix"),
                              burn_in = NULL, interval = NULL, settings = NULL, ...) {
  output <- match.arg(output)
  whole_setting(nsim, "nsim", 1)
  n <- object$network$n
  dyads <- n * (n - 1) / if (object$network$directed) 1 else 2
  # Each dyad is proposed about once between two networks kept by default, ten times before
  # the first: at the estimates the chain starts where the model centres, the observed network.
  interval <- interval %||% max(100, dyads)
  burn_in <- burn_in %||% (10 * interval)
  number_setting(interval, "interval", 1)
  number_setting(burn_in, "burn_in")
  run <- settings %||% object$settings
  if (!inherits(run, "vexa_settings")) fail("settings must come from vexa_settings()")
  run$progress <- FALSE
  run$burn_in <- burn_in
  run$iterations <- interval * nsim
  run$samples <- nsim
  run$output_dir <- NULL
  sims <- vexa_simulate(object, settings = run, seed = seed, networks = TRUE, start = "observed")
  statistics <- as.matrix(sims$statistics[, -1L, drop = FALSE])
  networks <- lapply(sims$networks, function(m) {
    if (output == "matrix") return(m)
    if (!requireNamespace("network", quietly = TRUE)) {
      fail("network objects need the 'network' package; use output = \"matrix\"")
    }
    as_network_object(m, object$network$directed, object$model$net, object$model$attributes)
  })
  structure(networks, class = c("vexa_networks", "list"), stats = statistics,
            coefficients = object$coefficients)
}

print.vexa_networks <- function(x, ...) {
  cat(sprintf("%d networks simulated from a vexa fit; their statistics (attr(, \"stats\")):\n",
              length(x)))
  print(summary(attr(x, "stats")))
  invisible(x)
}
