#include "fuzz_support.h"

#include <cstdio>
#include <cstdlib>

namespace vexa::fuzzing {

namespace {

namespace fs = std::filesystem;

std::set<std::string>& kept_names() {
    static std::set<std::string> names;  // the harness's own, fixed after start-up
    return names;
}

void copy_text_files(const fs::path& from) {
    for (const auto& entry : fs::directory_iterator(from)) {
        if (!entry.is_regular_file() || entry.path().extension() != ".txt") continue;
        fs::copy_file(entry.path(), entry.path().filename(), fs::copy_options::overwrite_existing);
    }
}

}  // namespace

void enter_work_directory() {
    fs::create_directories("work");
    fs::current_path("work");
    copy_text_files(VEXA_TEST_DATA_DIR);
    copy_text_files(std::string(VEXA_TEST_DATA_DIR) + "/runfiles");
    copy_text_files(VEXA_EXAMPLES_DIR);
    fs::create_directories("out");
    for (const auto& entry : fs::directory_iterator(".")) {
        kept_names().insert(entry.path().filename().string());
    }
}

void clear_work_directory() {
    std::error_code ignored;
    for (const auto& entry : fs::directory_iterator(".")) {
        if (kept_names().count(entry.path().filename().string()) == 0)
            fs::remove_all(entry.path(), ignored);
    }
    for (const auto& entry : fs::directory_iterator("out")) fs::remove_all(entry.path(), ignored);
}

void write_input(const std::string& name, const unsigned char* data, size_t size) {
    FILE* file = std::fopen(name.c_str(), "wb");
    if (file == nullptr) std::abort();
    if (size > 0) std::fwrite(data, 1, size, file);
    std::fclose(file);
}

}  // namespace vexa::fuzzing
