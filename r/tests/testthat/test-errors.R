test_that("bad input raises the engine's one line as a condition", {
  data(flomarriage, package = "vexa")
  expect_error(vexa_estimate(flomarriage, c("edge", "bogus")),
               "no effect 'bogus'", class = "vexa_error")
  bad <- flomarriage
  bad[1, 2] <- 2
  expect_error(vexa_estimate(bad, "edge"), "holds 2 at row 1, column 2", class = "vexa_error")
  expect_error(vexa_estimate(flomarriage, c(edge = 2)), "takes no lambda", class = "vexa_error")
  expect_error(vexa_estimate(flomarriage, "edge", attributes = data.frame(x = 1:3)),
               "3 rows for a network of 16", class = "vexa_error")
  expect_error(vexa_gof(flomarriage, "edge", parameters = 1,
                        settings = quiet(iterations = 10, samples = 100)),
               "keeps no sample", class = "vexa_error")
  expect_error(vexa_run(file.path(tempdir(), "none.txt")), "cannot open run file",
               class = "vexa_error")
  expect_error(vexa_settings(runs = 0), "'runs'", class = "vexa_error")
})

test_that("attributes enter the model by name", {
  data(flomarriage, package = "vexa")
  nodes <- data.frame(rich = rep(c(TRUE, FALSE), 8), wealth = seq_len(16),
                      party = factor(rep(c("a", "b", "c", "d"), 4)))
  fit <- vexa_estimate(flomarriage, c("edge", "party_Same_Category_edge", "rich_activity"),
                       attributes = nodes, seed = 2, settings = quiet(runs = 1))
  # Reported as typed, in the order typed (the engine orders its effects otherwise).
  expect_equal(names(coef(fit)), c("edge", "party_Same_Category_edge", "rich_activity"))
})

test_that("a network object is read with its direction", {
  skip_if_not_installed("network")
  data(flomarriage, package = "vexa")
  net <- network::network(flomarriage, directed = FALSE)
  fit <- vexa_estimate(net, "edge", seed = 11, settings = quiet(runs = 10))
  expect_equal(coef(fit), coef(vexa_estimate(flomarriage, "edge", seed = 11,
                                             settings = quiet(runs = 10))))
})
