// PDF: objects one after the other, each at a place that the table at the end tells.
//
//   3 0 obj << /Length 12 /Filter /FlateDecode >> stream ... endstream endobj     a piece of a page
//   4 0 obj << /Type /XObject /Subtype /Image ... >> stream ...                       a picture of images
//   5 0 obj << /Type /Page /Contents [3 0 R 4 0 R] ... >> endobj
//   1 0 obj << /Type /Catalog /Pages 2 0 R >> endobj
//   xref ... trailer << /Root 1 0 R >>
//
// A page's contents are pieces of about a megabyte, so that no page is ever all in memory.
#include "torvelhost/plot/pdf_writer.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "base/number.h"
#include "base/text.h"
#include "drawingdb/stroke_font.h"
#include "torvelhost/plot/deflate.h"

namespace host {
namespace {

constexpr int kCatalog = 1, kPages = 2, kFont = 3;
constexpr std::size_t kPiece = 1 << 20;
constexpr double kSteps = 10;  // of a coordinate in a pixel
constexpr double kPointsPerMillimetre = 72 / 25.4;
// Readers take long for paths without end.
constexpr std::uint32_t kLinesInPath = 1000;

std::string reference(int object) { return std::to_string(object) + " 0 R"; }

void appendHex(std::string& out, unsigned value, int digits) {
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) out += base::kHexDigits[(value >> shift) & 15];
}

void appendUtf16(std::string& out, char32_t character) {
    if (character < 0x10000) return appendHex(out, character, 4);
    appendHex(out, 0xD800 + ((character - 0x10000) >> 10), 4);
    appendHex(out, 0xDC00 + ((character - 0x10000) & 0x3FF), 4);
}

// A text for readers: <FEFF...>
std::string textString(std::wstring_view text) {
    std::string out = "<FEFF";
    for (std::size_t position = 0; position < text.size();) appendUtf16(out, base::nextCharacter(text, position));
    return out + ">";
}

// Up to three digits behind the point, without zeros at the end.
void appendNumber(std::string& out, double value) {
    long long thousandths = std::llround(value * 1000);
    if (thousandths < 0) out += '-';
    thousandths = std::llabs(thousandths);
    char digits[24];
    out.append(digits, std::to_chars(digits, digits + sizeof digits, thousandths / 1000).ptr);
    if (thousandths % 1000 == 0) return;
    out += '.';
    out += static_cast<char>('0' + thousandths / 100 % 10);
    if (thousandths % 100 == 0) return;
    out += static_cast<char>('0' + thousandths / 10 % 10);
    if (thousandths % 10 != 0) out += static_cast<char>('0' + thousandths % 10);
}

// A TrueType font of one glyph that shows nothing.
std::string emptyFont() {
    struct Table {
        std::string_view tag;
        std::string bytes;
    };
    const auto words = [](std::initializer_list<unsigned> values) {
        std::string bytes;
        for (const unsigned value : values) {
            bytes += static_cast<char>(value >> 8);
            bytes += static_cast<char>(value);
        }
        return bytes;
    };
    const Table tables[] = {
        {"glyf", words({0, 0})},
        // Version, revision, checksum (left out), magic, flags, units of an em, two dates, box, style, smallest size,
        // direction, short offsets, format.
        {"head",
         words({1, 0, 1, 0, 0, 0, 0x5F0F, 0x3CF5, 0, 1000, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1000, 1000, 0, 8, 2, 0, 0})},
        // Version, ascent, descent, gap, widest, bearings, extent, caret, offset, reserved, format, widths.
        {"hhea", words({1, 0, 1000, 0xFEB3, 0, 1000, 0, 0, 1000, 1, 0, 0, 0, 0, 0, 0, 0, 1})},
        {"hmtx", words({1000, 0})},
        {"loca", words({0, 0})},
        {"maxp", words({1, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0, 0})},
    };
    const std::size_t count = std::size(tables);
    std::string font = words({1, 0, static_cast<unsigned>(count), 64, 2, static_cast<unsigned>(16 * count - 64)});
    std::string body;
    for (const Table& table : tables) {
        const auto offset = static_cast<unsigned>(12 + 16 * count + body.size());
        const auto size = static_cast<unsigned>(table.bytes.size());
        body += table.bytes;
        body.resize((body.size() + 3) / 4 * 4);
        std::uint32_t sum = 0;
        for (std::size_t i = body.size() - (size + 3) / 4 * 4; i < body.size(); i += 4)
            for (int k = 0; k < 4; ++k)
                sum += static_cast<std::uint32_t>(static_cast<unsigned char>(body[i + k])) << (24 - 8 * k);
        font += table.tag;
        font += words({sum >> 16, sum & 0xFFFF, offset >> 16, offset & 0xFFFF, size >> 16, size & 0xFFFF});
    }
    return font + body;
}

// Hebrew, Arabic and the alphabets about them.
bool isRightToLeft(char32_t character) {
    return (character >= 0x0590 && character < 0x0900) || (character >= 0xFB1D && character < 0xFE00) ||
           (character >= 0xFE70 && character < 0xFF00) || (character >= 0x10800 && character < 0x11000);
}

// From left to right as the characters stand on paper, as readers take them: what runs to the left is turned, with the
// blanks between its words.
std::u32string asItStands(std::u32string characters) {
    const auto end = characters.end();
    for (auto first = std::find_if(characters.begin(), end, isRightToLeft); first != end;
         first = std::find_if(first, end, isRightToLeft)) {
        auto last = first;  // behind the last one that runs to the left
        for (auto next = first; next != end && (isRightToLeft(*next) || *next == U' ');)
            if (isRightToLeft(*next++)) last = next;
        std::reverse(first, last);
        first = last;
    }
    return characters;
}

// Thousandths of the height of capitals.
int widthOf(char32_t character) {
    return static_cast<int>(std::lround(drawingdb::strokeGlyph(character).advance * 1000));
}

}  // namespace

