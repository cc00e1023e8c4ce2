// Atomic writes: the target is always the old file or the whole new one, a
// simulated crash leaves the old one, and errors are reported, not hidden.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include <algorithm>
#include <filesystem>
#include <thread>
#include <vector>

#include "sim/codec/atomic_file.hpp"

namespace {

namespace fs = std::filesystem;

class AtomicFile : public ::testing::Test {
 protected:
  void SetUp() override {
    static int counter = 0;
    dir_ = fs::temp_directory_path() /
           ("quenby-atomic-" + std::to_string(::getpid()) + "-" + std::to_string(counter++));
    fs::create_directories(dir_);
  }
  void TearDown() override { fs::remove_all(dir_); }

  std::string path(const char* name) const { return (dir_ / name).string(); }
  std::vector<std::string> entries() const {
    std::vector<std::string> names;
    for (const auto& e : fs::directory_iterator(dir_))
      names.push_back(e.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }

  fs::path dir_;
};

TEST_F(AtomicFile, WritesReplaceTheWholeFile) {
  const std::string binary("bytes\0with\0nuls\xFF", 16);
  ASSERT_TRUE(sim::writeFileAtomically(path("a.plist"), binary));
  EXPECT_EQ(sim::readWholeFile(path("a.plist")), binary);
  ASSERT_TRUE(sim::writeFileAtomically(path("a.plist"), "short"));
  EXPECT_EQ(sim::readWholeFile(path("a.plist")), "short") << "no tail of the longer old file";
  ASSERT_TRUE(sim::writeFileAtomically(path("a.plist"), ""));
  EXPECT_EQ(sim::readWholeFile(path("a.plist")), "") << "empty, not missing";
  EXPECT_EQ(entries(), std::vector<std::string>{"a.plist"}) << "no temporary file left";
}

TEST_F(AtomicFile, ACrashBeforeTheRenameKeepsTheOldFile) {
  ASSERT_TRUE(sim::writeFileAtomically(path("c.plist"), "old"));
  EXPECT_FALSE(
      sim::writeFileAtomically(path("c.plist"), "new", sim::WriteFault::CrashBeforeRename));
  EXPECT_EQ(sim::readWholeFile(path("c.plist")), "old");
  std::vector<std::string> names = entries();
  ASSERT_EQ(names.size(), 2u);
  EXPECT_EQ(sim::readWholeFile(path(names[1].c_str())), "new")
      << "the dead process's complete temporary file";
  ASSERT_TRUE(sim::writeFileAtomically(path("c.plist"), "newer"));
  EXPECT_EQ(sim::readWholeFile(path("c.plist")), "newer");
}

TEST_F(AtomicFile, FailuresAreReportedAndLeaveNothing) {
  EXPECT_FALSE(sim::writeFileAtomically(path("missing/x.plist"), "x"));
  fs::create_directory(dir_ / "folder");
  EXPECT_FALSE(sim::writeFileAtomically(path("folder"), "x"))
      << "a folder cannot be replaced by a file";
  EXPECT_EQ(entries(), std::vector<std::string>{"folder"});
  EXPECT_EQ(sim::readWholeFile(path("absent")), std::nullopt);
  EXPECT_EQ(sim::readWholeFile(path("folder")), std::nullopt);
}

TEST_F(AtomicFile, OnlyARegularFileIsRead) {
  ASSERT_TRUE(sim::writeFileAtomically(path("real"), "bytes"));
  fs::create_symlink(path("real"), dir_ / "link");
  ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0644), 0);
  fs::create_directory(dir_ / "folder");
  EXPECT_EQ(sim::readRegularFile(path("real")).status, sim::ReadStatus::Read);
  EXPECT_EQ(sim::readRegularFile(path("real")).bytes, "bytes");
  EXPECT_EQ(sim::readRegularFile(path("absent")).status, sim::ReadStatus::Missing);
  for (const char* other : {"link", "fifo", "folder"}) {
    sim::FileBytes read = sim::readRegularFile(path(other));
    EXPECT_EQ(read.status, sim::ReadStatus::Unreadable) << other;
    EXPECT_EQ(read.bytes, "") << other;
  }
}

TEST_F(AtomicFile, AMoveNeverReplaces) {
  ASSERT_TRUE(sim::writeFileAtomically(path("a"), "first"));
  ASSERT_TRUE(sim::writeFileAtomically(path("b"), "second"));
  EXPECT_EQ(sim::renameWithoutReplacing(path("a"), path("b")), EEXIST);
  EXPECT_EQ(sim::readWholeFile(path("a")), "first");
  EXPECT_EQ(sim::readWholeFile(path("b")), "second");
  EXPECT_EQ(sim::renameWithoutReplacing(path("absent"), path("c")), ENOENT);
  EXPECT_EQ(sim::renameWithoutReplacing(path("a"), path("c")), 0);
  EXPECT_EQ(entries(), (std::vector<std::string>{"b", "c"}));
  EXPECT_EQ(sim::readWholeFile(path("c")), "first");
}

TEST_F(AtomicFile, ConcurrentWritersNeverMixTheirBytes) {
  std::vector<std::thread> writers;
  for (char c : {'a', 'b', 'c', 'd'})
    writers.emplace_back([this, c] {
      for (int i = 0; i < 25; ++i)
        EXPECT_TRUE(sim::writeFileAtomically(path("w"), std::string(4096, c)));
    });
  for (std::thread& t : writers) t.join();
  std::optional<std::string> last = sim::readWholeFile(path("w"));
  ASSERT_TRUE(last && last->size() == 4096);
  EXPECT_EQ(*last, std::string(4096, last->front()));
  EXPECT_EQ(entries(), std::vector<std::string>{"w"});
}

}  // namespace
