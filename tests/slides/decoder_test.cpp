#include <gtest/gtest.h>
#include <sstream>

#include "torvelcmd2/slides/slide_decoder.h"
#include "torvelcmd2/slides/slide_file.h"

namespace {

using namespace std::string_literals;

// What a painter was told: "color 3 | line 0,0 1,1 | fill 0,0 1,0 1,1".
class Recorder final : public slidePainter {
  public:
    void header(const SlideHeader& header) override {
        told_ << "screen " << header.highX() << "x" << header.highY() << " " << header.aspectRatio();
    }
    void color(std::int16_t number) override { told_ << " | color " << number; }
    void line(const SlidePoint& from, const SlidePoint& to) override {
        told_ << " | line";
        add(from);
        add(to);
    }
    void fill(const SlidePoint* vertices, int count) override {
        told_ << " | fill";
        for (int i = 0; i < count; ++i) add(vertices[i]);
    }
    std::string text() const { return told_.str(); }

  private:
    void add(const SlidePoint& point) { told_ << " " << point.x << "," << point.y; }

    std::ostringstream told_;
};

constexpr std::string_view kScreen = "screen 640x480 1.25";

// A slide of pieces: "w" a word, "b" a byte, in hexadecimal, blanks between.
std::string slide(const std::string& pieces, bool isBigEndian) {
    std::string bytes;
    const auto number = [&](unsigned long value, int size) {
        for (int i = 0; i < size; ++i) {
            const int shift = 8 * (isBigEndian ? size - 1 - i : i);
            bytes += static_cast<char>(value >> shift & 0xFF);
        }
    };
    bytes = "AutoCAD Slide\r\n\x1A\0\x56\x02"s;
    number(640, 2);
    number(480, 2);
    number(12500000, 4);
    number(2, 2);
    number(0x1234, 2);
    std::istringstream words(pieces);
    for (std::string piece; words >> piece;) number(std::stoul(piece.substr(1), nullptr, 16), piece[0] == 'w' ? 2 : 1);
    return bytes;
}

TEST(SlideDecoder, TellsEveryRecordInBothByteOrders) {
    const struct {
        const char* records;
        const char* told;
    } cases[] = {
        {"", ""},
        {"w0001 w0002 w0003 w0004", " | line 1,2 3,4"},
        {"w7FFF w8000 w0000 wFFFF", " | line 32767,-32768 0,-1"},
        {"wFF07 wFF00 wFFFF wFC00 wFF01", " | color 7 | color 0 | color 255"},
        // The last point: where the last vector began; where the last one from it ended.
        {"w0064 w0064 w0000 w0000 wFE05 bFB", " | line 100,100 0,0 | line 100,100 105,95"},
        {"wFE05 b05 wFE05 b05", " | line 0,0 5,5 | line 5,5 10,10"},
        {"w0064 w0064 w0000 w0000 wFBFF b02 b03 b80 wFE01 b01",
         " | line 100,100 0,0 | line 99,102 103,-28 | line 99,102 100,103"},
        // Coordinates wrap around.
        {"w7FFF w8000 w0000 w0000 wFE01 bFF", " | line 32767,-32768 0,0 | line 32767,-32768 -32768,32767"},
        {"wFD00 w0003 w0000 wFD00 w0001 w0002 wABCD w0003 wFFFC w0000 w8000 w8000", " | fill 1,2 3,4 -32768,-32768"},
        // Counts that cannot be: the vertices are records of their own.
        {"wFD00 w0002 w0000 w0001 w0002 w0003 w0004", " | line 1,2 3,4"},
        {"wFD00 w000B w0000 wFD01 wFFFF w0000 wFF05", " | color 5"},
        // Data that ends inside a record ends the slide before it.
        {"wFF01 w0001 w0002 w0003 b00", " | color 1"},
        {"wFF01 wFB00 b00 b00", " | color 1"},
        {"wFF01 wFD00 w0003 w0000 w0000 w0000 w0000 w0000 w0000 w0000 w0000 w0000", " | color 1"},
        {"wFF01 bFF", " | color 1"},
    };
    for (const auto& c : cases) {
        for (const bool isBigEndian : {false, true}) {
            Recorder recorder;
            torvel::decodeSlide(slide(c.records, isBigEndian), recorder);
            EXPECT_EQ(recorder.text(), std::string(kScreen) + c.told)
                << c.records << (isBigEndian ? " big" : " little");
        }
    }
    Recorder ten;
    std::string fill = "wFD00 w000A w0000";
    for (int i = 0; i < 10; ++i) fill += " wFD00 w0001 w0001";
    torvel::decodeSlide(slide(fill, false), ten);
    EXPECT_EQ(ten.text().size(), kScreen.size() + 7 + 10 * 4);
}

TEST(SlideDecoder, StopsAtUndefinedRecords) {
    for (const bool isBigEndian : {false, true}) {
        for (const char* kind : {"w8012", "wFA00"}) {
            Recorder recorder;
            try {
                torvel::decodeSlide(slide("wFF01 "s + kind + " wFF02", isBigEndian), recorder);
                ADD_FAILURE() << kind;
            } catch (const CXException& error) {
                EXPECT_EQ(error.code(), CXException::kUndefinedRecord);
                EXPECT_EQ(error.subject(), (kind[1] == '8' ? L"0x80"s : L"0xFA"s) + L" at byte 33");
            }
            EXPECT_EQ(recorder.text(), std::string(kScreen) + " | color 1");
        }
    }
}

TEST(SlideDecoder, RefusesWhatIsNoSlideBeforeDrawing) {
    const std::string good = slide("wFF01", false);
    std::string badTest = good;
    badTest[29] = 0x35;
    std::string badMark = good;
    badMark[16] = 1;
    for (const std::string& bytes : {""s, "AutoCAD"s, good.substr(0, 30), badTest, badMark}) {
        Recorder recorder;
        try {
            torvel::decodeSlide(bytes, recorder);
            ADD_FAILURE() << bytes.size();
        } catch (const CXException& error) {
            EXPECT_EQ(error.code(), CXException::kNotASlide);
        }
        EXPECT_EQ(recorder.text(), "");
    }
}

// ---- libraries

std::string entry(const std::string& name, std::uint32_t offset) {
    std::string bytes = name;
    bytes.resize(32);
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(offset >> shift & 0xFF);
    return bytes;
}

std::string library(const std::string& rest) {
    std::string bytes = "AutoCAD Slide Library 1.0\r\n\x1A";
    bytes.resize(32);
    return bytes + rest;
}

TEST(SlideLibrary, ListsItsSlidesInTheOrderOfTheirOffsets) {
    const std::string full(32, 'x');
    const std::string bytes = library(entry("CHAIR", 300) + entry("table", 200) + entry(full, 4000000000u) +
                                      std::string(8, '\0') + entry("behind the end", 1).substr(8));
    std::string listed;
    for (const torvel::SlideLibraryEntry& e : torvel::readSlideDirectory(bytes, L"a.slb")) {
        listed.append(e.name.begin(), e.name.end());
        listed += "@" + std::to_string(e.offset) + " ";
    }
    EXPECT_EQ(listed, "table@200 CHAIR@300 " + full + "@4000000000 @176 ");
    // The file ends where the directory does, with an entry that is not whole.
    EXPECT_EQ(torvel::readSlideDirectory(library(entry("A", 1) + entry("B", 2).substr(1)), L"").size(), 2u);
    for (const std::string& bad : {""s, library("").substr(0, 31), slide("", false)})
        EXPECT_THROW(torvel::readSlideDirectory(bad, L"a.slb"), CXException);
}

TEST(SlideLibrary, FindsASlideWithoutCaseAndGivesNothingOfIt) {
    const std::string bytes = library(entry("CHAIR", 140) + std::string(36, '\0') + slide("wFF01", false));
    EXPECT_EQ(torvel::readLibraryMember(bytes, L"chair", L"a.slb"), "");
    for (const wchar_t* missing : {L"table", L""}) {
        try {
            torvel::readLibraryMember(bytes, missing, L"a.slb");
            ADD_FAILURE() << missing;
        } catch (const CXException& error) {
            EXPECT_EQ(error.code(), CXException::kSlideNotInLibrary);
        }
    }
}

}  // namespace