PdfWriter::PdfWriter(const std::wstring& path) : file_(path), offsets_(kFont) {
    write("%PDF-1.5\n%\xE2\xE3\xCF\xD3\n");
}

// ---- objects

int PdfWriter::newObject() {
    offsets_.push_back(0);
    return static_cast<int>(offsets_.size());
}

void PdfWriter::beginObject(int object) {
    offsets_[static_cast<std::size_t>(object) - 1] = size_;
    write(std::to_string(object) + " 0 obj\n");
}

void PdfWriter::write(std::string_view bytes) {
    file_.write(bytes);
    size_ += bytes.size();
}

void PdfWriter::writeStream(int object, std::string_view entries, std::string_view bytes) {
    writePacked(object, entries, "FlateDecode", deflated(bytes));
}

void PdfWriter::writePacked(int object, std::string_view entries, std::string_view filter, std::string_view bytes) {
    beginObject(object);
    write("<< " + std::string(entries) + "/Length " + std::to_string(bytes.size()) + " /Filter /" +
          std::string(filter) + " >>\nstream\n");
    write(bytes);
    write("\nendstream\n");
    endObject();
}

// ---- pages

void PdfWriter::beginPage(const Page& page) {
    page_ = page;
    contents_.clear();
    opacities_.clear();
    images_.clear();
    lineColor_ = areaColor_ = -1;
    width_ = -1;
    opacity_ = 100;

    const double pointsPerStep = kPointsPerMillimetre / page.pixelsPerMillimetre / kSteps;
    if (page.background != 0xFFFFFF) {
        setColor(page.background, true);
        content_ += "0 0 ";
        exactNumber(page.paper.width * kPointsPerMillimetre);
        exactNumber(page.paper.height * kPointsPerMillimetre);
        content_ += "re f\n";
    }
    // Like the picture from now on: y runs down.
    char digits[32];
    const auto append = [&](double value) {
        content_.append(digits, std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, 10).ptr);
        content_ += ' ';
    };
    append(pointsPerStep);
    content_ += "0 0 ";
    append(-pointsPerStep);
    append(page.origin.x * kPointsPerMillimetre);
    append((page.paper.height - page.origin.y) * kPointsPerMillimetre);
    content_ += "cm 1 J 1 j\n";
}

