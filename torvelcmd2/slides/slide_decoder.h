// A slide's bytes, told to a painter.
//
//   offset 0   17  "AutoCAD Slide\r\n", 0x1A, 0
//          17   2  type and level
//          19   2  width of the slide's screen in dots        (16-bit)
//          21   2  height                                     (16-bit)
//          23   4  aspect ratio times 10,000,000              (32-bit)
//          27   2  how areas were filled
//          29   2  0x1234, which tells the byte order
//          31      records
//
// A record's kind is the high byte of its first word:
//
//   00 to 7F   8  vector: from x, from y, to x, to y; the from-point becomes the last point
//   80 to FA      undefined
//   FB         5  offset vector: low byte dx1, then dy1, dx2, dy2, each from the last point; ditto
//   FC         2  end
//   FD         6  solid: the second word counts the vertices, each of which is another such record with x and y
//   FE         3  vector from the last point: low byte dx, then dy; the end becomes the last point
//   FF         2  the low byte is the colour from now on
#pragma once

#include <string_view>

#include "hostapi/slides.h"

namespace torvel {

/// Throws CXException(kNotASlide) before the painter is called, and (kUndefinedRecord), with "KIND at byte OFFSET" as
/// subject, after the records before it were drawn. A record that is cut short by the end of the data ends the slide.
void decodeSlide(std::string_view bytes, slidePainter& painter);

}  // namespace torvel

/// Finds, loads and draws a slide: "NAME" or "LIBRARY(SLIDE)". Throws CXException. For other modules too.
extern "C" void loadAndDrawVSlide(const CXStringW& name, slidePainter* painter);
