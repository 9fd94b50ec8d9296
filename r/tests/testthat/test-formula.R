# Formulas: terms of the R package's style and vexa's own count what their definitions say
# (recounted here by brute force), fits report each term under its own name, and a fit agrees
# with the R package's published estimates on the bundled networks.

small_networks <- function() {
  set.seed(7)
  n <- 9
  d <- matrix(rbinom(n * n, 1, 0.35), n, n)
  diag(d) <- 0
  g <- d
  g[lower.tri(g)] <- t(g)[lower.tri(g)]
  nodes <- data.frame(x = round(rnorm(n), 2), c = c("a", "a", "b", "b", "c", "a", "b", "c", "a"),
                      z = rep(c(TRUE, FALSE, TRUE), 3), stringsAsFactors = FALSE)
  w <- matrix(round(rnorm(n * n), 2), n, n)
  list(g = g, d = d, nodes = nodes, w = w + t(w))
}

# Shared partners of i and j on a graph, and the geometrically weighted sum of counts.
gw <- function(counts, decay) exp(decay) * sum(1 - (1 - exp(-decay))^counts)

test_that("graph terms count what their definitions say", {
  s <- small_networks()
  g <- s$g
  pairs <- which(upper.tri(g), arr.ind = TRUE)
  shared <- (g %*% g)[pairs]
  tied <- g[pairs] == 1
  degree <- rowSums(g)
  x <- s$nodes$x
  w <- s$w
  f <- g ~ edges + kstar(2) + triangle + gwesp(0.7, fixed = TRUE) + gwdsp(0.7) + gwdegree(0.4) +
    nodematch("c") + nodecov("x") + absdiff("x") + nodefactor("c") + edgecov(w) + prod("x")
  got <- vexa_statistics(f, attributes = s$nodes)
  ends <- function(v) sum(outer(v, v, "+")[pairs][tied]) / 1
  expected <- c(sum(tied), sum(choose(degree, 2)), sum(diag(g %*% g %*% g)) / 6,
                gw(shared[tied], 0.7), gw(shared, 0.7), gw(degree, 0.4),
                sum(tied & (s$nodes$c[pairs[, 1]] == s$nodes$c[pairs[, 2]])),
                ends(x), sum(abs(x[pairs[, 1]] - x[pairs[, 2]])[tied]),
                ends(s$nodes$c == "b"), ends(s$nodes$c == "c"), sum(w[pairs][tied]),
                sum((x[pairs[, 1]] * x[pairs[, 2]])[tied]))
  expect_equal(unname(got), expected, tolerance = 1e-5)
  expect_equal(names(got)[c(4, 6, 10, 11)], c("gwesp(0.7, fixed = TRUE)", "gwdegree(0.4)",
                                               "nodefactor(\"c\").b", "nodefactor(\"c\").c"))
})

test_that("digraph terms count what their definitions say", {
  s <- small_networks()
  d <- s$d
  x <- s$nodes$x
  arcs <- which(d == 1, arr.ind = TRUE)
  two_paths <- d %*% d
  diag(two_paths) <- 0
  f <- d ~ edges + mutual + istar(2) + ostar(2) + ttriple + ctriple + dgwesp_OTP(0.6) +
    gwidegree(0.5) + gwodegree(0.5) + nodeicov("x") + nodeocov("x") + nodematch("c") +
    diff("x") + receiver("z") + AT_C(2)
  got <- vexa_statistics(f, attributes = s$nodes)
  same_c <- s$nodes$c[arcs[, 1]] == s$nodes$c[arcs[, 2]]
  expected <- c(nrow(arcs), sum(d * t(d)) / 2, sum(choose(colSums(d), 2)),
                sum(choose(rowSums(d), 2)), sum(two_paths * d), sum(diag(d %*% d %*% d)) / 3,
                gw(two_paths[arcs], 0.6), gw(colSums(d), 0.5), gw(rowSums(d), 0.5),
                sum(x[arcs[, 2]]), sum(x[arcs[, 1]]), sum(same_c),
                sum(abs(x[arcs[, 1]] - x[arcs[, 2]])), sum(s$nodes$z[arcs[, 2]]),
                gw(two_paths[arcs[, 2:1]], log(2)))
  expect_equal(unname(got), expected, tolerance = 1e-5)
  # A digraph's gwesp closes the two-paths i -> k -> j, as dgwesp_OTP does.
  expect_equal(unname(vexa_statistics(d ~ gwesp(0.6, fixed = TRUE))), expected[7],
               tolerance = 1e-5)
})

test_that("a formula fit agrees with the R package's estimates, under the names typed", {
  # The R package's maximum likelihood estimates (and standard errors) of the same models.
  data(flomarriage, package = "vexa")
  data(flomarriage_nodes, package = "vexa")
  data(samplike, package = "vexa")
  data(samplike_nodes, package = "vexa")
  fit <- vexa(flomarriage ~ edges + gwesp(0.5, fixed = TRUE) + nodecov("wealth"),
              attributes = flomarriage_nodes, seed = 1, settings = quiet())
  expected <- c(-2.5986, -0.0012, 0.0104)
  se <- c(0.5503, 0.2585, 0.0054)
  expect_true(fit$converged)
  expect_equal(names(coef(fit)), c("edges", "gwesp(0.5, fixed = TRUE)", "nodecov(\"wealth\")"))
  expect_true(all(abs(coef(fit) - expected) < 0.3 * se))
  expect_equal(unname(fit$std_errors), se, tolerance = 0.2)
  fit <- vexa(samplike ~ edges + mutual + nodematch("group"), attributes = samplike_nodes,
              seed = 1, settings = quiet())
  expect_true(all(abs(coef(fit) - c(-2.2522, 1.4533, 2.0143)) < 0.3 * c(0.2261, 0.4669, 0.3184)))
  # Names round-trip: into vcov, summary, the goodness of fit and the simulation.
  typed <- c("edges", "mutual", "nodematch(\"group\")")
  expect_equal(dimnames(vcov(fit)), list(typed, typed))
  expect_equal(rownames(summary(fit)$coefficients), typed)
  gof <- vexa_gof(fit, seed = 2, settings = quiet(iterations = 20000, samples = 100))
  expect_equal(gof$table$statistic[1:3], typed)
  expect_true(all(abs(gof$table$t[1:3]) < 2))
  expect_equal(colnames(attr(simulate(fit, nsim = 2, seed = 3, output = "matrix"), "stats")),
               typed)
})