void PdfWriter::endPage() {
    flushContent();
    std::string contents, states, images;
    for (const int piece : contents_) contents += (contents.empty() ? "" : " ") + reference(piece);
    for (const int opacity : opacities_) {
        states += "/O" + std::to_string(opacity) + " << /ca ";
        appendNumber(states, opacity / 100.0);
        states += " >> ";
    }
    for (const int image : images_) images += "/I" + std::to_string(image) + " " + reference(image) + " ";
    const int object = newObject();
    beginObject(object);
    std::string page = "<< /Type /Page /Parent " + reference(kPages) + " /MediaBox [0 0 ";
    appendNumber(page, page_.paper.width * kPointsPerMillimetre);
    page += ' ';
    appendNumber(page, page_.paper.height * kPointsPerMillimetre);
    page += "]\n/Contents [" + contents + "] /Resources << /Font << /F " + reference(kFont) + " >>";
    if (!states.empty()) page += " /ExtGState << " + states + ">>";
    if (!images.empty()) page += " /XObject << " + images + ">>";
    write(page + " >> >>\n");
    endObject();
    pages_.push_back({object, page_.name});
}

void PdfWriter::flushContent() {
    if (content_.empty()) return;
    contents_.push_back(newObject());
    writeStream(contents_.back(), "", content_);
    content_.clear();
}

// ---- contents

void PdfWriter::number(double value) {
    char digits[24];
    content_.append(digits, std::to_chars(digits, digits + sizeof digits, std::lround(value)).ptr);
    content_ += ' ';
}

void PdfWriter::exactNumber(double value) {
    appendNumber(content_, value);
    content_ += ' ';
}

void PdfWriter::point(const Picture::Point& point) {
    number(point.x * kSteps);
    number(point.y * kSteps);
}

void PdfWriter::setColor(std::uint32_t color, bool isArea) {
    std::int64_t& set = isArea ? areaColor_ : lineColor_;
    if (set == color) return;
    set = color;
    for (const int shift : {16, 8, 0}) exactNumber(((color >> shift) & 255) / 255.0);
    content_ += isArea ? "rg\n" : "RG\n";
}

void PdfWriter::add(const Picture& picture) {
    for (const Picture::Shape& shape : picture.shapes()) addShape(picture, shape);
    if (!picture.texts().empty()) {
        content_ += "BT 3 Tr /F 1 Tf\n";
        for (const Picture::Text& text : picture.texts()) addText(text);
        content_ += "ET\n";
    }
    if (content_.size() > kPiece) flushContent();
}

void PdfWriter::addShape(const Picture& picture, const Picture::Shape& shape) {
    const bool isArea = shape.width == 0;
    if (const Picture::Image* const image = picture.image(shape)) return addImage(picture, shape, *image);
    setColor(shape.color, isArea);
    if (isArea) {
        const int opacity = std::clamp(static_cast<int>(std::lround(shape.opacity * 100)), 1, 100);
        if (opacity != opacity_) {
            content_ += "/O" + std::to_string(opacity) + " gs\n";
            opacities_.insert(opacity);
            opacity_ = opacity;
        }
    } else if (shape.width != width_) {
        width_ = shape.width;
        number(width_ * kSteps);
        content_ += "w\n";
    }
    const char* const paint = !isArea ? "S\n" : shape.rule == FillRule::kNonZero ? "f\n" : "f*\n";
    for (std::uint32_t i = 0; i < shape.contourCount; ++i) {
        addContour(picture.contour(shape.firstContour + i));
        const bool isLast = i + 1 == shape.contourCount;
        if (isLast || (!isArea && i % kLinesInPath == kLinesInPath - 1)) content_ += paint;
        if (!isArea && content_.size() > kPiece) flushContent();
    }
}

