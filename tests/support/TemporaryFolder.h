// A folder of a test's own, gone when the test is.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace fernwick::fakes {

class TemporaryFolder {
public:
    TemporaryFolder() : path_((std::filesystem::temp_directory_path() / "fernwick-test-XXXXXX").string()) {
        if (::mkdtemp(path_.data()) == nullptr) {
            throw std::runtime_error("no temporary folder could be made");
        }
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored; // a leftover in the folder for temporary files hurts no one
        std::filesystem::remove_all(path_, ignored);
    }

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string operator/(const std::string& name) const { return path_ + "/" + name; }

    // The bytes of a file in the folder; empty when there is none.
    [[nodiscard]] std::string read(const std::string& name) const {
        std::ifstream file(*this / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    void write(const std::string& name, const std::string& bytes) const {
        std::ofstream(*this / name, std::ios::binary) << bytes;
    }

private:
    std::string path_;
};

} // namespace fernwick::fakes
