// Tests writing on Windows: names, attributes, read-only and open files, and two appends at once.
// Also tests running programs and file modification times.
#include <aq/aq.h>
#include <aq/core/platform.h>
#include <gtest/gtest.h>
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <memory>
#include <thread>

#include "tests/support/files.h"

namespace aq {
namespace {

namespace fs = std::filesystem;

/// The message of the error that a call throws; empty if it succeeds.
template <class Call>
std::string refusalOf(const Call& call) {
  try {
    call();
    return "";
  } catch (const platform::SystemError& error) {
    return error.what();
  }
}

std::string writeRefusal(const std::string& path) {
  return refusalOf([&] { platform::replaceFile(path, "new"); });
}

std::ptrdiff_t entriesOf(const fs::path& folder) {
  return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

TEST(Write, NamesThatTheSystemChangesAreRefused) {
  const test::Folder folder;
  const std::string device = "\" is a name that the system reserves for a device";
  const std::string end = "a dot or blank at the end of a name, which the system drops";
  const std::pair<std::string, std::string> rows[] = {{"nul.csv", "\"nul.csv" + device},
                                                      {"Aux", "\"Aux" + device},
                                                      {"com1.sth.csv", "\"com1.sth.csv" + device},
                                                      {"LPT\u00B2", "\"LPT\u00B2" + device},
                                                      {"con /x", end},
                                                      {"x.", end},
                                                      {"x ", end},
                                                      {"x:y", "a colon in the name"},
                                                      {"\xFF", "the name is not valid UTF-8"},
                                                      {std::string("a\0b", 3), "Invalid argument"},
                                                      {std::string(256, 'n'), "File name too long"},
                                                      {"none/x", "No such file or directory"},
                                                      {"", "Is a directory"}};
  for (const auto& [name, reason] : rows) {
    EXPECT_EQ(writeRefusal(folder.file("") + name), reason) << name;
    EXPECT_EQ(refusalOf([&] { platform::appendToFile(folder.file("") + name, "x"); }), reason);
    EXPECT_NE(refusalOf([&] { platform::InputFile(folder.file("") + name); }), "") << name;
  }
  for (const char* name : {"nulx", "COM", "com10", "lpt.1", ".x"}) {
    EXPECT_EQ(writeRefusal(folder.file(name)), "") << name;
  }
  EXPECT_EQ(writeRefusal("NUL"), "");
  EXPECT_EQ(entriesOf(folder.file("")), 5);
}

TEST(Write, NamesOfAnyLanguageAndLengthComeBack) {
  const test::Folder folder;
  std::string deep = folder.file("");
  std::vector<std::string> folders;
  for (int i = 0; i < 12; ++i) {
    folders.push_back("\\\\?\\" + deep + "a folder with a long name " + std::to_string(i));
    ASSERT_NE(::CreateDirectoryW(fs::path(folders.back()).c_str(), nullptr), 0);
    deep = folders.back().substr(4) + '\\';
  }
  ASSERT_GT(deep.size(), 300U);
  const std::string name = "\u00DCberflug \u98DB\u884C \U0001F6E9.csv";
  for (const std::string& in : {folder.file(""), deep}) {
    platform::replaceFile(in + name, "old");
    platform::replaceFile(in + name, "new");
    platform::appendToFile(in + name, " more");
    std::array<char, 16> room{};
    EXPECT_EQ(platform::InputFile(in + name).read(room), 8U);
    EXPECT_STREQ(room.data(), "new more");
    EXPECT_EQ(platform::filesIn(in), std::vector<std::string>{name});
    EXPECT_TRUE(platform::isFile(in + name) && !platform::isFile(in));
    EXPECT_TRUE(platform::areOneFile(in + name, in + ".\\" + name));
  }
  const fs::path deepest(std::u8string(name.begin(), name.end()));
  EXPECT_NE(::DeleteFileW((fs::path(folders.back()) / deepest).c_str()), 0);
  for (auto left = folders.rbegin(); left != folders.rend(); ++left) {
    EXPECT_NE(::RemoveDirectoryW(fs::path(*left).c_str()), 0);
  }
  EXPECT_EQ(platform::fileName("C:\\a/b\\c.csv"), "c.csv");
  EXPECT_EQ(platform::fileName("C:c.csv"), "c.csv");
}

TEST(Write, AttributesStayAndWhatIsReadOnlyOrHeldIsRefused) {
  const test::Folder folder;
  const std::string path = folder.with("a", "old");
  const std::wstring name = fs::path(path).native();
  ASSERT_NE(::SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_HIDDEN), 0);
  EXPECT_EQ(writeRefusal(path), "");
  EXPECT_EQ(::GetFileAttributesW(name.c_str()) & FILE_ATTRIBUTE_HIDDEN, FILE_ATTRIBUTE_HIDDEN);
  ASSERT_NE(::SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_READONLY), 0);
  EXPECT_EQ(writeRefusal(path), "the file is marked as read-only");
  ASSERT_NE(::SetFileAttributesW(name.c_str(), FILE_ATTRIBUTE_NORMAL), 0);
  for (const DWORD sharing :
       {DWORD{0}, DWORD{FILE_SHARE_READ}, DWORD{FILE_SHARE_READ | FILE_SHARE_WRITE}}) {
    const HANDLE held =
        ::CreateFileW(name.c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    EXPECT_EQ(writeRefusal(path), "another program holds the file open") << sharing;
    const std::string read = refusalOf([&] { platform::InputFile{path}; });
    EXPECT_EQ(read.empty(), sharing != 0) << read;
    ::CloseHandle(held);
  }
  EXPECT_EQ(test::contentOf(path), "new");
  EXPECT_EQ(entriesOf(folder.file("")), 1);
  EXPECT_EQ(writeRefusal(path), "");
}

TEST(Write, AppendersDoNotCutEachOtherOff) {
  const test::Folder folder;
  const std::string path = folder.file("a");
  constexpr int kTimes = 100;
  const auto append = [&] {
    for (int i = 0; i < kTimes; ++i) platform::appendToFile(path, "a line of its own\n");
  };
  { std::array<std::jthread, 2> appenders{std::jthread(append), std::jthread(append)}; }
  const auto lines = test::linesOf(test::contentOf(path));
  EXPECT_EQ(lines, std::vector<std::string>(2 * kTimes, "a line of its own"));
}

TEST(Platform, RunsPrograms) {
  const char* const shell = "C:\\windows\\system32\\cmd.exe";
  EXPECT_EQ(platform::outputOf(shell, {"/c", "echo", "a b"}), "\"a b\"\r\n");
  const auto run = [](const std::string& program, const std::vector<std::string>& arguments) {
    return refusalOf([&] { static_cast<void>(platform::outputOf(program, arguments)); });
  };
  EXPECT_EQ(run(shell, {"/c", "exit", "3"}), "status 3");
  EXPECT_EQ(run("C:\\none.exe", {}), "No such file or directory");
  const test::Folder folder;
  EXPECT_EQ(run(folder.with("a.Cmd", "exit"), {}),
            "a batch file, which may run parts of a file name as commands");
  EXPECT_NE(run(folder.with("a.exe", "no program"), {}), "");
}

TEST(Platform, AFileHasTheTimeOfItsLastChange) {
  const test::Folder folder;
  const std::string path = folder.with("a", "");
  const auto changed = platform::lastChanged(path);
  ASSERT_TRUE(changed);
  EXPECT_NEAR(static_cast<double>(std::time(nullptr) - *changed), 0, 60);
  EXPECT_FALSE(platform::lastChanged(folder.file("none")));
}

}  // namespace
}  // namespace aq
