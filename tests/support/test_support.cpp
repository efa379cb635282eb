// Shared test helpers.
#include "test_support.h"

#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <random>
#include <sstream>

namespace merida::test {

TempDirScope::TempDirScope() {
  previous_ = std::filesystem::current_path();
  std::random_device rd;
  dir_ = std::filesystem::temp_directory_path() / ("merida-test-" + std::to_string(::getpid()) + "-" + std::to_string(rd()));
  std::filesystem::create_directories(dir_);
  std::filesystem::current_path(dir_);
}

TempDirScope::~TempDirScope() {
  std::filesystem::current_path(previous_);
  std::error_code ec;
  std::filesystem::remove_all(dir_, ec);
}

std::optional<std::string> RecordingHost::askValue(const std::string& prompt) {
  prompts.push_back(prompt);
  if (answers.empty()) return std::string("0");
  auto a = answers.front();
  answers.pop_front();
  return a;
}

namespace {
std::string Slurp(const std::filesystem::path& p) {
  std::ifstream in(p, std::ios::binary);
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}
std::string Quote(const std::string& s) {
  std::string q = "'";
  for (char c : s) q += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return q + "'";
}
}  // namespace

std::optional<std::string> FileText(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream s;
  s << in.rdbuf();
  return s.str();
}

CliResult RunCli(const std::vector<std::string>& args, const std::string& input, const std::string& shell) {
#ifdef MERIDA_CLI
  auto base = std::filesystem::temp_directory_path() / ("merida-cli-" + std::to_string(::getpid()));
  std::string in = base.string() + ".in", out = base.string() + ".out", err = base.string() + ".err";
  std::ofstream(in, std::ios::binary) << input;
  std::string cmd = "(" + shell + " exec " + Quote(MERIDA_CLI);
  for (const auto& a : args) cmd += " " + Quote(a);
  cmd += ") <" + Quote(in) + " >" + Quote(out) + " 2>" + Quote(err);
  int raw = std::system(cmd.c_str());
  CliResult r;
  r.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  r.out = Slurp(out);
  r.err = Slurp(err);
  std::filesystem::remove(in);
  std::filesystem::remove(out);
  std::filesystem::remove(err);
  return r;
#else
  (void)args;
  (void)input;
  (void)shell;
  return {};
#endif
}

void ExpectCli(const CliCase& c) {
  CliResult r = RunCli(c.args);
  EXPECT_EQ(r.status, c.status);
  EXPECT_EQ(r.out, c.out);
  if (c.errIsPrefix) {
    EXPECT_EQ(r.err.substr(0, c.err.size()), c.err) << r.err;
  } else {
    EXPECT_EQ(r.err, c.err);
  }
}

}  // namespace merida::test
