# Models whose maximum likelihood estimates have a closed form: the stochastic approximation
# must land on them, and its standard errors near the exact ones.

test_that("the edge-only model estimates the log-odds of a tie", {
  data(flomarriage, package = "vexa")
  fit <- vexa_estimate(flomarriage, "edge", seed = 11, settings = quiet(runs = 10))
  dyads <- 16 * 15 / 2
  p <- 20 / dyads
  expect_true(fit$converged)
  expect_equal(unname(coef(fit)), log(p / (1 - p)), tolerance = 0.02)
  expect_equal(unname(fit$std_errors), sqrt(1 / (dyads * p * (1 - p))), tolerance = 0.15)
  expect_equal(dim(vcov(fit)), c(1L, 1L))
  expect_equal(names(coef(fit)), "edge")
  expect_output(print(summary(fit)), "converged")
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
  files <- suppressMessages(vexa_run("flomarriage_alternating.txt", seed = 1))
  report <- file.path("out", "estimation_flomarriage_alternating.txt")
  expect_true(report %in% files)
  lines <- readLines(report)
  summary <- lines[seq(max(grep("^effects\testimates", lines)) + 1, length.out = 4)]
  from_file <- vapply(strsplit(summary, "\t"), `[`, "", 2)
  data(flomarriage, package = "vexa")
  fit <- vexa_estimate(flomarriage, c("edge", AS = 2, AT = 2, A2P = 2), seed = 1,
                       settings = quiet(runs = 10))
  expect_equal(sprintf("%f", coef(fit)), from_file)
  expect_equal(nrow(fit$trace), 7L)
})
