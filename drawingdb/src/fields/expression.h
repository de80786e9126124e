// Arithmetic in fields.
//
//   sum      =  product { ("+" | "-") product }
//   product  =  factor { ("*" | "/") factor }
//   factor   =  { "+" | "-" } power
//   power    =  primary [ "^" factor ]                    -2^2 is -4, 2^3^2 is 2^9
//   primary  =  number | "pi" | function "(" sum ")" | "(" sum ")" | marker of a child
#pragma once

#include <functional>
#include <optional>
#include <string_view>

namespace drawingdb {

/// The value of the expression. Functions, in any case: sin cos tan (of degrees), asin acos atan (giving degrees),
/// sqrt, sqr, abs, round (half away from zero), trunc, exp, exp10, ln, log (decimal), r2d, d2r. `child` gives the value
/// behind an index marker. Nothing when the text is no expression, nests deeper than 64, has a child without a value,
/// divides by zero or comes to no finite number.
std::optional<double> evaluateExpression(std::wstring_view text,
                                         const std::function<std::optional<double>(std::size_t)>& child);

}  // namespace drawingdb
