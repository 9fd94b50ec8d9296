# Models whose maximum likelihood estimates have a closed form: the stochastic approximation
# must land on them, and its standard errors near the exact ones.

test_that("the edge-only model estimates the log-odds of a tie", {
  # Fitted as a user would, in the automatic mode: T ties of D dyads give log(T / (D - T)),
  # with the standard error 1 / sqrt(D p (1 - p)).
  data(flomarriage, package = "vexa")
  fit <- vexa_estimate(flomarriage, "edge", seed = 1, settings = quiet())
  dyads <- 16 * 15 / 2
  p <- 20 / dyads
  exact_se <- sqrt(1 / (dyads * p * (1 - p)))
  expect_true(fit$converged)
  expect_equal(fit$reported_run, length(fit$runs))
  expect_lt(abs(unname(coef(fit)) - log(p / (1 - p))), 0.1 * exact_se)
  expect_equal(unname(fit$std_errors), exact_se, tolerance = 0.15)
  expect_equal(dim(vcov(fit)), c(1L, 1L))
  expect_equal(names(coef(fit)), "edge")
  shown <- capture.output(print(summary(fit)))
  expect_true(any(grepl("converged", shown)))
  expect_false(any(grepl("NOT CONVERGED", shown)))
  expect_true(any(grepl("Signif. codes", shown)))
})

test_that("NA marks dyads not observed, left out of the edge-only model's log-odds", {
  # Missing at random, the likelihood of independent ties is that of the observed dyads alone:
  # T ties of D observed dyads give log(T / (D - T)) whatever the missing ones hold.
  data(flomarriage, package = "vexa")
  m <- as.matrix(flomarriage)
  upper <- which(upper.tri(m))
  missing <- upper[seq(3, length(upper), by = 5)]
  m[missing] <- NA
  m[lower.tri(m)] <- t(m)[lower.tri(m)]
  dyads <- length(upper) - length(missing)
  ties <- sum(m[upper], na.rm = TRUE)
  fit <- vexa_estimate(m, "edge", seed = 1, settings = quiet())
  expect_equal(unname(coef(fit)), log(ties / (dyads - ties)), tolerance = 1e-6)
  p <- ties / dyads
  expect_equal(unname(fit$std_errors), sqrt(1 / (dyads * p * (1 - p))), tolerance = 0.15)
  expect_error(vexa_estimate(matrix(NA_real_, 4, 4), "edge", settings = quiet()),
               "every dyad")
})

test_that("a fit's estimates go back to their own effects, in whatever order they were given", {
  # The engine orders the effects as a run file does (AS before AT); typed the other way round,
  # a simulation from the fit must still give AT its own estimate: at the fit's estimates the
  # simulated statistics centre on the observed ones.
  data(flomarriage, package = "vexa")
  fit <- vexa_estimate(flomarriage, c("edge", AT = 2, AS = 2), seed = 4, settings = quiet())
  sims <- vexa_simulate(fit, settings = quiet(burn_in = 20000, iterations = 400000,
                                              samples = 200), seed = 5)
  drawn <- sims$statistics[, names(coef(fit))]
  expect_true(all(abs(colMeans(drawn) - fit$observed) < 0.5 * apply(drawn, 2, sd)))
})

test_that("equilibrium expectation lands on the edge-only model's log-odds too", {
  # The plain mode, so that phase 2 runs (the automatic mode would start at the exact
  # estimate and skip it); the estimate is the mean of the last stage's parameters.
  data(flomarriage, package = "vexa")
  fit <- vexa_estimate(flomarriage, "edge", seed = 2, auto = FALSE,
                       settings = quiet(method = "ee", multiplication_factor = 4))
  p <- 20 / 120
  exact_se <- sqrt(1 / (120 * p * (1 - p)))
  expect_true(fit$converged)
  expect_lt(abs(unname(coef(fit)) - log(p / (1 - p))), 0.25 * exact_se)
  expect_error(vexa_settings(method = "newton"), "must be \"sa\"", class = "vexa_error")
})

test_that("the automatic mode chooses the proposal only when none is named", {
  # On a sparse network it takes the tie/no-tie proposal: naming that one changes nothing,
  # naming the toggle binds it. (Edge alone starts at its exact estimate, the same whatever
  # the proposal; phase 3's standard errors show which chain ran.)
  data(flomarriage, package = "vexa")
  edge <- function(sampler) {
    vexa_estimate(flomarriage, "edge", seed = 3, settings = quiet(sampler = sampler))$std_errors
  }
  chosen <- edge(NULL)
  expect_identical(chosen, edge("tie_no_tie"))
  expect_false(identical(chosen, edge("toggle")))
})

