// A fresh folder under the system's temp folder, removed with the object.
#pragma once

#include <filesystem>
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

  private:
    std::filesystem::path path_;
};

}  // namespace toval::test
