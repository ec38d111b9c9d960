// A fresh folder under the system's temp folder, removed with the object.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

namespace toval::test {

class TempDir {
  public:
    TempDir() {
        std::random_device rd;
        path_ = std::filesystem::temp_directory_path() /
                ("toval-test-" + std::to_string(rd()) + std::to_string(rd()));
        std::filesystem::create_directories(path_);
    }
    ~TempDir() {
        std::error_code ec;
        std::filesystem::remove_all(path_, ec);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    const std::filesystem::path& path() const { return path_; }
    // The folder as program text, with a trailing separator.
    std::u16string folder() const {
        std::u16string text = path_.u16string();
        text.push_back(static_cast<char16_t>(std::filesystem::path::preferred_separator));
        return text;
    }
    std::u16string file(const std::u16string& name) const { return folder() + name; }

    // The bytes of a file in the folder (none when it is missing), and writing them.
    std::string Read(const std::filesystem::path& name) const {
        std::ifstream in(path_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    }
    void Write(const std::filesystem::path& name, const std::string& bytes) const {
        std::ofstream(path_ / name, std::ios::binary) << bytes;
    }

  private:
    std::filesystem::path path_;
};

}  // namespace toval::test
