#include "support/test_support.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace vexa::testing {

std::string scratch_directory(const std::string& name) {
    // Per process: test runs of several builds (or several checkouts) may go side by side.
    const std::filesystem::path dir = std::filesystem::temp_directory_path() /
                                      ("vexa_tests_" + std::to_string(::getpid())) / name;
    std::filesystem::remove_all(dir);
    std::filesystem::create_directories(dir);
    return dir.string();
}

std::string read_text(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void write_text(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary);
    out << text;
}

std::string capture(const std::function<void(FILE*)>& write) {
    char* buffer = nullptr;
    size_t size = 0;
    FILE* out = open_memstream(&buffer, &size);
    try {
        write(out);
    } catch (...) {
        std::fclose(out);
        std::free(buffer);
        throw;
    }
    std::fclose(out);
    std::string text(buffer, size);
    std::free(buffer);
    return text;
}

}  // namespace vexa::testing
