// The one formatter of wide texts. The C library's own is not used, because its "%s" means a narrow text on one
// platform and a wide one on the other, and its decimal point follows the locale.
#pragma once

#include <concepts>
#include <cstdarg>
#include <initializer_list>
#include <string>
#include <string_view>

namespace base {

/// Formats by printf's rules, alike on both platforms:
///   %s %ls        const wchar_t*; a null pointer prints "(null)"
///   %S %hs        const char* in UTF-8
///   %c %lc        a wide character; %C %hc a narrow one
///   %d %i %u %o %x %X  with h hh l ll j z t, and I64 I32 I; %p sixteen upper-case hexadecimal digits
///   %f %F %e %E %g %G  the C locale's decimal point; "inf" and "nan" as they are
///   flags - + blank 0 #, width, .precision, * for either: a negative width left-justifies, a negative precision is
///   none
/// Widths and precisions of texts count wchar_t units (a narrow text's precision counts its bytes); a surrogate pair is
/// not split. A conversion it does not know is printed as it stands and takes no argument.
std::wstring format(const wchar_t* format, ...);
std::wstring vformat(const wchar_t* format, std::va_list arguments);

/// One argument of formatPositional: a text or an integer.
class PositionalArgument {
  public:
    PositionalArgument(const wchar_t* text) : text_(text) {}
    PositionalArgument(std::wstring_view text) : text_(text) {}
    PositionalArgument(const std::wstring& text) : text_(text) {}
    PositionalArgument(std::integral auto number) : text_(std::to_wstring(number)) {}

    const std::wstring& text() const { return text_; }

  private:
    std::wstring text_;
};

/// Replaces "%1%", "%2%", ... by the arguments in their order and "%%" by "%". A position without argument gives an
/// empty text, an argument without position is left out.
std::wstring formatPositional(std::wstring_view format, std::initializer_list<PositionalArgument> arguments);

template <typename... Arguments>
std::wstring formatPositional(std::wstring_view format, const Arguments&... arguments) {
    return formatPositional(format, std::initializer_list<PositionalArgument>{PositionalArgument(arguments)...});
}

}  // namespace base
