// Makes each system call and allocation fail in turn, in every format. Each run must end with a
// clean error or the right result, and leave the old file or the new one, but no temporary or open
// file. A process killed at a system call must leave the old content or the new; after an append,
// it may leave the old content and part of the new lines.
#include <aq/aq.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <new>
#include <sstream>

#include "tests/reliability/faults.h"
#include "tests/support/formats.h"
#include "tests/support/samples.h"

namespace aq {
namespace {

using test::Fault;
namespace fs = std::filesystem;

std::ptrdiff_t entriesOf(const fs::path& folder) {
  return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
}

enum class End { Done, Refused, Thrown };

template <class Work>
End endOf(const Work& work) {
  try {
    return work() == AQ_DATA_OK ? End::Done : End::Refused;
  } catch (const std::bad_alloc&) {
    return End::Thrown;
  }
}

const std::string kOld = "old\n";

/// The kind of target that `work` writes to.
enum class Target { File, Link, Nothing };

std::string madeIn(const test::Folder& folder, Target target, const std::string& name) {
  std::string path = folder.file(name);
  fs::remove(path);
  if (target == Target::File) return folder.with(name, kOld);
  if (target == Target::Link) fs::create_symlink(folder.with("linked.csv", kOld), path);
  return path;
}

/// Runs `work(path)` repeatedly, with the fault one call later each time, until a run has no fault;
/// returns the number of runs that had one. `expected` is the new content.
template <class Work>
long strikeAll(Fault fault, const std::string& expected, const Work& work,
               const std::string& name = "target.csv", Target target = Target::File) {
  const test::Folder folder;
  for (long nth = 1;; ++nth) {
    const std::string path = madeIn(folder, target, name);
    const auto open = entriesOf("/proc/self/fd");
    const auto files = entriesOf(fs::path(path).parent_path());
    test::arm(fault, nth);
    const End end = endOf([&] { return work(path); });
    const bool struck = test::disarm();
    const bool made = target == Target::Nothing && end == End::Done;
    EXPECT_EQ(entriesOf(fs::path(path).parent_path()), files + (made ? 1 : 0)) << nth;
    EXPECT_EQ(fs::is_symlink(path), target == Target::Link) << nth;
    EXPECT_EQ(test::contentOf(path), end == End::Done            ? expected
                                     : target == Target::Nothing ? ""
                                                                 : kOld)
        << nth;
    EXPECT_EQ(entriesOf("/proc/self/fd"), open) << nth;
    const bool passes = !struck || fault == Fault::Interruption;
    EXPECT_TRUE(!passes || end == End::Done) << nth;
    if (!struck || testing::Test::HasFailure()) return nth - 1;
  }
}

/// Like `strikeAll`, but runs `work` in a child process that is killed at the call. `isWhole` says
/// whether the content that is left is allowed; temporary files may be left too.
template <class Work, class IsWhole>
long killAll(const Work& work, const IsWhole& isWhole, const std::string& name = "target.csv") {
  for (long nth = 1;; ++nth) {
    const test::Folder folder;
    const std::string path = folder.with(name, kOld);
    const pid_t child = ::fork();
    if (child == 0) {
      test::arm(Fault::Kill, nth);
      static_cast<void>(work(path));
      ::_exit(0);
    }
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(isWhole(test::contentOf(path))) << nth;
    if (!WIFSIGNALED(status) || testing::Test::HasFailure()) return nth - 1;
  }
}

template <class Change>
auto asText(const std::string& from, const Change& change) {
  return [&change, from](const std::string& to) {
    AQ_DataASCII text;
    text.CommentFields(true);
    const AQ_DataMessage read = text.readFields(from);
    return read == AQ_DATA_OK ? change(text, to) : read;
  };
}

TEST(Faults, EveryCallMayFailInEveryFormat) {
  const test::FixedInformation fixed;
  test::forSamples("good", [](const std::string& name, const fs::path& sample) {
    const auto& format = test::kFormats.at(name);
    const auto work = [&](const std::string& to) {
      if (format.rewrite) return format.rewrite(sample.string(), to);
      const test::Outcome read = format.read(sample.string());
      EXPECT_TRUE(read.sound);
      return read.failure ? AQ_DATA_FILE_ERROR : AQ_DATA_OK;
    };
    const std::string expected = format.rewrite ? test::contentOf(sample) : kOld;
    const std::string file = sample.filename().string();
    const auto isWhole = [&](const std::string& left) { return left == kOld || left == expected; };
    EXPECT_GT(strikeAll(Fault::Refusal, expected, work, file), 10);
    EXPECT_GT(strikeAll(Fault::Interruption, expected, work, file), 2);
    EXPECT_GT(killAll(work, isWhole, file), 2);
  });
}

TEST(Faults, EveryCallMayFailOrBeTheLastInText) {
  const test::Folder folder;
  const std::string from = folder.with("from.csv", "1,\"a,b\"\nlast,line,\n");
  const auto write = [](AQ_DataASCII& text, const std::string& to) { return text.writeFields(to); };
  const auto append = [](AQ_DataASCII& text, const std::string& to) {
    return text.appendFields(to);
  };
  const std::string written = "1,a,b\nlast,line,\n";
  const std::string appended = kOld + "\"1\",\"a,b\"\n\"last\",\"line\",\"\"\n";
  for (const Target target : {Target::File, Target::Link, Target::Nothing}) {
    EXPECT_GT(strikeAll(Fault::Refusal, written, asText(from, write), "to.csv", target), 20);
  }
  for (const Target target : {Target::File, Target::Link}) {
    EXPECT_GT(strikeAll(Fault::Refusal, appended, asText(from, append), "to.csv", target), 20);
  }
  EXPECT_GT(strikeAll(Fault::Interruption, appended, asText(from, append)), 5);
  const auto isEither = [&](const std::string& left) { return left == kOld || left == written; };
  const auto isPart = [&](const std::string& left) {  // a kill may leave part of what is appended
    return left.starts_with(kOld) && appended.starts_with(left);
  };
  EXPECT_GT(killAll(asText(from, write), isEither), 10);
  EXPECT_GT(killAll(asText(from, append), isPart), 5);
}

TEST(Faults, BytesReachTheDiskBeforeTheName) {
  const test::Folder folder;
  const std::string path = folder.with("a", kOld);
  AQ_DataASCII text;
  text.Lines()->Add("2");
  const auto callsOf = [&](auto&& work) {
    test::arm(Fault::Refusal, -1);
    EXPECT_EQ(work(), AQ_DATA_OK);
    test::disarm();
    return test::callsMade();
  };
  // Keeps only the calls whose order is guaranteed, and one of several identical calls in a row.
  const auto orderOf = [&](auto&& work) {
    std::istringstream calls(callsOf(work));
    std::string order;
    for (std::string call; calls >> call;) {
      const bool promised =
          call == "flock" || call == "write" || call == "fsync" || call == "rename";
      if (promised && !order.ends_with(call + ' ')) order += call + ' ';
    }
    return order;
  };
  EXPECT_EQ(orderOf([&] { return text.writeLines(path); }), "write fsync rename fsync ");
  EXPECT_EQ(orderOf([&] { return text.appendLines(path); }), "flock write fsync ");
  // For a new file, the folder must reach the disk too, since it holds the name.
  const std::string calls = callsOf([&] { return text.appendLines(folder.file("new")); });
  EXPECT_TRUE(calls.ends_with("fsync close close ")) << calls;
}

}  // namespace
}  // namespace aq
