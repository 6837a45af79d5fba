// A folder of a test's own for the files it writes, removed with all it holds when the test ends.
#pragma once
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

class CTempFolder {
public:
    explicit CTempFolder(const std::string& name) : dir(Base() / (name + "_" + std::to_string(::getpid()))) {
        std::filesystem::create_directories(dir);
    }
    ~CTempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(dir, ignored);
    }
    CTempFolder(const CTempFolder&) = delete;
    CTempFolder& operator=(const CTempFolder&) = delete;

    std::string PathOf(const std::string& name) const { return (dir / name).string(); }
    // Writes the bytes to the file of that name in the folder and gives its path.
    std::string Write(const std::string& name, const std::string& bytes) const {
        const std::string path = PathOf(name);
        std::ofstream(path, std::ios::binary) << bytes;
        return path;
    }
    static std::string ReadAll(const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }

    const std::filesystem::path dir;

private:
    // Memory where the system has it: saves flush to the disk, and hundreds of them would wait
    // on it for nothing.
    static std::filesystem::path Base() {
        std::error_code error;
        if (std::filesystem::is_directory("/dev/shm", error) && ::access("/dev/shm", W_OK) == 0) return "/dev/shm";
        return std::filesystem::temp_directory_path();
    }
};