void PdfWriter::addContour(std::span<const Picture::Point> contour) {
    char command = 'm';
    for (const Picture::Point& corner : contour) {
        point(corner);
        content_ += command;
        content_ += '\n';
        command = 'l';
    }
}

// What shows of it is cut out of the square of 1, from the lower left corner up, that it is in PDF.
void PdfWriter::addImage(const Picture& picture, const Picture::Shape& shape, const Picture::Image& image) {
    const auto [entry, isNew] = rasters_.try_emplace(image.raster, 0);
    if (isNew) entry->second = writeRaster(*image.raster);
    images_.insert(entry->second);
    if (opacity_ != 100) content_ += "/O100 gs\n";
    opacities_.insert(100);
    opacity_ = 100;
    content_ += "q\n";
    for (std::uint32_t i = 0; i < shape.contourCount; ++i) addContour(picture.contour(shape.firstContour + i));
    content_ += "W* n\n";
    const auto& [corner, along, down] = image.place;
    const OdGePoint2d low = corner + down;
    for (const double value : {along.x, along.y, -down.x, -down.y, low.x, low.y}) exactNumber(value * kSteps);
    content_ += "cm\n/I" + std::to_string(entry->second) + " Do\nQ\n";
}

int PdfWriter::writeRaster(const Raster& raster) {
    const auto entries = [&](std::string_view colors) {
        return "/Type /XObject /Subtype /Image /Width " + std::to_string(raster.width()) + " /Height " +
               std::to_string(raster.height()) + " /BitsPerComponent 8 /ColorSpace /" + std::string(colors) + " ";
    };
    const std::vector<std::uint32_t>& pixels = raster.grids.front().pixels;
    const int object = newObject();
    if (!raster.jpeg.empty()) {
        writePacked(object, entries(raster.isJpegGray ? "DeviceGray" : "DeviceRGB"), "DCTDecode", raster.jpeg);
        return object;
    }
    const auto packed = [&](std::initializer_list<int> shifts) {
        Deflater deflater;
        std::string row;
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            for (const int shift : shifts) row += static_cast<char>(pixels[i] >> shift);
            if ((i + 1) % static_cast<std::size_t>(raster.width()) != 0) continue;
            deflater.add(row);
            row.clear();
        }
        return deflater.end();
    };
    std::string mask;
    if (!raster.isOpaque) {
        const int covers = newObject();
        writePacked(covers, entries("DeviceGray"), "FlateDecode", packed({24}));
        mask = "/SMask " + reference(covers) + " ";
    }
    writePacked(object, entries("DeviceRGB") + mask, "FlateDecode", packed({16, 8, 0}));
    return object;
}

void PdfWriter::addText(const Picture::Text& text) {
    double width = 0;
    for (const char32_t character : text.characters) width += widthOf(character) / 1000.0;
    const OdGeVector2d along = (text.end - text.start) * (kSteps / std::max(width, 1e-3)),
                       up = (text.top - text.start) * kSteps;
    // Seen from the side there is nothing to read.
    if (!(std::fabs(along.crossProduct(up)) > 1e-3)) return;
    for (const double value : {along.x, along.y, up.x, up.y, text.start.x * kSteps, text.start.y * kSteps})
        exactNumber(value);
    content_ += "Tm <";
    for (const char32_t character : asItStands(text.characters)) {
        const auto [entry, isNew] = codes_.try_emplace(character, static_cast<int>(characters_.size()) + 1);
        if (isNew) characters_.push_back(character);
        appendHex(content_, static_cast<unsigned>(entry->second), 4);
    }
    content_ += "> Tj\n";
}

// ---- the end

