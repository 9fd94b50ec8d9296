// Both exported entries, called through the shared library as a host process calls them, on
// files whose names go beyond ASCII: Latin accents, Greek, CJK and a character beyond U+FFFF,
// which a Java string holds as two surrogates. The JNI entry gets a stand-in environment that
// hands out the path's modified UTF-8 bytes, spelled out by hand below.
#include <gtest/gtest.h>
#include <jni.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "entry/export/vexa.h"

extern "C" jint JNICALL Java_Vexa_vexa(JNIEnv* env, jobject self, jstring path);

namespace {

namespace fs = std::filesystem;

// A JNI environment with the three functions the entry may call; it counts how often the
// path's characters are handed out and given back.
struct StandInEnv {
    JNIEnv env{};  // first, so that the JNIEnv* the entry passes back leads here
    JNINativeInterface_ table{};
    int handed_out = 0;
    int given_back = 0;

    StandInEnv() {
        table.GetStringUTFChars = [](JNIEnv* e, jstring text, jboolean* copy) -> const char* {
            ++reinterpret_cast<StandInEnv*>(e)->handed_out;
            if (copy != nullptr) *copy = JNI_FALSE;
            return reinterpret_cast<const std::string*>(text)->c_str();
        };
        table.ReleaseStringUTFChars = [](JNIEnv* e, jstring, const char*) {
            ++reinterpret_cast<StandInEnv*>(e)->given_back;
        };
        table.ExceptionCheck = [](JNIEnv*) -> jboolean { return JNI_FALSE; };
        env.functions = &table;
    }
    jint run(const std::string& modified_utf8) {
        return Java_Vexa_vexa(&env, nullptr,
                              reinterpret_cast<jstring>(const_cast<std::string*>(&modified_utf8)));
    }
};

std::string text_of(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

std::string bytes(const std::u8string& text) { return {text.begin(), text.end()}; }

size_t count_of(const std::string& text, const std::string& what) {
    size_t count = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1))
        ++count;
    return count;
}

// Runs in a fresh scratch directory of its own (the cases may run side by side) and returns
// to where it was.
struct ScratchDirectory {
    fs::path saved = fs::current_path();
    fs::path dir;
    explicit ScratchDirectory(const char* name)
        : dir(fs::temp_directory_path() / "vexa_library_tests" / name) {
        fs::remove_all(dir);
        fs::create_directories(dir);
        fs::current_path(dir);
    }
    ~ScratchDirectory() { fs::current_path(saved); }
};

TEST(LibraryEntries, RunFilesNamedBeyondAsciiOpenThroughBothEntries) {
    const ScratchDirectory scratch("beyond_ascii");
    const std::u8string run_file = u8"lauf-日本語-😀.txt";
    const std::u8string network_file = u8"Firenze-matrimoni-è.txt";
    const std::u8string output_directory = u8"Ergebnisse-äöü-Ωμέγα";
    // The run file's name as JNI hands it over: U+1F600 as the surrogates D83D and DE00.
    const std::string run_file_from_java =
        "lauf-\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E-\xED\xA0\xBD\xED\xB8\x80.txt";

    fs::copy_file(fs::path(VEXA_TEST_DATA_DIR) / "flomarriage.txt", fs::path(network_file));
    fs::create_directory(fs::path(output_directory));
    std::string run = text_of(fs::path(VEXA_TEST_DATA_DIR) / "jni_run.txt");
    run.replace(run.find("%WORK%/out"), 10, bytes(output_directory));
    run.replace(run.find("%WORK%/flomarriage.txt"), 22, bytes(network_file));
    std::ofstream(fs::path(run_file), std::ios::binary) << run;

    // The C entry takes UTF-8. The Florentine marriage network has 20 ties.
    EXPECT_EQ(vexa_run(bytes(run_file).c_str()), 0);
    const fs::path out = fs::path(output_directory);
    EXPECT_NE(text_of(out / "start_statistics_jni.txt").find("edge\t20\n"), std::string::npos);
    const std::string heading = "STOCHASTIC ESTIMATION FOR NETWORK jni\n";
    EXPECT_EQ(count_of(text_of(out / "estimation_jni.txt"), heading), 1u);

    // The JNI entry reaches the same files: its run appends a second report.
    StandInEnv java;
    EXPECT_EQ(java.run(run_file_from_java), 0);
    EXPECT_EQ(java.handed_out, 1);
    EXPECT_EQ(java.given_back, 1);
    EXPECT_EQ(count_of(text_of(out / "estimation_jni.txt"), heading), 2u);
}

