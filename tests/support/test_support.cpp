#include "support/test_support.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace vexa::testing {

std::string scratch_directory(const std::string& name) {
    const std::filesystem::path dir = std::filesystem::temp_directory_path() / "vexa_tests" / name;
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

}  // namespace vexa::testing
