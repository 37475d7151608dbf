// What the fuzzers and the test of their corpora run: one entry for each reader of foreign data.
#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tidyfold {

// What a target found beyond a crash: an answer that cannot be right.
class Fuzz_Find : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

struct Fuzz_Target {
  std::string_view name;  // of the target, and of its folder below corpus/
  // Throws Fuzz_Find. Data that the reader refuses is no find.
  void (*run)(const std::string& bytes);
};

std::span<const Fuzz_Target> Fuzz_Targets();

}  // namespace tidyfold
