#include "base/files.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

#include "base/line_buffer.h"
#include "base/paths.h"
#include "base/temporary_folder.h"

namespace {

std::string contentsOf(const std::wstring& path) { return std::string(base::readFile(path).view()); }

std::size_t countIn(const std::wstring& folder) {
    std::size_t count = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(base::toPath(folder))) ++count;
    return count;
}

TEST(Files, ReadsWholeFilesWithZeroesBehind) {
    const base::TemporaryFolder folder;
    const std::wstring path = folder / L"T\u00FCr \u4E2D.dxf";
    std::string bytes = "a\r\n\x1A\0b";
    bytes.append(300000, 'x');
    base::writeFile(path, bytes);
    const base::FileBuffer buffer = base::readFile(path);
    EXPECT_EQ(buffer.view(), bytes);
    EXPECT_EQ(std::string(buffer.data() + buffer.size(), base::FileBuffer::kPadding),
              std::string(base::FileBuffer::kPadding, '\0'));
    base::writeFile(path, "");
    EXPECT_EQ(contentsOf(path), "");
    EXPECT_EQ(countIn(folder.path()), 1u);
}

TEST(Files, LargeFilesAreReadPieceByPiece) {
    const base::TemporaryFolder folder;
    std::string bytes;
    for (int i = 0; bytes.size() < (std::size_t{9} << 20); ++i) bytes += std::to_string(i) + '\n';
    for (const std::string& written : {bytes, bytes.substr(0, 100), std::string()}) {
        base::writeFile(folder / L"large.dxf", written);
        base::FileReading reading(folder / L"large.dxf");
        std::size_t known = 0;
        const char* place = nullptr;
        while (!reading.isComplete()) {
            const std::string_view read = reading.beyond(known);
            EXPECT_TRUE(read.size() > known || reading.isComplete());
            EXPECT_TRUE(place == nullptr || place == read.data());
            EXPECT_EQ(read, std::string_view(written).substr(0, read.size()));
            place = read.data();
            known = read.size();
        }
        const base::FileBuffer whole = reading.take();
        EXPECT_EQ(whole.data(), place);
        EXPECT_EQ(whole.view(), written);
        EXPECT_EQ(whole.data()[whole.size()], '\0');
        // Who needs it no more need not wait for it.
        const base::FileReading unused(folder / L"large.dxf");
    }
}

TEST(Files, TextEndsAtTheEndMark) {
    const base::TemporaryFolder folder;
    base::writeFile(folder / L"a.txt", "\xEF\xBB\xBFone\r\ntwo\x1Athree\x1A");
    EXPECT_EQ(base::readTextFile(folder / L"a.txt"), "one\r\ntwo");
}

TEST(Files, ErrorsNameTheFile) {
    const base::TemporaryFolder folder;
    for (const std::wstring& path : {folder / L"missing.dxf", folder.path()}) {
        try {
            base::FileReading(path).take();
            ADD_FAILURE() << "read " << base::toPath(path);
        } catch (const base::FileError& error) {
            EXPECT_EQ(error.fileName(), path);
            EXPECT_FALSE(error.reason().empty());
            EXPECT_NE(std::string(error.what()).find(": "), std::string::npos);
        }
    }
    EXPECT_THROW(base::AtomicFile(base::joinPath(folder / L"nowhere", L"x.dxf")), base::FileError);
    EXPECT_THROW(base::AtomicFile{folder.path()}, base::FileError);
    EXPECT_EQ(countIn(folder.path()), 0u);
}

TEST(Files, WithoutCommitTheTargetStaysAsItWas) {
    const base::TemporaryFolder folder;
    const std::wstring path = folder / L"plan.dxf";
    base::writeFile(path, "old");
    {
        base::AtomicFile file(path);
        file.write(std::string(1 << 20, 'n'));
        EXPECT_EQ(contentsOf(path), "old");
    }
    EXPECT_EQ(contentsOf(path), "old");
    EXPECT_EQ(countIn(folder.path()), 1u);

    base::AtomicFile file(path);
    file.write("new ");
    file.write(std::string(1 << 20, 'n'));
    file.write(" end");
    file.commit();
    EXPECT_EQ(contentsOf(path), "new " + std::string(1 << 20, 'n') + " end");
    EXPECT_EQ(countIn(folder.path()), 1u);
}

TEST(Files, LinesOfAStream) {
    const auto linesOf = [](std::string bytes, std::size_t step) {
        base::LineBuffer buffer([bytes, step, at = std::size_t{0}](char* to, std::size_t size) mutable {
            const std::size_t count = std::min({step, size, bytes.size() - at});
            bytes.copy(to, count, at);
            at += count;
            return count;
        });
        std::vector<std::string> lines;
        while (const auto line = buffer.take()) lines.push_back(*line);
        return lines;
    };
    using Lines = std::vector<std::string>;
    for (std::size_t step : {1u, 3u, 4096u}) {
        EXPECT_EQ(linesOf("one\r\n\ntwo\n", step), (Lines{"one", "", "two"}));
        EXPECT_EQ(linesOf("no end", step), (Lines{"no end"}));
        EXPECT_EQ(linesOf("a\rb\n\r\n", step), (Lines{"a\rb", ""}));
        EXPECT_EQ(linesOf("a\nb\x1A"
                          "c\nd",
                          step),
                  (Lines{"a", "b"}));
        EXPECT_EQ(linesOf("", step), Lines{});
    }
    EXPECT_EQ(linesOf(std::string(10000, 'x') + "\ny", 4096), (Lines{std::string(10000, 'x'), "y"}));
}

}  // namespace
