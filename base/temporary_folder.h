// A folder of its own among the temporary ones, as long as the object is there.
#pragma once

#include <filesystem>
#include <random>
#include <string>

#include "base/number.h"
#include "base/paths.h"
#include "base/text.h"

namespace base {

class TemporaryFolder {
  public:
    /// Nobody else may look into it. Throws std::filesystem::filesystem_error when it cannot be made.
    TemporaryFolder() {
        std::random_device random;
        const std::uint64_t number = std::uint64_t{random()} << 32 | random();
        path_ = joinPath(temporaryFolder(), L"torvel-" + widen(hexToText(number)));
        std::filesystem::create_directory(toPath(path_));
        std::filesystem::permissions(toPath(path_), std::filesystem::perms::owner_all);
    }
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(toPath(path_), error);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::wstring& path() const { return path_; }
    std::wstring operator/(std::wstring_view name) const { return joinPath(path_, name); }

  private:
    std::wstring path_;
};

}  // namespace base
