// Runs the built program as a script does: no terminal, output captured.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/wait.h>

#include <cstdlib>
#include <iterator>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "doubles/temporary_directory.h"

namespace tidyfold::cli {

using Json = nlohmann::json;
using Words = std::vector<std::string>;

struct Outcome {
  int status = -1;
  std::string out, err;
  Json Document() const { return Json::parse(out); }
};

// A folder of its own for each test.
class Program_Test : public testing::Test {
 protected:
  std::string Path(const std::string& name) const { return (folder_ / name).string(); }

  Outcome Run(const Words& words) const {
    // The log of the person who runs the tests stays out of it.
    std::string line = "XDG_STATE_HOME='" + Path("state") + "' \"" TIDYFOLD_CLI "\"";
    for (const std::string& word : words) {
      EXPECT_EQ(word.find('\''), std::string::npos) << "The shell would not take " << word;
      line += " '" + word + "'";
    }
    const int status =
        std::system((line + " </dev/null >'" + Path("out") + "' 2>'" + Path("err") + "'").c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Bytes_Of(Path("out")), Bytes_Of(Path("err"))};
  }
  // Runs a command on the test's store.
  Outcome On_Store(Words words) const {
    words.insert(words.begin(), {"--store", store_});
    return Run(words);
  }
  void Make_Sample(int items = 600) const {
    const Outcome made = Run({"sample", store_, "--items", std::to_string(items)});
    ASSERT_EQ(made.status, 0) << made.err;
  }
  // Changes the store behind the program's back.
  void Alter(const char* sql) const {
    sqlite3* connection = nullptr;
    ASSERT_EQ(sqlite3_open(store_.c_str(), &connection), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(connection, sql, nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(connection);
    sqlite3_close(connection);
  }
  // Every item of the store, read or not.
  Json All_Items() const {
    return On_Store({"items", "--folder", "/", "--sub-folders", "--unread", "--json"}).Document();
  }

  Temporary_Directory folder_;
  std::string store_ = Path("store.tidyfold");
};

inline Words operator+(Words left, const Words& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

// Splits at blanks.
inline Words Split(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

}  // namespace tidyfold::cli