test_that("a fit that did not converge warns, is marked and reports its best run", {
  # A Markov model of three 6-cliques in a chain: the star and triangle counts drive the
  # model to the empty or the complete graph, and one run cannot settle it.
  m <- matrix(0, 18, 18)
  for (block in 0:2) m[block * 6 + 1:6, block * 6 + 1:6] <- 1
  m[6, 7] <- m[7, 6] <- m[12, 13] <- m[13, 12] <- 1
  expect_warning(markov <- vexa_estimate(m, c("edge", "2-star", "3-star", "Triangle"), seed = 1,
                                         settings = quiet(runs = 1)),
                 "did not converge", class = "vexa_not_converged")
  expect_false(markov$converged)
  expect_true(markov$verdict %in% c("not converged", "converged but noisy", "degenerate"))
  for (shown in list(capture.output(print(markov)), capture.output(print(summary(markov))))) {
    expect_true(any(grepl(paste0("^NOT CONVERGED \\(", markov$verdict, "\\)"), shown)))
    expect_false(any(grepl("Signif. codes", shown)))
  }

  # Too short a phase 3 in the plain mode: no run converges, and the fit reports the run
  # whose largest t-ratio was the smallest.
  data(flomarriage, package = "vexa")
  warned <- NULL
  fit <- withCallingHandlers(
    vexa_estimate(flomarriage, c("edge", AS = 2, AT = 2, A2P = 2), seed = 1, auto = FALSE,
                  settings = quiet(runs = 2, multiplication_factor = 1, phase3_steps = 100)),
    vexa_not_converged = function(w) {
      warned <<- conditionMessage(w)
      invokeRestart("muffleWarning")
    })
  expect_match(warned, sprintf("did not converge (%s)", fit$verdict), fixed = TRUE)
  expect_match(warned, "more runs", fixed = TRUE)
  largest <- vapply(fit$runs, function(run) if (run$degenerate) Inf else run$largest_t, 0)
  expect_equal(fit$verdicts, vapply(fit$runs, function(run) run$verdict, ""))
  expect_equal(fit$reported_run, which.min(largest))
  expect_equal(unname(coef(fit)), fit$runs[[fit$reported_run]]$estimates)
  expect_equal(fit$largest_t, min(largest))
})

test_that("arc and reciprocity estimate the dyad census's log-odds", {
  # A digraph with a known dyad census: mutual, asymmetric and null dyads are independent, so
  # exp(arc) = A / (2 N) and exp(2 arc + reciprocity) = M / N.
  set.seed(5)
  n <- 24
  m <- matrix(0L, n, n)
  for (i in 1:(n - 1)) for (j in (i + 1):n) {
    u <- runif(1)
    if (u < 0.12) { m[i, j] <- 1L; m[j, i] <- 1L }
    else if (u < 0.22) m[i, j] <- 1L
    else if (u < 0.32) m[j, i] <- 1L
  }
  mutual <- sum(m * t(m)) / 2
  asymmetric <- sum(m) - 2 * mutual
  null <- n * (n - 1) / 2 - mutual - asymmetric
  arc <- log(asymmetric / (2 * null))
  reciprocity <- log(mutual / null) - 2 * arc
  fit <- vexa_estimate(m, c("arc", "reciprocity"), seed = 3, directed = TRUE,
                       settings = quiet(runs = 3))
  # Within a small share of a standard error: the estimate's own noise is far below it.
  expect_true(all(abs(coef(fit) - c(arc, reciprocity)) < 0.3 * fit$std_errors))
  expect_equal(names(coef(fit)), c("arc", "reciprocity"))
})

test_that("a request and the bundled run file give the same estimate", {
  dir <- tempfile("vexa-run")
  dir.create(dir)
  extdata <- system.file("extdata", package = "vexa")
  file.copy(file.path(extdata, c("flomarriage_alternating.txt", "flomarriage.txt")), dir)
  old <- setwd(dir)
  on.exit(setwd(old))
  dir.create("out")
  files <- suppressMessages(vexa_run("flomarriage_alternating.txt", seed = 1, auto = FALSE))
  report <- file.path("out", "estimation_flomarriage_alternating.txt")
  expect_true(report %in% files)
  lines <- readLines(report)
  summary <- lines[seq(max(grep("^effects\testimates", lines)) + 1, length.out = 4)]
  from_file <- vapply(strsplit(summary, "\t"), `[`, "", 2)
  data(flomarriage, package = "vexa")
  fit <- vexa_estimate(flomarriage, c("edge", AS = 2, AT = 2, A2P = 2), seed = 1,
                       settings = quiet(runs = 10), auto = FALSE)
  expect_equal(sprintf("%f", coef(fit)), from_file)
  expect_equal(nrow(fit$trace), 7L)
})

test_that("a run file's chains give the same files on one thread as on two", {
  dir <- tempfile("vexa-chains")
  dir.create(dir)
  extdata <- system.file("extdata", package = "vexa")
  file.copy(file.path(extdata, c("flomarriage_alternating.txt", "flomarriage.txt")), dir)
  old <- setwd(dir)
  on.exit(setwd(old))
  dir.create("out")
  report <- file.path("out", "estimation_flomarriage_alternating.txt")
  run <- function(threads) {
    unlink(list.files("out", full.names = TRUE))  # the report is appended to, run after run
    suppressWarnings(suppressMessages(
      vexa_run("flomarriage_alternating.txt", seed = 2, auto = FALSE, chains = 3,
               threads = threads)))
    readLines(report)
  }
  expect_identical(run(1), run(2))
  expect_true(any(grepl("^phase-3 chains\t3,",
                        readLines(file.path("out", "convergence_flomarriage_alternating.txt")))))
  expect_error(vexa_run("flomarriage_alternating.txt", chains = 0), "chains")
})
