// The code pages that drawings older than version 2007 name in $DWGCODEPAGE.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace base {

class CodePage {
  public:
    /// By the name a drawing gives ("ANSI_1252", "dos850", case does not matter). Null when the name is unknown.
    /// The objects live as long as the program.
    static const CodePage* byName(std::string_view name);
    /// By the number in a text's "\M+nXXXX", which gives a character in one of five double-byte pages. Null for others.
    static const CodePage* byMultiByteNumber(int number);
    /// ANSI_1252, which holds where a drawing names none.
    static const CodePage& standard();

    /// As headers write it: "ANSI_1252".
    std::string_view name() const { return name_; }

    /// Never fails. A byte without a meaning becomes the control character of the same number in a single-byte page,
    /// so that it can be encoded again, and U+FFFD in a double-byte page.
    std::wstring decode(std::string_view bytes) const;

    /// A character the page does not hold goes to `replace`, which appends what shall stand for it.
    using Replace = std::function<void(char32_t character, std::string& bytes)>;
    std::string encode(std::wstring_view text, const Replace& replace) const;
    bool holds(char32_t character) const;

    CodePage(const CodePage&) = delete;
    CodePage& operator=(const CodePage&) = delete;
    virtual ~CodePage() = default;

  protected:
    explicit CodePage(std::string_view name) : name_(name) {}

  private:
    /// Decodes the character at the front, whose bytes are removed.
    virtual char32_t takeCharacter(std::string_view& bytes) const = 0;
    /// Appends the character's bytes, or returns false.
    virtual bool appendEncoded(char32_t character, std::string& bytes) const = 0;

    std::string_view name_;
};

}  // namespace base
