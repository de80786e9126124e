// What only a POSIX system lets a test arrange: full disks, links, permissions, pipes.
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "base/files.h"
#include "base/temporary_folder.h"

namespace {

namespace fs = std::filesystem;

std::string contentsOf(const std::wstring& path) { return std::string(base::readFile(path).view()); }

// Lets no file grow beyond the limit, as a full disk would.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before_); }

  private:
    rlimit before_;
};

TEST(FilesPosix, AFullDiskLeavesTheTargetAndNoRemains) {
    const base::TemporaryFolder folder;
    const std::wstring path = folder / L"plan.dxf";
    base::writeFile(path, "old");
    {
        const FileSizeLimit limit(100000);
        EXPECT_THROW(base::writeFile(path, std::string(200000, 'n')), base::FileError);
        EXPECT_THROW(base::writeFile(path, std::string(1000000, 'n')), base::FileError);
    }
    EXPECT_EQ(contentsOf(path), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(base::toPath(folder.path())), {}), 1);
}

// File names are bytes here, not text.
TEST(FilesPosix, ANameThatIsNoUtf8IsAName) {
    const base::TemporaryFolder folder;
    const std::string name = base::toPath(folder.path()).native() + "/gr\xFC\xDF.dxf";
    const std::wstring path = base::fromPath(name);
    base::writeFile(path, "plan");
    EXPECT_TRUE(fs::exists(name));
    EXPECT_TRUE(base::isFile(path));
    EXPECT_EQ(contentsOf(path), "plan");
    EXPECT_EQ(base::toPath(path).native(), name);
}

TEST(FilesPosix, ADeviceIsWrittenDirectly) {
    try {
        base::writeFile(L"/dev/full", "x");
        ADD_FAILURE() << "the full device took a byte";
    } catch (const base::FileError& error) {
        EXPECT_STREQ(error.what(), "/dev/full: No space left on device");
    }
    EXPECT_TRUE(fs::is_character_file("/dev/full"));

    const base::TemporaryFolder folder;
    const std::wstring pipe = folder / L"pipe";
    ASSERT_EQ(mkfifo(base::toPath(pipe).c_str(), 0600), 0);
    std::string read;
    std::thread reader([&] { read = base::FileReading(pipe).take().view(); });
    base::writeFile(pipe, std::string(300000, 'p'));
    reader.join();
    EXPECT_EQ(read, std::string(300000, 'p'));
    EXPECT_TRUE(fs::is_fifo(base::toPath(pipe)));
}

TEST(FilesPosix, LinksAndPermissionsStay) {
    const base::TemporaryFolder folder;
    fs::create_directory(base::toPath(folder / L"real"));
    const std::wstring target = base::joinPath(folder / L"real", L"plan.dxf");
    base::writeFile(target, "old");
    ASSERT_EQ(chmod(base::toPath(target).c_str(), 0640), 0);
    fs::create_symlink("real/plan.dxf", base::toPath(folder / L"first"));
    fs::create_symlink("first", base::toPath(folder / L"second"));
    base::writeFile(folder / L"second", "new");
    EXPECT_EQ(contentsOf(target), "new");
    EXPECT_TRUE(fs::is_symlink(base::toPath(folder / L"first")));
    EXPECT_TRUE(fs::is_symlink(base::toPath(folder / L"second")));
    EXPECT_EQ(static_cast<int>(fs::status(base::toPath(target)).permissions()), 0640);

    // A link that leads to nothing yet makes what it leads to.
    fs::create_symlink("real/later.dxf", base::toPath(folder / L"dangling"));
    base::writeFile(folder / L"dangling", "made");
    EXPECT_EQ(contentsOf(base::joinPath(folder / L"real", L"later.dxf")), "made");
    EXPECT_TRUE(fs::is_symlink(base::toPath(folder / L"dangling")));

    const mode_t mask = umask(027);
    base::writeFile(folder / L"fresh", "x");
    umask(mask);
    EXPECT_EQ(static_cast<int>(fs::status(base::toPath(folder / L"fresh")).permissions()), 0640);
}

}  // namespace
