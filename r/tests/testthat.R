library(testthat)
library(vexa)

test_check("vexa")
