// Attribute and covariate files through their readers, for every kind: the attribute count is
// the number of names on the first line and the node count the number of lines after it that
// hold a word, as the file's writer would have meant them.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "base/errors.h"
#include "base/matrix_text.h"
#include "entry/attribute_files.h"
#include "fuzz_support.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    vexa::fuzzing::enter_work_directory();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 1 << 16) return 0;
    const std::string text(reinterpret_cast<const char*>(data), size);
    size_t start = 0;
    int lines = 0;
    int names = 0;
    size_t words_after = 0;
    while (start <= text.size()) {
        size_t end = text.find('\n', start);
        if (end == std::string::npos) end = text.size();
        const size_t count = vexa::split_words(text.substr(start, end - start)).size();
        if (count > 0) {
            if (lines == 0)
                names = static_cast<int>(count);
            else
                words_after += count;
            ++lines;
        }
        start = end + 1;
    }
    const int nodes = std::max(lines - 1, 1);
    const int count = std::clamp(names, 1, 16);
    const int side = std::max(1, static_cast<int>(std::sqrt(static_cast<double>(words_after))));
    vexa::fuzzing::write_input("a.txt", data, size);
    for (const auto kind : {vexa::AttributeKind::binary, vexa::AttributeKind::continuous,
                            vexa::AttributeKind::categorical}) {
        try {
            vexa::read_attribute_file("a.txt", kind, count, nodes);
        } catch (const vexa::VexaError&) {
        }
    }
    try {
        vexa::read_covariate_file("a.txt", side);
    } catch (const vexa::VexaError&) {
    }
    return 0;
}
