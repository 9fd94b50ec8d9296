# Models written as formulas: `net ~ edges + mutual + gwesp(0.5, fixed = TRUE)`. Each term is
# a vexa effect in an R-safe spelling (AT_T(2), same("group")) or another name for one in the
# style of the R package's terms (edges, gwesp, nodematch). Terms become the engine's effects,
# and their attributes become columns of the kind each term reads; the fit reports every
# coefficient under the term's own text.

# The terms of a formula's right-hand side, in order.
formula_terms <- function(rhs) {
  if (is.call(rhs) && identical(rhs[[1L]], as.name("+"))) {
    if (length(rhs) == 2L) return(formula_terms(rhs[[2L]]))
    return(c(formula_terms(rhs[[2L]]), formula_terms(rhs[[3L]])))
  }
  if (is.call(rhs) && identical(rhs[[1L]], as.name("("))) return(formula_terms(rhs[[2L]]))
  if (is.call(rhs) && identical(rhs[[1L]], as.name("-"))) {
    fail("the model formula cannot take a term away ('", deparse1(rhs), "'): list the terms ",
         "the model has")
  }
  list(rhs)
}

# Names compared as a user may type them: case, '_', '-', '.' and spaces aside.
squeeze <- function(x) gsub("[^a-z0-9]", "", tolower(x))

# The engine's table of effects and other names, for a network kind.
effect_table <- function(directed) {
  t <- .vexa_effect_table(isTRUE(directed))
  as.data.frame(t, stringsAsFactors = FALSE)
}

# One term of the formula: its name, text, number and attribute (or covariate) argument.
read_term <- function(term, env) {
  text <- paste(deparse(term, width.cutoff = 500L), collapse = " ")
  if (is.name(term)) return(list(name = as.character(term), text = text, args = list()))
  if (!is.call(term) || !is.name(term[[1L]])) fail("cannot read the model term '", text, "'")
  args <- as.list(term)[-1L]
  values <- lapply(args, function(a) {
    tryCatch(eval(a, env), error = function(e) {
      if (is.name(a)) {
        fail("term '", text, "': no object '", deparse1(a), "'; an attribute's name is ",
             "written in quotes: ", term[[1L]], "(\"", deparse1(a), "\")")
      }
      fail("term '", text, "': cannot evaluate '", deparse1(a), "': ", conditionMessage(e))
    })
  })
  names(values) <- names(args) %||% rep("", length(args))
  list(name = as.character(term[[1L]]), text = text, args = values)
}

# The number and attribute a term gives: its first unnamed number (or one named decay, k,
# lambda or alpha), its first unnamed string (or matrix, for a covariate); `fixed = FALSE`
# (a decay estimated with the model) is refused, since vexa fixes every lambda.
term_arguments <- function(term) {
  number <- NULL
  attribute <- NULL
  matrix_value <- NULL
  for (k in seq_along(term$args)) {
    key <- names(term$args)[k]
    value <- term$args[[k]]
    if (key == "fixed") {
      if (!isTRUE(value)) {
        fail("term '", term$text, "': vexa fixes the decay (lambda) of every term; ",
             "write fixed = TRUE, or compare several fixed decays")
      }
    } else if (key %in% c("decay", "k", "lambda", "alpha") ||
               (key == "" && (is.numeric(value) || identical(value, NA)) && !is.matrix(value) &&
                is.null(number))) {
      if (!is.numeric(value) || length(value) != 1L || !is.finite(value)) {
        fail("term '", term$text, "': its number must be one finite value")
      }
      number <- as.numeric(value)
    } else if (key %in% c("", "attr", "attrname", "x") && is.character(value) &&
               is.null(attribute)) {
      if (length(value) != 1L || is.na(value)) {
        fail("term '", term$text, "' takes one attribute name")
      }
      attribute <- value
    } else if (key %in% c("", "x") && (is.matrix(value) || inherits(value, "network")) &&
               is.null(matrix_value)) {
      matrix_value <- value
    } else {
      fail("term '", term$text, "': cannot use its argument ",
           if (key == "") k else paste0("'", key, "'"))
    }
  }
  list(number = number, attribute = attribute, matrix = matrix_value)
}

# The closest of `choices` to `typed`, by edit distance on the squeezed names.
closest_name <- function(typed, choices) {
  choices <- unique(choices[nzchar(choices)])
  d <- utils::adist(squeeze(typed), squeeze(choices))
  choices[which.min(d)]
}

