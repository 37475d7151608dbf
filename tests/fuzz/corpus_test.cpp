// Every fuzz target over its corpus and over mutations of it, the same in every run.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "doubles/temporary_directory.h"
#include "fuzz/fuzz_targets.h"

namespace tidyfold {

void PrintTo(const Fuzz_Target& target, std::ostream* out) {
  *out << target.name;
}

namespace {

constexpr int mutations = 3000;
constexpr std::size_t longest = 8192;

class Mutator {
 public:
  explicit Mutator(std::vector<std::string> corpus) : corpus_(std::move(corpus)) {}

  std::string Next() {
    std::string bytes = Any();
    for (std::size_t changes = 1 + Below(6); changes > 0; --changes) Change(bytes);
    bytes.resize(std::min(bytes.size(), longest));
    return bytes;
  }

 private:
  std::size_t Below(std::size_t end) { return end == 0 ? 0 : random_() % end; }
  const std::string& Any() { return corpus_[Below(corpus_.size())]; }

  void Change(std::string& bytes) {
    constexpr std::string_view telling = "\n\r:;,<>()\"=?-_\\{}&%'* \t\x80\xFF\x1B";
    const std::size_t at = Below(bytes.size() + 1);
    const std::size_t length = Below(std::min<std::size_t>(bytes.size() - at, 64) + 1);
    switch (Below(6)) {
      case 0:
        bytes.insert(at, 1, telling[Below(telling.size())]);
        return;
      case 1:
        if (at < bytes.size()) bytes[at] = static_cast<char>(Below(256));
        return;
      case 2:
        bytes.erase(at, length);
        return;
      case 3:
        for (std::size_t times = Below(8); times > 0; --times) bytes.insert(at, bytes.substr(at, length));
        return;
      case 4:
        bytes.resize(at);
        return;
      default: {
        const std::string& other = Any();
        bytes.insert(at, other.substr(Below(other.size() + 1), 200));
      }
    }
  }

  std::vector<std::string> corpus_;
  std::mt19937_64 random_{20021};
};

class Fuzz_Corpus : public ::testing::TestWithParam<Fuzz_Target> {};

TEST_P(Fuzz_Corpus, Is_Read_And_So_Are_Mutations_Of_It) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::filesystem::path(TIDYFOLD_FUZZ_CORPUS) / GetParam().name))
    files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  std::vector<std::string> corpus;
  for (const auto& file : files) {
    SCOPED_TRACE(file.filename().string());
    corpus.push_back(Bytes_Of(file));
    EXPECT_NO_THROW(GetParam().run(corpus.back()));
  }
  ASSERT_FALSE(corpus.empty());
  Mutator mutator(corpus);
  for (int i = 0; i < mutations; ++i) {
    const std::string bytes = mutator.Next();
    ASSERT_NO_THROW(GetParam().run(bytes)) << ::testing::PrintToString(bytes);
  }
}

INSTANTIATE_TEST_SUITE_P(Targets, Fuzz_Corpus,
                         ::testing::ValuesIn(Fuzz_Targets().begin(), Fuzz_Targets().end()),
                         [](const auto& found) { return std::string(found.param.name); });

}  // namespace
}  // namespace tidyfold
