#include <sys/stat.h>
#include <thread>

#include "base/paths.h"
#include "extract_fixture.h"

namespace {

// A pipe is no drawing that could be overwritten, and to look whether it is one would wait for ever.
TEST_F(ExtractTest, APipeIsWrittenDirectly) {
    const std::wstring pipe = folder_ / L"pipe";
    ASSERT_EQ(mkfifo(base::toPath(pipe).c_str(), 0600), 0);
    base::writeFile(folder_ / L"template.txt", "TAG1 C000000");
    std::string read;
    std::thread reader([&] { read = base::readFile(pipe).view(); });
    EXPECT_EQ(torvel::writeDelimitedExtract(folder_ / L"template.txt", pipe, objects({0x50})), 1);
    reader.join();
    EXPECT_EQ(read, "'42'\r\n");
}

}  // namespace