# The names a user may type for a kind of network, for messages.
typed_names <- function(table) {
  structural <- table$name[table$kind == "structural"]
  suffixes <- sub("^<attribute>_", "", table$name[grepl("^<attribute>_", table$name)])
  aliases <- table$name[table$kind == "alias"]
  unique(c(structural, suffixes, aliases, reparameterised_names))
}

unknown_term <- function(term, table, directed) {
  fail("'", term$name, "' is neither a vexa effect nor another name for one on a ",
       if (directed) "digraph" else "graph", "; did you mean '",
       closest_name(term$name, typed_names(table)), "'? vexa_effects(",
       if (directed) "directed = TRUE" else "", ") lists them all")
}

# The suffixes of attribute effects that the typed name names: an exact match, else the
# shortest that begins with it when it begins every other (same -> same_Category, not
# same_Category_reciprocity). Returns a data frame of suffix and attribute kind.
attribute_suffixes <- function(name, table) {
  rows <- table[grepl("^<attribute>_", table$name), ]
  rows$suffix <- sub("^<attribute>_", "", rows$name)
  key <- squeeze(name)
  exact <- rows[squeeze(rows$suffix) == key, ]
  if (nrow(exact) > 0L) return(exact[, c("suffix", "kind")])
  starts <- rows[startsWith(squeeze(rows$suffix), key), ]
  if (nrow(starts) == 0L) return(starts[, c("suffix", "kind")])
  shortest <- starts$suffix[which.min(nchar(starts$suffix))]
  if (!all(startsWith(squeeze(starts$suffix), squeeze(shortest)))) {
    return(starts[0L, c("suffix", "kind")])
  }
  starts[starts$suffix == shortest, c("suffix", "kind")]
}

# Names of the R package's style whose statistic is a vexa effect's only up to the density
# term: fitted as that effect and reported in their own parameterisation (see reparameterise).
reparameterised_names <- c("gwdegree", "gwidegree", "gwodegree")

kind_codes <- c(binary = 0L, continuous = 1L, categorical = 2L)

# The attributes of the nodes by name: a network object's vertex attributes, then the columns
# of `attributes` (which win where both name one).
node_attributes <- function(net, attributes, n) {
  found <- list()
  if (inherits(net, "network")) {
    for (a in setdiff(network::list.vertex.attributes(net), c("na", "vertex.names"))) {
      found[[a]] <- network::get.vertex.attribute(net, a, unlist = TRUE)
    }
  }
  if (!is.null(attributes)) {
    if (!is.data.frame(attributes)) fail("attributes must be a data frame, one column per attribute")
    if (nrow(attributes) != n) {
      fail("attributes have ", nrow(attributes), " rows for a network of ", n, " nodes")
    }
    for (a in names(attributes)) found[[a]] <- attributes[[a]]
  }
  found
}

# The attribute a term reads, refused with the names there are when it is not among them.
attribute_values <- function(term, attribute, attrs, n) {
  if (is.null(attribute)) fail("term '", term$text, "' needs an attribute's name, as ",
                               term$name, "(\"group\")")
  x <- attrs[[attribute]]
  if (is.null(x)) {
    fail("term '", term$text, "': the network has no attribute '", attribute, "'",
         if (length(attrs) > 0L) paste0("; it has ", paste0("'", names(attrs), "'", collapse = ", "))
         else "; give attributes = data.frame(...) or a network object with vertex attributes")
  }
  if (is.factor(x)) x <- as.character(x)
  if (length(x) != n) fail("attribute '", attribute, "' has ", length(x), " values for ", n, " nodes")
  x
}

# The columns a binary effect reads: a logical attribute (or one of 0 and 1) as it is; any
# other attribute one column per value but the first (in sorted order), true where a node
# has that value.
binary_columns <- function(x, attribute) {
  if (is.logical(x) || (is.numeric(x) && all(x[!is.na(x)] %in% c(0, 1)))) {
    return(list(list(name = attribute, level = "", values = as.logical(x))))
  }
  levels <- sort(unique(x[!is.na(x)]))
  if (length(levels) < 2L) fail("attribute '", attribute, "' has one value only")
  lapply(levels[-1L], function(level) {
    list(name = paste0(attribute, ".", level), level = paste0(".", level), values = x == level)
  })
}

