// vexa RUNFILE: runs a run file exactly as the library's entries do.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "entry/parameter_sets.h"
#include "entry/run_driver.h"
#include "entry/template_command.h"
#include "sampler/cluster.h"

#if defined(_WIN32)
#include <vector>

#include "base/unicode.h"
#endif

namespace {

void usage(FILE* out) {
    std::fprintf(
        out,
        "usage: vexa [--seed N] [--auto] [--check] [--sampler V] [--store dense|sparse]\n"
        "            [--method sa|ee] [--chains K] [--threads N] [--save-network FILE]\n"
        "            [--start-from FILE] [--html]\n"
        "            RUNFILE\n"
        "       vexa [--seed N] --draw-sets COUNT SETSFILE RUNFILE\n"
        "       vexa template --task T --kind K [--network FILE] [--effects LIST] ...\n"
        "       vexa effects [--kind graph|digraph]\n"
        "Runs the estimation, simulation or goodness-of-fit run that RUNFILE describes and\n"
        "writes its reports where the run file says. Exits with 0 after a complete run, 1 when\n"
        "the run was refused or stopped, and 3 when an estimation ended without a converged run.\n"
        "  --seed N     make the run reproducible: every random stream of the run derives from N\n"
        "  --auto       estimate automatically: start from the pseudo-likelihood estimate, take\n"
        "               the tie/no-tie proposal on sparse networks (the closure proposal on\n"
        "               clustered graphs), space the draws by the chain's measured\n"
        "               autocorrelation and run phase 3 until every statistic\n"
        "               has 1,000 effective draws; the run file's settings are the least it does\n"
        "  --check      after an estimation converges, check the estimate with a long chain of\n"
        "               near-independent draws and say whether it is confirmed\n"
        "  --sampler V  the proposal of every chain, over the run file's: 0 the toggle of one\n"
        "               dyad, 1 a move that keeps the number of ties, 2 (digraphs) a move that\n"
        "               keeps every out-degree, 3 the tie/no-tie proposal (a present tie half of\n"
        "               the time: far faster mixing on sparse networks), 4 (graphs) the closure\n"
        "               proposal (tie/no-tie moves and dyads that close a two-path: faster still\n"
        "               on clustered networks under triangle effects)\n"
        "  --method M   how an estimation finds its estimate: sa, stochastic approximation (the\n"
        "               default), or ee, equilibrium expectation: one chain from the observed\n"
        "               network, never restarted, the parameters moved against the drift of the\n"
        "               statistics after every short block of steps (for large networks); both\n"
        "               end with phase 3's standard errors, t-ratios and verdict\n"
        "  --draw-sets COUNT SETSFILE\n"
        "               run nothing: after the estimation that RUNFILE describes, write COUNT\n"
        "               parameter sets drawn from the normal distribution around its estimates\n"
        "               with its covariance (its estimation report's last table, matched to\n"
        "               RUNFILE's model by label) to SETSFILE, one per line, for a Bayesian\n"
        "               goodness of fit (task 4)\n"
        "  --store S    the network store: dense (n x n arrays, fastest on small networks) or\n"
        "               sparse (memory in proportion to the ties); without it, sparse above\n"
        "               20,000 nodes or when the dense arrays would take half the memory\n"
        "  --chains K   draw from K chains, each from its own copy of the network with its own\n"
        "               burn-in and random stream: a simulation or goodness of fit shares its\n"
        "               samples among them, an estimation its phase-3 draws (default 1; 8 with\n"
        "               --auto). Each chain holds a copy of the network in memory\n"
        "  --threads N  run the chains on N threads (default: the cores available); the\n"
        "               results depend on the seed and K alone, never on N\n"
        "  --save-network FILE\n"
        "               a simulation saves its final network in FILE as a tie list (*Vertices,\n"
        "               then *Edges or *Arcs, nodes from 1), which a run reads back as its\n"
        "               network file; other tasks save none\n"
        "  --start-from FILE\n"
        "               the model's effects take the estimates of an earlier run, matched by\n"
        "               label: its estimation report (the last run's table) or an update file;\n"
        "               a file that does not fit the model is refused, naming the effects\n"
        "  --html       also write the report as one self-contained HTML page with plots,\n"
        "               report_NAME.html in the output directory\n"
        "  --help       show this help\n"
        "  --version    show the version\n");
}

// A whole number within 32 bits. (unsigned long has only 32 bits on Windows, where strtoul
// would cap a larger number silently.)
bool parse_seed(const char* text, unsigned long& seed) {
    char* end = nullptr;
    errno = 0;
    const unsigned long long value = std::strtoull(text, &end, 10);
    if (end == text || *end != '\0' || text[0] == '-' || errno == ERANGE || value > 0xffffffffULL)
        return false;
    seed = static_cast<unsigned long>(value);
    return true;
}

// The whole number from 1 to `most` after option `name` at argv[k], moving k past it; false
// (after saying why) when there is none.
bool take_count(int argc, char** argv, int& k, const char* name, unsigned long most,
                int32_t& count) {
    unsigned long value = 0;
    if (k + 1 >= argc || !parse_seed(argv[k + 1], value) || value < 1 || value > most) {
        std::fprintf(stderr, "vexa: %s needs a whole number from 1 to %lu\n", name, most);
        return false;
    }
    count = static_cast<int32_t>(value);
    ++k;
    return true;
}

// What the arguments ask for.
struct CommandLine {
    vexa::RunOptions options;
    const char* run_file = nullptr;
    long draw_count = -1;
    const char* sets_file = nullptr;
};

// Takes the word after option `name` at argv[k], one of two, moving k past it; `second` says
// which. False, with the line saying what the option needs, for any other word.
bool take_either(int argc, char** argv, int& k, const char* name, const char* first,
                 const char* other, bool& second) {
    const char* word = k + 1 < argc ? argv[k + 1] : "";
    second = std::strcmp(word, other) == 0;
    if (!second && std::strcmp(word, first) != 0) {
        std::fprintf(stderr, "vexa: %s needs %s or %s\n", name, first, other);
        return false;
    }
    ++k;
    return true;
}

// An option with a file name (--save-network FILE) at argv[k]: -1 when taken (k moved past
// FILE), 2 (after saying why) without a file name.
int take_file(int argc, char** argv, int& k, const char* name, std::string& file) {
    if (k + 1 >= argc || argv[k + 1][0] == '\0') {
        std::fprintf(stderr, "vexa: %s needs a file name\n", name);
        return 2;
    }
    file = argv[++k];
    return -1;
}

// The options without a value; false when arg is none of them.
bool take_flag(const char* arg, CommandLine& line) {
    bool* flag = std::strcmp(arg, "--check") == 0  ? &line.options.confirm
                 : std::strcmp(arg, "--html") == 0 ? &line.options.html
                 : std::strcmp(arg, "--auto") == 0 ? &line.options.automatic
                                                   : nullptr;
    if (flag != nullptr) *flag = true;
    return flag != nullptr;
}

// Takes the option at argv[k] (and its values), moving k past them. Returns -1 when the option
// was taken, else the exit status to end with (0 after --help or --version, 2 for a mistake).
int take_option(int argc, char** argv, int& k, CommandLine& line) {
    const char* arg = argv[k];
    if (std::strcmp(arg, "--help") == 0 || std::strcmp(arg, "-h") == 0) {
        usage(stdout);
        return 0;
    }
    if (std::strcmp(arg, "--version") == 0) {
        std::printf("vexa %s\n", VEXA_VERSION);
        return 0;
    }
    if (std::strcmp(arg, "--sampler") == 0) {
        unsigned long code = 0;
        if (k + 1 >= argc || !parse_seed(argv[k + 1], code) || code > 4) {
            std::fprintf(stderr, "vexa: --sampler needs 0, 1, 2, 3 or 4\n");
            return 2;
        }
        line.options.sampler_code = static_cast<int32_t>(code);
        ++k;
        return -1;
    }
    if (std::strcmp(arg, "--draw-sets") == 0) {
        unsigned long count = 0;
        if (k + 2 >= argc || !parse_seed(argv[k + 1], count) || count < 1 || count > 100000000UL) {
            std::fprintf(stderr,
                         "vexa: --draw-sets needs a count from 1 to 100000000 and a file name\n");
            return 2;
        }
        line.draw_count = static_cast<long>(count);
        line.sets_file = argv[k + 2];
        k += 2;
        return -1;
    }
    bool second = false;
    if (std::strcmp(arg, "--store") == 0) {
        if (!take_either(argc, argv, k, arg, "dense", "sparse", second)) return 2;
        line.options.store = second ? vexa::StoreChoice::sparse : vexa::StoreChoice::dense;
        return -1;
    }
    if (std::strcmp(arg, "--method") == 0) {
        if (!take_either(argc, argv, k, arg, "sa", "ee", second)) return 2;
        line.options.method = second ? vexa::EstimationMethod::equilibrium_expectation
                                     : vexa::EstimationMethod::stochastic_approximation;
        return -1;
    }
    if (std::strcmp(arg, "--chains") == 0)
        return take_count(argc, argv, k, arg, vexa::max_chains, line.options.chains) ? -1 : 2;
    if (std::strcmp(arg, "--threads") == 0)
        return take_count(argc, argv, k, arg, 4096, line.options.threads) ? -1 : 2;
    if (std::strcmp(arg, "--save-network") == 0)
        return take_file(argc, argv, k, arg, line.options.save_network);
    if (std::strcmp(arg, "--start-from") == 0)
        return take_file(argc, argv, k, arg, line.options.start_from);
    if (take_flag(arg, line)) return -1;
    if (std::strcmp(arg, "--seed") == 0) {
        unsigned long seed = 0;
        if (k + 1 >= argc || !parse_seed(argv[k + 1], seed)) {
            std::fprintf(stderr, "vexa: --seed needs a whole number from 0 to 4294967295\n");
            return 2;
        }
        line.options.fixed_seed = true;
        line.options.seed = static_cast<uint32_t>(seed);
        ++k;
        return -1;
    }
    std::fprintf(stderr, "vexa: unknown option '%s'\n", arg);
    usage(stderr);
    return 2;
}

int run_parsed(int argc, char** argv, CommandLine& line);

int run_command_line(int argc, char** argv) {
    CommandLine line;
    // Started by mpirun, every process runs the task; process 0 alone speaks and writes.
    const vexa::Cluster cluster = vexa::process_cluster();
    FILE* quiet = nullptr;
    if (cluster.rank != 0) {
        quiet = std::fopen("/dev/null", "w");
        line.options.console = quiet;
    }
    const int status = run_parsed(argc, argv, line);
    if (quiet != nullptr) std::fclose(quiet);
    return status;
}

int run_parsed(int argc, char** argv, CommandLine& line) {
    // Commands that write a run file or the effect list and run nothing.
    if (argc > 1 && std::strcmp(argv[1], "template") == 0)
        return vexa::template_command(argc - 1, argv + 1, stdout, stderr);
    if (argc > 1 && std::strcmp(argv[1], "effects") == 0)
        return vexa::effects_command(argc - 1, argv + 1, stdout, stderr);
    for (int k = 1; k < argc; ++k) {
        const char* arg = argv[k];
        if (arg[0] == '-' && arg[1] != '\0') {
            const int status = take_option(argc, argv, k, line);
            if (status >= 0) return status;
            continue;
        }
        if (line.run_file != nullptr) {
            std::fprintf(stderr, "vexa: one run file at a time ('%s' and '%s')\n", line.run_file,
                         arg);
            return 2;
        }
        line.run_file = arg;
    }
    if (line.run_file == nullptr) {
        usage(stderr);
        return 2;
    }
    if (line.sets_file != nullptr) {
        // The sets are one file: process 0 writes it.
        if (vexa::process_cluster().rank != 0) return 0;
        return vexa::draw_parameter_sets_entry(line.run_file, static_cast<int>(line.draw_count),
                                               line.sets_file, line.options);
    }
    return vexa::run_entry(line.run_file, line.options);
}

}  // namespace

#if defined(_WIN32)
// Windows hands narrow arguments over in the system's code page, which cannot name every
// file: take the UTF-16 ones and pass them on in UTF-8, the engine's form of paths.
int wmain(int argc, wchar_t** argv) {
    std::vector<std::string> texts;
    for (int k = 0; k < argc; ++k) {
        const std::wstring_view wide(argv[k]);
        texts.push_back(vexa::utf8_from_utf16(std::u16string(wide.begin(), wide.end())));
    }
    std::vector<char*> narrow;
    for (std::string& text : texts) narrow.push_back(text.data());
    narrow.push_back(nullptr);
    return run_command_line(argc, narrow.data());
}
#else
int main(int argc, char** argv) {
    vexa::ClusterSession session(&argc, &argv);
    const int status = run_command_line(argc, argv);
    // A run that failed in one process leaves the others waiting for it: end them all.
    if (status == vexa::run_status_failed) session.end_all(status);
    return status;
}
#endif
