# The three tasks run with their results in memory: nothing is written, wherever R stands, and
# the progress bar moves with the engine's events, up to its end.

# The shares a run reports, recorded by a progress function in place of the bar.
shares_of <- function(run) {
  shown <- numeric()
  run(function(share) shown <<- c(shown, share))
  shown
}

test_that("estimation, simulation and goodness of fit write nothing and move the bar", {
  data(flomarriage, package = "vexa")
  here <- tempfile("vexa-nothing-written")
  dir.create(here)
  old <- setwd(here)
  on.exit(setwd(old), add = TRUE)
  settings <- function(bar) {
    vexa_settings(runs = 2, burn_in = 2000, iterations = 200000, samples = 20, progress = bar)
  }
  estimate <- shares_of(function(bar) {
    vexa_estimate(flomarriage, c("edge", AS = 2), seed = 1, settings = settings(bar))
  })
  simulate <- shares_of(function(bar) {
    vexa_simulate(16, c("edge", AS = 2), parameters = c(-2, 0.1), seed = 2,
                  settings = settings(bar))
  })
  gof <- shares_of(function(bar) {
    vexa_gof(flomarriage, c("edge", AS = 2), parameters = c(-1.6, 0), seed = 3,
             settings = settings(bar))
  })
  for (shown in list(estimate, simulate, gof)) {
    expect_gt(length(shown), 3L)       # moved along the way, not only at the end
    expect_false(is.unsorted(shown))   # never backwards
    expect_equal(tail(shown, 1), 1)
  }
  expect_length(list.files(here, all.files = TRUE, no.. = TRUE, recursive = TRUE), 0L)
})

test_that("the reports are written where the settings ask", {
  data(flomarriage, package = "vexa")
  out <- tempfile("vexa-reports")
  fit <- vexa_estimate(flomarriage, "edge", seed = 1,
                       settings = quiet(runs = 5, output_dir = out))
  written <- list.files(out)
  expect_true("estimation_estimate.txt" %in% written)
  expect_true("stupdate.vexa" %in% written)  # the update files beside the reports
  expect_equal(normalizePath(fit$output_dir), normalizePath(out))
})
