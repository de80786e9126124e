// Pictures as the pages of a PDF file, which is written while they are drawn.
//
// Coordinates are whole tenths of a picture's pixel. Texts lie invisibly in a font without any shapes, so that they can
// be searched and copied.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/files.h"
#include "torvelhost/plot/picture.h"
#include "torvelhost/plot/plot_settings.h"

namespace host {

class PdfWriter {
  public:
    /// Nothing is at the path before finish(). All functions throw base::FileError.
    explicit PdfWriter(const std::wstring& path);

    struct Page {
        std::wstring name;
        Paper paper;
        std::uint32_t background = 0xFFFFFF;
        double pixelsPerMillimetre = 1;
        OdGePoint2d origin;  // of the picture on the paper: millimetres from its upper left corner
    };
    void beginPage(const Page& page);
    /// On the page that was begun. A picture may come in pieces.
    void add(const Picture& picture);
    void endPage();
    /// Ends the file, with one page at least.
    void finish();

  private:
    struct Written {
        int object;
        std::wstring name;
    };

    int newObject();
    void beginObject(int object);
    void endObject() { write("endobj\n"); }
    void write(std::string_view bytes);
    void writeStream(int object, std::string_view entries, std::string_view bytes);
    void writePacked(int object, std::string_view entries, std::string_view filter, std::string_view bytes);
    void flushContent();
    void setColor(std::uint32_t color, bool isArea);
    void addShape(const Picture& picture, const Picture::Shape& shape);
    void addText(const Picture::Text& text);
    void addContour(std::span<const Picture::Point> contour);
    void addImage(const Picture& picture, const Picture::Shape& shape, const Picture::Image& image);
    int writeRaster(const Raster& raster);
    void writeFont();

    void number(double value);  // a whole one
    void exactNumber(double value);
    void point(const Picture::Point& point);

    base::AtomicFile file_;
    std::size_t size_ = 0;
    std::vector<std::size_t> offsets_;  // of objects, from 1; 0: not written yet
    std::vector<Written> pages_;
    std::map<char32_t, int> codes_;                         // of the characters, in the font
    std::vector<char32_t> characters_;                      // by code, from 1
    std::map<std::shared_ptr<const Raster>, int> rasters_;  // their objects

    Page page_;
    std::string content_;
    std::vector<int> contents_;  // of the page
    std::set<int> opacities_;    // in hundredths
    std::set<int> images_;       // objects
    std::int64_t lineColor_ = -1, areaColor_ = -1;
    double width_ = -1;
    int opacity_ = 100;
};

}  // namespace host
