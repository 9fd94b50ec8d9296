#include "entry/run_file.h"

#include "base/errors.h"

namespace vexa {

RunFile read_run_file(const std::string& path, FILE* /*console*/) {
    throw RunFileError(format_message("vexa: run file '%s' cannot be read yet", path.c_str()));
}

}  // namespace vexa
