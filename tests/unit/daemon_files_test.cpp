// Files that are read and replaced as a whole.

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>

#include "files.h"

namespace fs = std::filesystem;
using msand::FileError, msand::readFile, msand::replaceFile;

class Files : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(mkdtemp(folder_.data()), nullptr); }
  void TearDown() override { fs::remove_all(folder_); }
  std::string at(const std::string& name) const { return folder_ + "/" + name; }
  std::size_t entries() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder_), fs::directory_iterator()));
  }
  std::string folder_ = testing::TempDir() + "filesXXXXXX";
};

static std::string complaint(auto action) {
  try {
    action();
  } catch (const FileError& error) {
    return error.what();
  }
  return "none";
}

TEST_F(Files, AReplacedFileHasTheNewBytesAndTheOldMode) {
  replaceFile(at("a"), "first");
  struct stat status {};
  ASSERT_EQ(stat(at("a").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0640u) << "of a new file";
  fs::permissions(at("a"), fs::perms::owner_read | fs::perms::owner_write);
  replaceFile(at("a"), std::string_view("\0second", 7));
  ASSERT_EQ(stat(at("a").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
  EXPECT_EQ(readFile(at("a"), 7), std::string_view("\0second", 7));
  EXPECT_EQ(entries(), 1u) << "no temporary file stays";
}

TEST_F(Files, ALinkStaysALink) {
  fs::create_directory(at("real"));
  fs::create_symlink("real/a", at("link"));
  replaceFile(at("link"), "bytes");
  EXPECT_TRUE(fs::is_symlink(at("link")));
  EXPECT_EQ(readFile(at("real/a"), 10), "bytes");
}

TEST_F(Files, OnlyRegularFilesWithinTheLimitAreRead) {
  replaceFile(at("a"), std::string(100, 'x'));
  EXPECT_EQ(readFile(at("a"), 100).size(), 100u);
  EXPECT_EQ(complaint([&] { readFile(at("a"), 99); }), at("a") + ": is longer than 99 bytes");
  ASSERT_EQ(mkfifo(at("pipe").c_str(), 0600), 0);
  EXPECT_EQ(complaint([&] { readFile(at("pipe"), 100); }), at("pipe") + ": is not a regular file")
      << "and nobody waits";
  EXPECT_EQ(complaint([] { readFile("/proc/self/maps", 10); }), "/proc/self/maps: is longer than 10 bytes")
      << "a file that claims to be empty is measured by what it gives";
}