// Codes count the characters in the order of their appearance; the font says what they mean and how wide they are.
void PdfWriter::writeFont() {
    const int descendant = newObject(), descriptor = newObject(), program = newObject(), glyphs = newObject(),
              meanings = newObject();
    beginObject(kFont);
    write("<< /Type /Font /Subtype /Type0 /BaseFont /Invisible /Encoding /Identity-H /DescendantFonts [" +
          reference(descendant) + "] /ToUnicode " + reference(meanings) + " >>\n");
    endObject();
    std::string widths;
    for (const char32_t character : characters_)
        widths += (widths.empty() ? "" : " ") + std::to_string(widthOf(character));
    beginObject(descendant);
    write(
        "<< /Type /Font /Subtype /CIDFontType2 /BaseFont /Invisible /CIDSystemInfo << /Registry (Adobe) /Ordering "
        "(Identity) /Supplement 0 >>\n/FontDescriptor " +
        reference(descriptor) + " /CIDToGIDMap " + reference(glyphs) + " /W [1 [" + widths + "]] >>\n");
    endObject();
    beginObject(descriptor);
    write(
        "<< /Type /FontDescriptor /FontName /Invisible /Flags 4 /FontBBox [0 -333 1000 1000] /ItalicAngle 0\n"
        "/Ascent 1000 /Descent -333 /CapHeight 1000 /StemV 80 /FontFile2 " +
        reference(program) + " >>\n");
    endObject();
    const std::string font = emptyFont();
    writeStream(program, "/Length1 " + std::to_string(font.size()) + " ", font);
    writeStream(glyphs, "", std::string(2 * (characters_.size() + 1), '\0'));

    std::string map =
        "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n/CIDSystemInfo << /Registry (Adobe) /Ordering "
        "(UCS) /Supplement 0 >> def\n/CMapName /Adobe-Identity-UCS def\n/CMapType 2 def\n1 begincodespacerange\n"
        "<0000> <FFFF>\nendcodespacerange\n";
    constexpr std::size_t kMostInBlock = 100;
    for (std::size_t first = 0; first < characters_.size(); first += kMostInBlock) {
        const std::size_t end = std::min(first + kMostInBlock, characters_.size());
        map += std::to_string(end - first) + " beginbfchar\n";
        for (std::size_t i = first; i < end; ++i) {
            map += '<';
            appendHex(map, static_cast<unsigned>(i + 1), 4);
            map += "> <";
            appendUtf16(map, characters_[i]);
            map += ">\n";
        }
        map += "endbfchar\n";
    }
    writeStream(meanings, "", map + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n");
}

void PdfWriter::finish() {
    writeFont();
    std::string kids, outlines;
    for (const Written& page : pages_) kids += (kids.empty() ? "" : " ") + reference(page.object);
    if (pages_.size() > 1) {
        const int root = newObject(), first = root + 1, last = root + static_cast<int>(pages_.size());
        beginObject(root);
        write("<< /Type /Outlines /First " + reference(first) + " /Last " + reference(last) + " /Count " +
              std::to_string(pages_.size()) + " >>\n");
        endObject();
        for (const Written& page : pages_) {
            const int item = newObject();
            beginObject(item);
            write("<< /Title " + textString(page.name) + " /Parent " + reference(root) + " /Dest [" +
                  reference(page.object) + " /Fit]" + (item > first ? " /Prev " + reference(item - 1) : "") +
                  (item < last ? " /Next " + reference(item + 1) : "") + " >>\n");
            endObject();
        }
        outlines = " /Outlines " + reference(root);
    }
    beginObject(kPages);
    write("<< /Type /Pages /Kids [" + kids + "] /Count " + std::to_string(pages_.size()) + " >>\n");
    endObject();
    beginObject(kCatalog);
    write("<< /Type /Catalog /Pages " + reference(kPages) + outlines + " >>\n");
    endObject();

    const std::size_t table = size_;
    const std::string count = std::to_string(offsets_.size() + 1);
    write("xref\n0 " + count + "\n0000000000 65535 f \n");
    for (const std::size_t offset : offsets_) {
        const std::string digits = std::to_string(offset);
        write(std::string(10 - std::min<std::size_t>(digits.size(), 10), '0') + digits + " 00000 n \n");
    }
    write("trailer\n<< /Size " + count + " /Root " + reference(kCatalog) + " >>\nstartxref\n" + std::to_string(table) +
          "\n%%EOF\n");
    file_.commit();
}

}  // namespace host
