// Matrix files through every reader of them: networks of both kinds, constraints of both
// kinds, and square matrices of numbers. The size is the number of words on the first line,
// as a person writing the file would make it. A store that is read must be consistent.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "base/errors.h"
#include "base/matrix_text.h"
#include "fuzz_support.h"
#include "network/digraph.h"
#include "network/dyad_mask.h"
#include "network/graph.h"
#include "numeric/matrix.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    vexa::fuzzing::enter_work_directory();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > 1 << 16) return 0;
    const std::string text(reinterpret_cast<const char*>(data), size);
    const size_t first_line = text.find('\n');
    const auto words = vexa::split_words(text.substr(0, first_line));
    const int n = words.empty() ? 1 : static_cast<int>(std::min<size_t>(words.size(), 64));
    vexa::fuzzing::write_input("m.txt", data, size);
    const auto attempt = [](auto&& read) {
        try {
            read();
        } catch (const vexa::VexaError&) {
        }
    };
    attempt([&] {
        vexa::MatrixNotes notes;
        const vexa::Graph g = vexa::read_graph("m.txt", n, &notes);
        if (!vexa::check_bookkeeping(g).empty()) __builtin_trap();
        vexa::matrix_note_lines(notes, "network", "m.txt");
    });
    attempt([&] {
        const vexa::Digraph d = vexa::read_digraph("m.txt", n);
        if (!vexa::check_bookkeeping(d).empty()) __builtin_trap();
    });
    attempt([&] { vexa::read_dyad_mask("m.txt", n, vexa::NetworkKind::graph); });
    attempt([&] { vexa::read_dyad_mask("m.txt", n, vexa::NetworkKind::digraph); });
    attempt([&] { vexa::read_matrix("m.txt", n); });
    return 0;
}
