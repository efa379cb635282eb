// The formula history kept between runs: bounded, tolerant of what it finds, never through a link.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

#include "main/formula_history.h"
#include "test_support.h"

namespace merida {
namespace {

class HistoryFile : public test::TempDirTest {
 protected:
  std::filesystem::path file() const { return dir_ / FormulaHistory::kFileName; }
  void write(const std::string& text) const { std::ofstream(file(), std::ios::binary) << text; }
  std::string read() const {
    std::ostringstream s;
    s << std::ifstream(file(), std::ios::binary).rdbuf();
    return s.str();
  }
  // The formulas Up recalls, newest first.
  static std::vector<std::string> recalled(FormulaHistory& h) {
    std::vector<std::string> out;
    while (auto f = h.older("")) out.push_back(*f);
    return out;
  }
};

TEST_F(HistoryFile, ReadsWhatItFinds) {
  const struct {
    const char* file;
    std::vector<std::string> newestFirst;
  } cases[] = {
      {"1+2\r\nsin(x)\r\n", {"sin(x)", "1+2"}},
      {"1+2\nsin(x)", {"sin(x)", "1+2"}},  // no final line break, Unix line ends
      {"\r\n   \r\n2*3\r\n", {"2*3"}},       // blank lines are no formulas
      {"", {}},
  };
  for (const auto& c : cases) {
    write(c.file);
    FormulaHistory h;
    EXPECT_EQ(h.load(dir_), "");
    EXPECT_EQ(recalled(h), c.newestFirst) << c.file;
  }
}

TEST_F(HistoryFile, KeepsTheNewestAndSkipsOverlongLines) {
  std::string text = std::string(FormulaHistory::kLongestLine + 1, '1') + "\r\n";
  for (int i = 1; i <= 250; ++i) text += std::to_string(i) + "\r\n";
  write(text);
  FormulaHistory h;
  EXPECT_EQ(h.load(dir_), "");
  EXPECT_EQ(h.size(), FormulaHistory::kKept);
  EXPECT_EQ(h.older(""), "250");
  h.add("x+1");
  ASSERT_TRUE(h.save(dir_));
  FormulaHistory again;
  again.load(dir_);
  const std::vector<std::string> back = recalled(again);
  ASSERT_EQ(back.size(), FormulaHistory::kKept);
  EXPECT_EQ(back.front(), "x+1");
  EXPECT_EQ(back.back(), "52");  // 51 fell off when x+1 came
}

TEST_F(HistoryFile, SaveRoundTripsThroughLinksAndRefusesDirectories) {
  FormulaHistory h;
  for (const char* f : {"1+2", "sgm(k,1,10,k)", "1+2", "2^0.5"}) h.add(f);
  ASSERT_TRUE(h.save(dir_));
  EXPECT_EQ(read(), "1+2\r\nsgm(k,1,10,k)\r\n1+2\r\n2^0.5\r\n");
  // The user's own link is kept and the history lands in the file it names (links that the
  // kernel would refuse to follow are the store's tests' business: the same SaveTarget).
  std::filesystem::rename(file(), dir_ / "real.his");
  std::filesystem::create_symlink(dir_ / "real.his", file());
  h.add("3*3");
  ASSERT_TRUE(h.save(dir_));
  EXPECT_TRUE(std::filesystem::is_symlink(file()));
  EXPECT_EQ(read(), "1+2\r\nsgm(k,1,10,k)\r\n1+2\r\n2^0.5\r\n3*3\r\n");
  // A directory in the way is refused and left alone.
  std::filesystem::remove(file());
  std::filesystem::create_directory(file());
  EXPECT_FALSE(h.save(dir_));
  EXPECT_TRUE(std::filesystem::is_directory(file()));
}

TEST_F(HistoryFile, AFifoOrADirectoryIsAnErrorNotAHang) {
  EXPECT_EQ(FormulaHistory().load(dir_), "");  // no file is no error
  ASSERT_EQ(mkfifo(file().c_str(), 0600), 0);
  FormulaHistory h;
  EXPECT_NE(h.load(dir_), "");
  std::filesystem::remove(file());
  std::filesystem::create_directory(file());
  EXPECT_NE(h.load(dir_), "");
}

}  // namespace
}  // namespace merida