engine_column <- function(name, kind, values) {
  missing <- is.na(values)
  values <- switch(names(kind_codes)[kind + 1L],
                   binary = as.numeric(values),
                   continuous = as.numeric(values),
                   categorical = as.numeric(as.integer(factor(values))))
  values[missing] <- 0
  list(name = name, kind = kind, values = values, missing = missing)
}

# The columns of one term, of the kind its effect reads.
term_columns <- function(term, attribute, kind, attrs, n) {
  x <- attribute_values(term, attribute, attrs, n)
  if (kind == "binary") {
    return(lapply(binary_columns(x, attribute), function(b) {
      c(engine_column(b$name, 0L, b$values), list(level = b$level))
    }))
  }
  if (kind == "continuous" && !is.numeric(x) && !is.logical(x)) {
    fail("term '", term$text, "' weighs ties by the numbers of '", attribute, "', which holds ",
         class(x)[1L], " values")
  }
  if (kind == "continuous" && any(is.infinite(x))) {
    fail("attribute '", attribute, "' holds an infinite value")
  }
  list(c(engine_column(attribute, kind_codes[[kind]], x), list(level = "")))
}

# The engine's effect for a term, or its one line as an error.
engine_effect <- function(term, name, number, attribute = "", kinds = integer(),
                          covariate = "", directed) {
  got <- .vexa_resolve_term(name, number, attribute, kinds, covariate, isTRUE(directed))
  if (nzchar(got$error)) {
    message <- sub("^vexa: ", "", got$error)
    message <- gsub("vexa.effects()", "vexa_effects()", message, fixed = TRUE)
    fail("term '", term$text, "': ", message)
  }
  list(name = got$name, lambda = got$lambda)
}

# The covariate an edgecov term reads: a matrix in the formula, or the name of one given in
# `covariates` or held by the network object as a network attribute.
term_covariate <- function(term, args, net, covariates) {
  if (!is.null(args$matrix)) {
    m <- args$matrix
    if (inherits(m, "network")) m <- network::as.matrix.network.adjacency(m)
    name <- make.names(sub("^[^(]*\\(", "", sub("\\)$", "", term$text)))
    return(list(name = name, matrix = m))
  }
  name <- args$attribute
  if (is.null(name)) fail("term '", term$text, "' needs a matrix or the name of one")
  m <- if (is.list(covariates) && !is.null(covariates[[name]])) covariates[[name]] else NULL
  if (is.null(m) && inherits(net, "network") &&
      name %in% network::list.network.attributes(net)) {
    m <- network::get.network.attribute(net, name)
  }
  if (is.null(m) || !is.matrix(m)) {
    fail("term '", term$text, "': no covariate matrix '", name, "' in covariates or the network")
  }
  list(name = name, matrix = m)
}

# One term as the effects it becomes (a term of a many-valued attribute becomes one effect
# per value), each with the name it reports under and the columns it reads.
resolve_one <- function(term, table, directed, attrs, net, covariates, n) {
  args <- term_arguments(term)
  one <- function(effect, columns = list(), covariate = NULL, reparameterised = NULL,
                  suffix = "") {
    list(name = effect$name, lambda = effect$lambda, label = paste0(term$text, suffix),
         columns = columns, covariate = covariate, reparameterised = reparameterised)
  }
  aliases <- table[table$kind == "alias", ]
  structural <- table$name[table$kind == "structural"]
  if (term$name %in% reparameterised_names) {
    return(list(reparameterised_term(term, args, directed, one)))
  }
  is_structural <- squeeze(term$name) %in% squeeze(structural)
  if (term$name %in% aliases$name && !is_structural) {
    row <- aliases[aliases$name == term$name, ][1L, ]
    if (row$argument == "covariate") {
      cov <- term_covariate(term, args, net, covariates)
      effect <- engine_effect(term, term$name, NULL, cov$name, covariate = cov$name,
                              directed = directed)
      return(list(one(effect, covariate = cov)))
    }
    if (row$argument == "attribute" && nzchar(row$attribute_kind)) {
      return(lapply(term_columns(term, args$attribute, row$attribute_kind, attrs, n), function(col) {
        kinds <- setNames(col$kind, col$name)
        one(engine_effect(term, term$name, NULL, col$name, kinds, directed = directed),
            list(col), suffix = col$level)
      }))
    }
    return(list(one(engine_effect(term, term$name, args$number, directed = directed))))
  }
  if (is_structural) {
    name <- structural[match(squeeze(term$name), squeeze(structural))]
    if (!is.null(args$attribute)) {
      fail("term '", term$text, "': the structural effect ", name, " takes no attribute")
    }
    return(list(one(engine_effect(term, name, args$number, directed = directed))))
  }
  suffixes <- attribute_suffixes(term$name, table)
  if (nrow(suffixes) == 0L) unknown_term(term, table, directed)
  x <- attribute_values(term, args$attribute, attrs, n)
  preferred <- if (is.logical(x)) "binary" else if (is.numeric(x)) "continuous" else "categorical"
  chosen <- if (preferred %in% suffixes$kind) preferred else suffixes$kind[1L]
  suffix <- suffixes$suffix[suffixes$kind == chosen][1L]
  if (chosen == "covariate") {
    cov <- term_covariate(term, args, net, covariates)
    return(list(one(list(name = paste0(cov$name, "_", suffix), lambda = 0), covariate = cov)))
  }
  lapply(term_columns(term, args$attribute, chosen, attrs, n), function(col) {
    one(list(name = paste0(col$name, "_", suffix), lambda = 0), list(col), suffix = col$level)
  })
}

