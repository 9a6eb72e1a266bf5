#pragma once

#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace bmr::test {

/// A folder of its own that goes with the test. In memory where there is room: every store waits for the
/// disk, and a test that stores a hundred times would wait seconds.
class TempFolder {
  public:
    TempFolder() {
        std::string name = (Parent() / "bmr-test-XXXXXX").string();
        if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
        path_ = name;
    }
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }
    const std::filesystem::path& Path() const { return path_; }

  private:
    static std::filesystem::path Parent() {
        constexpr std::uintmax_t kRoom = std::uintmax_t{512} << 20;
        std::error_code none;
        const auto memory = std::filesystem::space("/dev/shm", none);
        return !none && memory.available >= kRoom ? "/dev/shm" : std::filesystem::temp_directory_path();
    }

    std::filesystem::path path_;
};

}  // namespace bmr::test
