quiet <- function(...) vexa_settings(progress = FALSE, ...)