test_that("gwdegree is the alternating star in its own parameterisation", {
  # AS = lambda (2 edges - gwdegree): the same model, so the same chain at the same seed, and
  # coefficients that turn into each other exactly.
  data(flomarriage, package = "vexa")
  lambda <- exp(0.8)
  a <- vexa(flomarriage ~ edges + gwdegree(0.8), seed = 5, settings = quiet(runs = 1))
  b <- vexa(flomarriage ~ edges + AS(lambda), seed = 5, settings = quiet(runs = 1))
  expect_equal(unname(coef(a)), unname(c(coef(b)[1] + 2 * lambda * coef(b)[2],
                                         -lambda * coef(b)[2])), tolerance = 1e-8)
  A <- matrix(c(1, 0, 2 * lambda, -lambda), 2)
  expect_equal(unname(vcov(a)), unname(A %*% vcov(b) %*% t(A)), tolerance = 1e-8)
  # Phase 3's draws in the new form centre on the observed gwdegree as the fit says.
  d <- mcmc_diagnostics(a, plot = FALSE)
  expect_equal(unname(d$table$observed[2]), gw(rowSums(flomarriage), 0.8), tolerance = 1e-6)
  expect_error(vexa(flomarriage ~ gwdegree(0.8)), "add edges", class = "vexa_error")
})

test_that("simulate() starts from the observed network and keeps its attributes", {
  skip_if_not_installed("network")
  data(samplike, package = "vexa")
  data(samplike_nodes, package = "vexa")
  net <- network::network(samplike, directed = TRUE)
  for (a in names(samplike_nodes)) {
    net <- network::set.vertex.attribute(net, a, samplike_nodes[[a]])
  }
  fit <- vexa(net ~ edges + mutual + nodematch("group"), seed = 4, settings = quiet())
  one <- simulate(fit, nsim = 1, seed = 1, burn_in = 0, interval = 1)
  expect_s3_class(one[[1]], "network")
  expect_equal(network::get.vertex.attribute(one[[1]], "group"), samplike_nodes$group)
  # One proposal from the observed network changes at most one arc.
  expect_lte(sum(abs(network::as.matrix.network.adjacency(one[[1]]) - samplike)), 1)
  # A constraint keeps every dyad it does not free as observed.
  free <- matrix(FALSE, 18, 18)
  free[1:6, 1:6] <- TRUE
  held <- vexa(net ~ edges + mutual, constraint = free, seed = 4, settings = quiet())
  sims <- simulate(held, nsim = 5, seed = 2, output = "matrix")
  for (m in sims) expect_equal(m[!free], samplike[!free])
  expect_error(vexa(net ~ edges, constraint = matrix(FALSE, 18, 18)), "fixes every dyad",
               class = "vexa_error")
})

test_that("the Bayesian goodness of fit draws its parameters from the fit", {
  data(flomarriage, package = "vexa")
  fit <- vexa(flomarriage ~ edges + triangle, seed = 6, settings = quiet())
  g <- vexa_gof(fit, bayes = TRUE, sets = 40, seed = 7, settings = quiet(burn_in = 2000))
  expect_equal(nrow(g$statistics), 40L)
  expect_equal(g$table$statistic[1:2], c("edges", "triangle"))
  # Parameters spread as the fit's uncertainty: the edges drawn spread wider than at the
  # estimate alone.
  plain <- vexa_gof(fit, seed = 7, settings = quiet(burn_in = 2000, iterations = 40000,
                                                    samples = 40))
  expect_gt(sd(g$statistics[, 1]), sd(plain$statistics[, 1]))
})

test_that("terms that cannot be used are refused with what to write", {
  data(flomarriage, package = "vexa")
  data(flomarriage_nodes, package = "vexa")
  expect_error(vexa(flomarriage ~ edges + nodmatch("x")), "did you mean 'nodematch'",
               class = "vexa_error")
  expect_error(vexa(flomarriage ~ edges + AS(0.5)), "lambda 0.5 is below 1",
               class = "vexa_error")
  expect_error(vexa(flomarriage ~ edges + gwesp(0.5, fixed = FALSE)), "fixed = TRUE",
               class = "vexa_error")
  expect_error(vexa(flomarriage ~ edges + nodecov("wealthy"), attributes = flomarriage_nodes),
               "it has 'wealth'", class = "vexa_error")
  expect_error(vexa(flomarriage ~ edges + gwidegree(0.5)), "for digraphs", class = "vexa_error")
  expect_error(vexa(flomarriage ~ edges + nodecov(wealth), attributes = flomarriage_nodes),
               "written in quotes: nodecov\\(\"wealth\"\\)", class = "vexa_error")
  expect_error(vexa_estimate(flomarriage, c("edge", "Triangel")), "did you mean 'Triangle'",
               class = "vexa_error")
  expect_true(all(c("gwesp(decay)", "AT_T(lambda)") %in%
                    c(vexa_effects()$term, vexa_effects(TRUE)$term)))
})
