test_that("goodness of fit accounts for every node and pair, and plots", {
  data(flomarriage, package = "vexa")
  gof <- vexa_gof(flomarriage, c("edge", AS = 2), parameters = c(-1.6, 0), seed = 4,
                  settings = quiet(iterations = 20000, samples = 50))
  expect_equal(nrow(gof$statistics), 50L)
  expect_equal(unname(gof$observed_statistics[1]), 20)
  # Every sampled network has 16 nodes and 120 pairs, reachable or not.
  expect_true(all(rowSums(gof$degree) == 16))
  expect_true(all(rowSums(gof$geodesics) == 120))
  # The edge count is half the degree sum.
  degrees <- sweep(gof$degree, 2, seq_len(ncol(gof$degree)) - 1, `*`)
  expect_equal(unname(gof$statistics[, 1]), rowSums(degrees) / 2)
  expect_equal(gof$table$mean[1], mean(gof$statistics[, 1]))
  png_file <- tempfile(fileext = ".png")
  png(png_file, width = 900, height = 700)
  expect_silent(plot(gof))
  dev.off()
  expect_gt(file.size(png_file), 1000)
})

test_that("a digraph's goodness of fit has its triad census", {
  set.seed(2)
  m <- matrix(rbinom(100, 1, 0.2), 10)
  diag(m) <- 0
  gof <- vexa_gof(m, c("arc", "reciprocity"), parameters = c(-1.5, 1), seed = 2,
                  directed = TRUE, settings = quiet(iterations = 5000, samples = 20))
  expect_true(all(rowSums(gof$triads) == choose(10, 3)))
  expect_equal(sum(gof$observed_profile$triads), choose(10, 3))
  pdf_file <- tempfile(fileext = ".pdf")
  pdf(pdf_file)
  plot(gof)
  dev.off()
  expect_gt(file.size(pdf_file), 1000)
})

test_that("a simulation returns its networks with their statistics", {
  sim <- vexa_simulate(12, c("edge", "Triangle"), parameters = c(-1, 0.2), seed = 9,
                       networks = TRUE, settings = quiet(iterations = 5000, samples = 10))
  expect_equal(nrow(sim$statistics), 10L)
  edges <- vapply(sim$networks, function(m) sum(m) / 2, 0)
  triangles <- vapply(sim$networks, function(m) sum(diag(m %*% m %*% m)) / 6, 0)
  expect_equal(sim$statistics$edge, edges)
  expect_equal(sim$statistics$Triangle, triangles)
})

test_that("a simulation saves its final network as a tie list", {
  file <- tempfile(fileext = ".net")
  on.exit(unlink(file))
  sim <- vexa_simulate(12, c("edge", "Triangle"), parameters = c(-1, 0.2), seed = 9,
                       networks = TRUE, save_network = file,
                       settings = quiet(iterations = 5000, samples = 10, chains = 2))
  expect_equal(sim$saved_network, file)
  lines <- readLines(file)
  expect_equal(lines[1:2], c("*Vertices 12", "*Edges"))
  ties <- do.call(rbind, lapply(strsplit(lines[-(1:2)], " "), as.integer))
  saved <- matrix(0L, 12, 12)
  saved[ties] <- 1L
  saved[ties[, 2:1]] <- 1L
  expect_equal(saved, sim$networks[[10]])
  expect_error(vexa_simulate(12, "edge", parameters = -1, save_network = c("a", "b")),
               "save_network must be one file name")
})

test_that("chains give the same goodness of fit on one thread as on two", {
  data(flomarriage, package = "vexa")
  run <- function(threads) {
    vexa_gof(flomarriage, c("edge", AS = 2), parameters = c(-1.6, 0), seed = 4,
             settings = quiet(iterations = 20000, samples = 50, chains = 3, threads = threads))
  }
  one <- run(1)
  two <- run(2)
  expect_equal(nrow(one$statistics), 50L)
  expect_identical(one$statistics, two$statistics)
  expect_identical(one$table, two$table)
  expect_error(quiet(chains = 0), "chains")
})
