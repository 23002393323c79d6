// A folder of a test's own, and what is in folders.

#ifndef TESTS_SUPPORT_TEMPORARYFOLDER_H_
#define TESTS_SUPPORT_TEMPORARYFOLDER_H_

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace support {

// A new folder in the system's folder for temporary files. Removed with its content when destroyed.
// The constructor throws std::runtime_error when it cannot make the folder.
class TemporaryFolder {
 public:
  TemporaryFolder() : path_((std::filesystem::temp_directory_path() / "test-XXXXXX").string()) {
    if (::mkdtemp(path_.data()) == nullptr) {
      throw std::runtime_error("cannot make the folder " + path_);
    }
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

// The content of a file; empty when there is no such file.
inline std::string contentOfFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Every file below `folder`, sorted: its path there and its content.
inline std::vector<std::pair<std::string, std::string>> contentOf(const std::string& folder) {
  std::vector<std::pair<std::string, std::string>> files;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
    if (entry.is_regular_file()) {
      const std::string path = entry.path().string();
      files.emplace_back(path.substr(folder.size()), contentOfFile(path));
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace support

#endif  // TESTS_SUPPORT_TEMPORARYFOLDER_H_
