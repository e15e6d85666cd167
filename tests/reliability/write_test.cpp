// Replacing or appending keeps a file's permissions and symbolic links to it, and its content if
// the system refuses.
#include <aq/aq.h>
#include <aq/core/platform.h>
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <iomanip>
#include <sstream>
#include <thread>

#include "tests/support/files.h"

namespace aq {
namespace {

namespace fs = std::filesystem;

AQ_DataASCII textOf(const std::string& line) {
  AQ_DataASCII text;
  auto lines = std::make_shared<Collection<std::string>>();
  lines->Add(line);
  text.Lines(lines);
  return text;
}

bool writes(const std::string& path) { return textOf("new").writeLines(path) == AQ_DATA_OK; }

std::string refusalOf(AQ_DataASCII text, const std::string& path) {
  if (text.writeLines(path) == AQ_DATA_OK) return "none";
  return text.lastFailure()->expected + ", " + text.lastFailure()->found;
}

/// Runs `check` in a child process and returns its result.
template <class Check>
bool inChild(const Check& check) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(check() ? 0 : 1);
  int status = 0;
  return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Drops the privileges that let a process bypass permissions.
bool becomeNobody() {
  constexpr uid_t kNobody = 65534;
  if (::geteuid() != 0) return true;
  return ::setgroups(0, nullptr) == 0 && ::setgid(kNobody) == 0 && ::setuid(kNobody) == 0;
}

constexpr auto kAll = fs::perms::all;
constexpr auto kReadOnly = fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read;
constexpr auto kShared = fs::perms::owner_all | fs::perms::group_read | fs::perms::group_write;

TEST(Write, PermissionsStayAndNewFilesHaveTheUsualOnes) {
  const test::Folder folder;
  const std::string path = folder.with("a", "old");
  fs::permissions(path, kShared);
  EXPECT_TRUE(writes(path));
  EXPECT_EQ(fs::status(path).permissions(), kShared);
  for (const mode_t mask : {mode_t{0}, mode_t{027}}) {
    const mode_t before = ::umask(mask);
    const std::string made = folder.file(std::to_string(mask));
    EXPECT_TRUE(writes(made));
    ::umask(before);
    EXPECT_EQ(fs::status(made).permissions(), fs::perms(0666 & ~mask));
  }
  // If standard input is closed, the file gets its descriptor, 0.
  EXPECT_TRUE(inChild([&] { return ::close(0) == 0 && writes(path); }));
  EXPECT_EQ(std::distance(fs::directory_iterator(fs::path(path).parent_path()), {}), 3);
}

TEST(Platform, AFileHasTheTimeOfItsLastChange) {
  const test::Folder folder;
  const std::string path = folder.with("a", "");
  std::tm local{};
  std::istringstream("2004-03-14 07:05:09") >> std::get_time(&local, "%Y-%m-%d %H:%M:%S");
  const std::time_t changed = std::mktime(&local);
  const timespec both[] = {{changed, 0}, {changed, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, path.c_str(), static_cast<const timespec*>(both), 0), 0);
  EXPECT_EQ(fileInformation()->fileDateTime(path), "03/14/2004,07:05:09");
  EXPECT_NE(fileInformation()->fileDateTime(folder.file("none")), "03/14/2004,07:05:09");
}

TEST(Write, LinksStayAndOtherNamesKeepTheOldFile) {
  const test::Folder folder;
  fs::create_directory(folder.file("sub"));
  const std::string file = folder.with("sub/file", "old");
  fs::create_symlink("sub/file", folder.file("near"));
  fs::create_symlink(folder.file("near"), folder.file("far"));
  fs::create_symlink("sub/none", folder.file("dangling"));
  fs::create_symlink("circle", folder.file("circle"));
  fs::create_hard_link(file, folder.file("other"));
  EXPECT_TRUE(writes(folder.file("far")));
  EXPECT_TRUE(writes(folder.file("dangling")));
  EXPECT_FALSE(writes(folder.file("circle")));
  for (const char* link : {"near", "far", "dangling", "circle"}) {
    EXPECT_TRUE(fs::is_symlink(folder.file(link))) << link;
  }
  EXPECT_EQ(test::contentOf(file), "new\n");
  EXPECT_EQ(test::contentOf(folder.file("sub/none")), "new\n");
  EXPECT_EQ(test::contentOf(folder.file("other")), "old");
  // A path below /proc is treated as an ordinary file, unless it names an open file by number.
  fs::create_directory(folder.file("fd"));
  fs::create_hard_link(file, folder.file("fd/1"));
  EXPECT_TRUE(writes("/proc/self/root" + folder.file("fd/1")));
  EXPECT_EQ(fs::hard_link_count(file), 1U);
}

/// An append waits for another one, and then uses whichever file has the name by then.
TEST(Write, AnAppendFollowsTheName) {
  const test::Folder folder;
  const std::string path = folder.with("a", "old");
  const int held = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(held, LOCK_EX), 0);
  std::jthread appender([&] { EXPECT_EQ(textOf("more").appendLines(path), AQ_DATA_OK); });
  std::this_thread::sleep_for(std::chrono::milliseconds(100));  // the append has probably begun
  EXPECT_TRUE(writes(path));
  ::close(held);
  appender.join();
  EXPECT_EQ(test::contentOf(path), "new\nmore\n");
}

TEST(Write, NonRegularFilesAreWrittenDirectly) {
  EXPECT_EQ(refusalOf(textOf("new"), "/dev/full"),
            "a file that can be written, No space left on device");
  EXPECT_EQ(refusalOf(textOf("new"), fs::temp_directory_path().string()),
            "a file that can be written, Is a directory");
  std::array<int, 2> pipe{};
  ASSERT_EQ(::pipe(pipe.data()), 0);
  EXPECT_TRUE(writes("/proc/self/fd/" + std::to_string(pipe[1])));
  std::array<char, 8> room{};
  EXPECT_EQ(::read(pipe[0], room.data(), room.size()), 4);
  ASSERT_EQ(::fcntl(pipe[1], F_SETFL, O_NONBLOCK), 0);  // as another program may have set it
  const std::string large(300'000, 'x');
  std::jthread reader([&] {
    std::size_t left = large.size() + 1;
    while (left != 0) left -= static_cast<std::size_t>(::read(pipe[0], room.data(), room.size()));
  });
  EXPECT_EQ(refusalOf(textOf(large), "/dev/fd/" + std::to_string(pipe[1])), "none");
  reader.join();
  ::close(pipe[0]);
  ::close(pipe[1]);
  // A name such as /dev/stdout still names the same open file after a write.
  const test::Folder folder;
  std::FILE* const open = std::fopen(folder.with("a", "old").c_str(), "r");
  EXPECT_TRUE(
      writes("/proc/" + std::to_string(::getpid()) + "/fd/" + std::to_string(fileno(open))));
  std::array<char, 8> content{};
  EXPECT_EQ(std::fread(content.data(), 1, content.size(), open), 4U);
  std::fclose(open);
  std::FILE* const shared = std::fopen(folder.file("a").c_str(), "a");  // as with >> in a shell
  EXPECT_TRUE(writes("/dev/fd/" + std::to_string(fileno(shared))));
  EXPECT_EQ(test::contentOf(folder.file("a")), "new\nnew\n");
  std::fclose(shared);
  std::FILE* const begun = std::fopen(folder.file("a").c_str(), "w");  // as with > in a shell
  EXPECT_EQ(textOf("1").appendLines("/dev/fd/" + std::to_string(fileno(begun))), AQ_DATA_OK);
  EXPECT_EQ(std::fwrite("2\n", 1, 2, begun), 2U);
  std::fclose(begun);
  EXPECT_EQ(test::contentOf(folder.file("a")), "1\n2\n");
}

/// Root keeps the owner and permissions of the file that it replaces; any other user becomes the
/// owner.
TEST(Write, ForeignFilesKeepTheirOwnerWhereTheSystemAllows) {
  if (::geteuid() != 0) GTEST_SKIP() << "needs permission to give files away";
  constexpr uid_t kNobody = 65534;
  const test::Folder folder;
  const std::string theirs = folder.with("theirs", "old");
  const std::string roots = folder.with("roots", "old");
  fs::permissions(fs::path(roots).parent_path(), kAll);
  ASSERT_EQ(::chown(theirs.c_str(), kNobody, 12345), 0);
  ASSERT_EQ(::chmod(theirs.c_str(), 06700), 0);
  ASSERT_EQ(::chmod(roots.c_str(), 06777), 0);
  EXPECT_TRUE(writes(theirs));
  EXPECT_TRUE(inChild([&] { return becomeNobody() && writes(roots); }));
  struct stat status {};
  ASSERT_EQ(::stat(theirs.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, kNobody);
  EXPECT_EQ(status.st_gid, 12345U);
  EXPECT_EQ(status.st_mode & 07777U, 06700U);
  ASSERT_EQ(::stat(roots.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, kNobody);
  // The set-ID bits are cleared, and the new group does not get the permissions of the old one.
  EXPECT_EQ(status.st_mode & 07777U, 0707U);
}

TEST(Write, RefusedWhereAPlainOpenOrTheFolderRefuses) {
  const test::Folder folder;
  fs::create_directory(folder.file("closed"));
  const std::string readOnly = folder.with("readonly", "old");
  const std::string enclosed = folder.with("closed/file", "old");
  fs::permissions(fs::path(readOnly).parent_path(), kAll);
  fs::permissions(readOnly, kReadOnly);
  fs::permissions(enclosed, kAll);
  fs::permissions(folder.file("closed"),
                  kReadOnly | fs::perms::owner_exec | fs::perms::others_exec);
  EXPECT_TRUE(inChild([&] {
    return becomeNobody() &&
           refusalOf(textOf("new"), readOnly) == "a file that can be written, Permission denied" &&
           refusalOf(textOf("new"), enclosed) ==
               "a folder where a temporary file can be created, Permission denied" &&
           !writes(folder.file("closed/new")) && textOf("new").appendLines(enclosed) == AQ_DATA_OK;
  }));
  EXPECT_EQ(test::contentOf(readOnly), "old");
  EXPECT_EQ(test::contentOf(enclosed), "oldnew\n");
  fs::permissions(folder.file("closed"), kAll);  // so that its file can be removed
}

TEST(Write, AFullDiskLeavesTheOldContent) {
  const test::Folder folder;
  const std::string path = folder.with("a", "old\n");
  EXPECT_TRUE(inChild([&] {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit little{10, 10};
    const std::string line(100, 'x');
    return ::setrlimit(RLIMIT_FSIZE, &little) == 0 &&
           textOf(line).appendLines(path) == AQ_DATA_FILE_ERROR &&
           textOf(line).writeLines(path) == AQ_DATA_FILE_ERROR;
  }));
  EXPECT_EQ(test::contentOf(path), "old\n");
  EXPECT_EQ(
      std::distance(fs::directory_iterator(fs::path(path).parent_path()), fs::directory_iterator()),
      1);
}

}  // namespace
}  // namespace aq