TEST(LibraryEntries, TheOptionsEntryRunsAutomaticallyAndReturnsAStatus) {
    const ScratchDirectory scratch("options");
    fs::copy_file(fs::path(VEXA_TEST_DATA_DIR) / "flomarriage.txt", "flomarriage.txt");
    fs::create_directory("out");
    std::string run = text_of(fs::path(VEXA_TEST_DATA_DIR) / "jni_run.txt");
    run.replace(run.find("%WORK%/out"), 10, "out");
    run.replace(run.find("%WORK%/flomarriage.txt"), 22, "flomarriage.txt");
    std::ofstream("run.txt", std::ios::binary) << run;

    // Edge alone: the automatic mode's start is the exact estimate, and the fit converges.
    EXPECT_EQ(vexa_run_options("run.txt", VEXA_AUTO | VEXA_FIXED_SEED, 7), VEXA_COMPLETE);
    const std::string verdicts = text_of("out/convergence_jni.txt");
    EXPECT_NE(verdicts.find("verdict\tconverged"), std::string::npos) << verdicts;
    EXPECT_NE(verdicts.find("phase-3 draws"), std::string::npos) << "not the automatic mode";

    // Equilibrium expectation through the options: the convergence file names the method.
    fs::remove_all("out");
    fs::create_directory("out");
    EXPECT_NE(vexa_run_options("run.txt", VEXA_EE | VEXA_FIXED_SEED, 7), VEXA_FAILED);
    EXPECT_NE(text_of("out/convergence_jni.txt").find("method\tequilibrium expectation"),
              std::string::npos);

    // An option this library does not know runs nothing; a missing run file is a failure.
    fs::remove_all("out");
    fs::create_directory("out");
    EXPECT_EQ(vexa_run_options("run.txt", 0x100u, 7), VEXA_FAILED);
    EXPECT_TRUE(fs::is_empty("out"));
    EXPECT_EQ(vexa_run_options("none.txt", VEXA_AUTO, 0), VEXA_FAILED);

    // Chains: the same files on one thread as on two; an impossible count runs nothing.
    const int status = vexa_run_chains("run.txt", VEXA_FIXED_SEED, 7, 3, 1);
    EXPECT_NE(status, VEXA_FAILED);
    const std::string one = text_of("out/estimation_jni.txt");
    EXPECT_NE(text_of("out/convergence_jni.txt").find("phase-3 chains\t3,"), std::string::npos);
    fs::remove_all("out");
    fs::create_directory("out");
    EXPECT_EQ(vexa_run_chains("run.txt", VEXA_FIXED_SEED, 7, 3, 2), status);
    EXPECT_EQ(text_of("out/estimation_jni.txt"), one);
    fs::remove_all("out");
    fs::create_directory("out");
    EXPECT_EQ(vexa_run_chains("run.txt", 0, 7, -1, 0), VEXA_FAILED);
    EXPECT_TRUE(fs::is_empty("out"));
}

TEST(LibraryEntries, PathsThatNameNoRunFileEndTheRunWithZero) {
    const ScratchDirectory scratch("no_run_file");
    EXPECT_EQ(vexa_run(bytes(u8"fehlt-ß.txt").c_str()), 0);

    StandInEnv java;
    EXPECT_EQ(java.run("fehlt-\xED\xA0\xBD\xED\xB8\x80.txt"), 0);
    EXPECT_EQ(java.run("a\xC0\x80"
                       "b.txt"),
              0);  // a NUL, which no path can hold
    EXPECT_EQ(Java_Vexa_vexa(&java.env, nullptr, nullptr), 0);
    EXPECT_EQ(java.handed_out, 2);
    EXPECT_EQ(java.given_back, 2);
    EXPECT_TRUE(fs::is_empty(scratch.dir));
}

}  // namespace
