// Every good sample, cut at every line and at many bytes, and with every cell broken: it reads, or
// it fails with a place in the file; never anything else.
#include <aq/aq.h>
#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <random>

#include "tests/support/files.h"

namespace aq {
namespace {

using Reader = std::function<std::optional<FileFailure>(const std::string&)>;

std::optional<FileFailure> outcome(const FileClass& file, AQ_DataMessage result, bool complete) {
  EXPECT_EQ(result == AQ_DATA_OK, !file.lastFailure().has_value());
  EXPECT_TRUE(result != AQ_DATA_OK || complete);
  return file.lastFailure();
}

template <class File, class Header, class Model>
std::optional<FileFailure> readWith(const std::string& path) {
  File file;
  std::shared_ptr<Header> header;
  std::shared_ptr<Model> model;
  AQ_DataMessage result = AQ_DATA_FILE_ERROR;
  if constexpr (requires { file.readFile(path, header, model); }) {
    result = file.readFile(path, header, model);
  } else {
    file.readFile(path, header, model, result);
  }
  return outcome(file, result, header && model);
}

std::optional<FileFailure> readSpectrumRecord(const std::string& path) {
  AQ_DataSSR file;
  std::shared_ptr<AQ_Spectrum> spectrum;
  std::shared_ptr<AQ_HeaderSSR> header;
  const AQ_DataMessage result = file.readFile(path, spectrum, header);
  return outcome(file, result, spectrum && header);
}

std::optional<FileFailure> readTracking(const std::string& path) {
  AQ_DataTSPI file;
  std::shared_ptr<AQ_PositionTimeHistory> history;
  AQ_DataMessage result = AQ_DATA_FILE_ERROR;
  file.readFile(path, history, result);
  return outcome(file, result, history != nullptr);
}

std::optional<FileFailure> readMicrophone(const std::string& path) {
  AQ_DataMIC file;
  std::shared_ptr<AQ_HeaderMIC> header;
  AQ_DataMessage result = AQ_DATA_FILE_ERROR;
  file.readFile(path, header, std::make_shared<AQ_Microphone>(), result);
  return outcome(file, result, header != nullptr);
}

std::optional<FileFailure> readParameters(const std::string& path) {
  AQ_DataINI parameters;
  return outcome(parameters, parameters.readFile(path), true);
}

const std::map<std::string, Reader> kReaders{
    {"spectral-time-history", readWith<AQ_DataSTH, AQ_HeaderSTH, AQ_SpectralTimeHistory>},
    {"masking-map", readWith<AQ_DataMask, AQ_HeaderMask, AQ_MaskMap>},
    {"position-time-history", readWith<AQ_DataPTH, AQ_HeaderPTH, AQ_PositionTimeHistory>},
    {"geometric-time-history", readWith<AQ_DataGTH, AQ_HeaderGTH, AQ_GeometryTimeHistory>},
    {"spectrum-record", readSpectrumRecord},
    {"tracking", readTracking},
    {"microphone-position", readMicrophone},
    {"variable-initialization", readParameters}};

class Damage {
 public:
  Damage(const Reader& reader, std::string bytes) : reader_(reader), bytes_(std::move(bytes)) {}

  void check(const std::string& damaged) {
    const auto lines = test::linesOf(damaged).size();
    const std::string path = folder_.with("in", damaged);
    const auto failure = reader_(path);
    static_cast<void>(kindOfFile(path));  // never throws
    ++tried_;
    if (!failure) return;
    ++failed_;
    ASSERT_GE(failure->line, 1U);
    ASSERT_LE(failure->line, lines + 1) << failure->message();
    ASSERT_FALSE(failure->expected.empty());
    ASSERT_FALSE(failure->found.empty());
  }

  void cutEverywhere() {
    for (std::size_t size = 0; size < bytes_.size(); size += size < 2000 ? 1 : 37) {
      check(bytes_.substr(0, size));
    }
  }

  void breakEveryCell() {
    const std::string junk[] = {
        "", "x", "-", "1e999", "99999", "**", "\"", std::string(1, '\0'), "-32768"};
    const auto lines = test::linesOf(bytes_);
    for (std::size_t i = 0; i < lines.size(); ++i) {
      std::size_t at = 0;
      for (int cell = 0; at != std::string::npos && cell < 8; ++cell) {
        const std::size_t end = std::min(lines[i].find(',', at), lines[i].size());
        for (const std::string& text : junk) {
          auto damaged = lines;
          damaged[i].replace(at, end - at, text);
          check(test::textOf(damaged));
        }
        at = end == lines[i].size() ? std::string::npos : end + 1;
      }
    }
  }

  void dropAndDoubleLines() {
    const auto lines = test::linesOf(bytes_);
    for (std::size_t i = 0; i < lines.size(); ++i) {
      auto damaged = lines;
      damaged.erase(damaged.begin() + static_cast<long>(i));
      check(test::textOf(damaged));
      damaged.insert(damaged.begin() + static_cast<long>(i), 2, lines[i]);
      check(test::textOf(damaged));
    }
  }

  void flipBytes() {
    std::mt19937 random(5);
    for (int round = 0; round < 2000; ++round) {
      std::string damaged = bytes_;
      for (unsigned flips = 1 + random() % 4; flips != 0; --flips) {
        damaged[random() % damaged.size()] = static_cast<char>(random());
      }
      check(damaged);
    }
  }

  void expectBothOutcomes() const {
    EXPECT_GT(failed_, 0);
    EXPECT_GT(tried_, failed_);
  }

 private:
  test::Folder folder_;
  const Reader& reader_;
  std::string bytes_;
  int tried_ = 0;
  int failed_ = 0;
};

TEST(Damage, EveryDamagedSampleReadsOrFailsWithAPlace) {
  for (const auto& folder : std::filesystem::directory_iterator(test::kData)) {
    const Reader& reader = kReaders.at(folder.path().filename().string());
    for (const auto& sample : std::filesystem::directory_iterator(folder.path() / "good")) {
      SCOPED_TRACE(sample.path().string());
      ASSERT_FALSE(reader(sample.path().string()));
      Damage damage(reader, test::contentOf(sample));
      damage.cutEverywhere();
      damage.breakEveryCell();
      damage.dropAndDoubleLines();
      damage.flipBytes();
      damage.expectBothOutcomes();
    }
  }
}

}  // namespace
}  // namespace aq
