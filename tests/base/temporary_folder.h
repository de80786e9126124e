// A folder that is there as long as the object.
#pragma once

#include <filesystem>
#include <random>
#include <string>

#include "base/number.h"
#include "base/paths.h"
#include "base/text.h"

class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::random_device random;
        const std::uint64_t number = std::uint64_t{random()} << 32 | random();
        path_ = base::joinPath(base::temporaryFolder(), L"torvel-" + base::widen(base::hexToText(number)));
        std::filesystem::create_directory(base::toPath(path_));
    }
    ~TemporaryFolder() {
        std::error_code error;
        std::filesystem::remove_all(base::toPath(path_), error);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::wstring& path() const { return path_; }
    std::wstring operator/(std::wstring_view name) const { return base::joinPath(path_, name); }

  private:
    std::wstring path_;
};
