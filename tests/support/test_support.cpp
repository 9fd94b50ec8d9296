#include "support/test_support.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#if defined(_WIN32)
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#endif

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

#if defined(_WIN32)
// Windows has no memory streams: the text goes through a file of its own in the temporary
// directory (captures may nest), written in binary mode so that it comes back exactly as the
// writer wrote it.
std::string capture(const std::function<void(FILE*)>& write) {
    wchar_t name[MAX_PATH + 1] = {};
    const std::wstring dir = std::filesystem::temp_directory_path().wstring();
    if (GetTempFileNameW(dir.c_str(), L"vxc", 0, name) == 0)
        throw std::runtime_error("cannot name a capture file");
    const std::filesystem::path path(name);
    FILE* out = _wfopen(path.c_str(), L"w+b");
    if (out == nullptr) throw std::runtime_error("cannot create " + path.string());
    try {
        write(out);
    } catch (...) {
        std::fclose(out);
        std::filesystem::remove(path);
        throw;
    }
    std::fclose(out);
    std::string text = read_text(path.string());
    std::filesystem::remove(path);
    return text;
}
#else
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
#endif

}  // namespace vexa::testing
