// How the value of a field becomes the text that it shows.
//
// A format is a row of codes; what is not understood is passed over.
//
//   %tc1 %tc2 %tc3 %tc4       upper case, lower case, first capital, Title Case
//   %lu1 .. %lu5  %lu6        scientific, decimal, engineering, architectural, fractional; the drawing's units
//   %au0 .. %au4  %au5        decimal degrees, degrees-minutes-seconds, grads, radians, surveyor's; the drawing's units
//   %pr0 .. %pr8              digits after the point, or halvings of a fraction; without it the drawing's precision
//   %ct8[0.001]               the value is multiplied by the factor first
//   %ps[about , m]            a prefix and a suffix
//   %ds44 %th44 %ls59         decimal separator, thousands separator, separator between coordinates, by character
//   number %zs15                     leaves out: 1 leading zeros, 2 trailing zeros, 4 zero feet, 8 zero inches %pt3
//   coordinates to show: 1 x, 2 y, 4 z %fn7                      parts of a file's name: 1 folder, 2 name, 4 extension
//   %bl0 .. %bl3              True/False, Yes/No, On/Off, Enabled/Disabled
//
// What stands outside of codes is the picture of a date: d dd ddd dddd M MM MMM MMMM y yy yyyy h hh H HH m mm s ss t
// tt, anything else as it is, letters in single quotes ('' is a quote). The pictures %c %x %X stand for date and time,
// date, and time, with a "#" (%#c, %#x) in words. Names of months and days are English everywhere.
#pragma once

#include <string>
#include <string_view>

#include "drawingdb/field.h"

namespace drawingdb {

/// The drawing's units, numbered as in its header: linear 1 to 5, angular 0 to 4.
struct UnitSettings {
    int linear = 2;
    int linearPrecision = 4;
    int angular = 0;
    int angularPrecision = 0;
};

/// What a number measures; the numbers are those that files keep beside a value.
enum class Quantity { none = 0, length = 1, angle = 2, area = 4 };

/// Angles are in radians, dates Julian days of local time.
std::wstring formatFieldValue(const OdDbFieldValue& value, std::wstring_view format, const UnitSettings& units,
                              Quantity quantity);

/// A day and its time of day, without any time zone.
struct CalendarDate {
    int year = 0, month = 0, day = 0;
    int weekday = 0;  // 0 Sunday
    int hour = 0, minute = 0, second = 0, millisecond = 0;
};
/// Of a Julian day in the years 1 to 9999; others give the nearest of these.
CalendarDate calendarDate(double julian);
double julianDay(const CalendarDate& date);

}  // namespace drawingdb
