// The settings store: one file a user.
//
//     [Dialogs\EAttEdit]
//     Placement=10,20,300,400
//
// UTF-8. Sections and keys are compared without case and keep the spelling of their first writing. In values "\n", "\r"
// and
// "\\" stand for a line feed, a carriage return and a backslash; blanks count.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "base/text.h"
#include "hostapi/settings.h"

namespace host {

class Profile final : public IProfile {
  public:
    /// Nothing is read before a setting is asked for. `first` are sections, in the form of a file, that hold where
    /// the file lacks them.
    explicit Profile(std::wstring fileName, std::wstring first = {})
        : fileName_(std::move(fileName)), first_(std::move(first)) {}
    /// The file given; without one the user's own, with what suits somebody who has none yet.
    static Profile of(const std::optional<std::wstring>& fileName);
    const std::wstring& fileName() const { return fileName_; }

    bool readText(const wchar_t* section, const wchar_t* key, CXStringW& value) override;
    void writeText(const wchar_t* section, const wchar_t* key, const wchar_t* value) override;
    bool readInteger(const wchar_t* section, const wchar_t* key, std::int32_t& value) override;
    void writeInteger(const wchar_t* section, const wchar_t* key, std::int32_t value) override;
    void removeKey(const wchar_t* section, const wchar_t* key) override;
    void removeSection(const wchar_t* section) override;

    /// Writes the file if something was changed since the last call; makes its folder. Throws base::FileError, which is
    /// no failure of what was done with the drawing.
    void save();

  private:
    using Section = std::map<std::wstring, std::wstring, base::LessNoCase>;
    using Sections = std::map<std::wstring, Section, base::LessNoCase>;
    static Sections parsed(std::wstring_view text);
    /// The settings, read at the first call. A file that cannot be read counts as an empty one.
    Sections& sections();
    std::wstring readFile() const;

    std::wstring fileName_, first_;
    std::optional<Sections> sections_;
    bool changed_ = false;
};

}  // namespace host