# gwdegree and its in- and out-degree forms: e^decay sum over nodes of 1 - (1 - e^-decay)^d.
# The alternating star at lambda = e^decay is lambda (c D - gw), D the density term's count
# (c = 2 on a graph, where degrees sum to twice the edges; 1 for in- or out-degrees on a
# digraph), so the model fits the alternating star and reports gw's own coefficient.
reparameterised_term <- function(term, args, directed, one) {
  target <- c(gwdegree = "AS", gwidegree = "AinS", gwodegree = "AoutS")[[term$name]]
  if (directed != (term$name != "gwdegree")) {
    fail("term '", term$text, "' is for ",
         if (directed) "graphs; on a digraph use gwidegree or gwodegree"
         else "digraphs; on a graph use gwdegree")
  }
  if (is.null(args$number) || args$number <= 0 || exp(args$number) > 1e6) {
    fail("term '", term$text, "' needs a decay above 0 (and below log(1e6))")
  }
  lambda <- exp(args$number)
  one(list(name = target, lambda = lambda),
      reparameterised = list(lambda = lambda, c = if (directed) 1 else 2))
}

# A model formula as the engine's request: the network, its effects, the columns and the
# covariate they read, and what each coefficient is reported as.
formula_model <- function(formula, attributes = NULL, covariates = NULL, directed = NULL) {
  if (!inherits(formula, "formula") || length(formula) != 3L) {
    fail("the model must be a formula such as net ~ edges + triangle")
  }
  env <- environment(formula) %||% parent.frame()
  net <- tryCatch(eval(formula[[2L]], env), error = function(e) {
    fail("cannot find the network '", deparse1(formula[[2L]]), "': ", conditionMessage(e))
  })
  network <- as_network(net, directed)
  table <- effect_table(network$directed)
  attrs <- node_attributes(net, attributes, network$n)
  terms <- lapply(formula_terms(formula[[3L]]), read_term, env = env)
  effects <- unlist(lapply(terms, resolve_one, table = table, directed = network$directed,
                           attrs = attrs, net = net, covariates = covariates, n = network$n),
                    recursive = FALSE)
  columns <- list()
  for (e in effects) for (col in e$columns) {
    same <- Filter(function(c) c$name == col$name, columns)
    if (length(same) == 0L) columns[[length(columns) + 1L]] <- col[c("name", "kind", "values",
                                                                      "missing")]
    else if (same[[1L]]$kind != col$kind) {
      fail("attribute '", col$name, "' is read as two kinds of attribute by the model's terms")
    }
  }
  covs <- Filter(Negate(is.null), lapply(effects, `[[`, "covariate"))
  if (length(unique(vapply(covs, `[[`, "", "name"))) > 1L) {
    fail("the model reads more than one covariate matrix; vexa takes one")
  }
  labels <- vapply(effects, `[[`, "", "label")
  if (anyDuplicated(labels)) fail("the model names the term '", labels[anyDuplicated(labels)],
                                  "' twice")
  list(network = network, net = net, labels = labels, attributes = attributes,
       effects = data.frame(name = vapply(effects, `[[`, "", "name"),
                            lambda = vapply(effects, function(e) as.numeric(e$lambda), 0),
                            stringsAsFactors = FALSE),
       columns = columns,
       covariate = if (length(covs) > 0L) setNames(list(covs[[1L]]$matrix), covs[[1L]]$name),
       reparameterised = lapply(effects, `[[`, "reparameterised"))
}
