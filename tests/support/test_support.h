// Shared test helpers: a temporary working directory and a host that records what it is shown.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "engine/engine.h"
#include "engine/host.h"
#include "main/app_state.h"

namespace merida::test {

// A fresh temporary current directory for its lifetime (the program's files live in the current one).
class TempDirScope {
 public:
  TempDirScope();
  ~TempDirScope();
  TempDirScope(const TempDirScope&) = delete;
  TempDirScope& operator=(const TempDirScope&) = delete;
  const std::filesystem::path& dir() const { return dir_; }

 private:
  std::filesystem::path dir_;
  std::filesystem::path previous_;
};

// Runs each test in a fresh temporary directory.
class TempDirTest : public ::testing::Test {
 protected:
  void SetUp() override {
    scope_.emplace();
    dir_ = scope_->dir();
  }
  void TearDown() override { scope_.reset(); }
  std::optional<TempDirScope> scope_;
  std::filesystem::path dir_;
};

// Answers input boxes from a queue (nullopt entries cancel) and records errors and faults.
class RecordingHost : public EngineHost {
 public:
  std::deque<std::optional<std::string>> answers;
  std::vector<std::string> prompts;
  std::vector<int> errors;
  std::vector<std::string> faults;
  int checkpoints = 0;

  std::optional<std::string> askValue(const std::string& prompt) override;
  void showError(int code, const std::string&) override { errors.push_back(code); }
  void showFault(const std::string& description) override { faults.push_back(description); }
  void checkpoint() override { ++checkpoints; }
};

// A recording host that asks the running loop to stop at its stopAt-th checkpoint.
class StoppingHost : public RecordingHost {
 public:
  Engine* engine = nullptr;
  int stopAt = -1;
  void checkpoint() override {
    RecordingHost::checkpoint();
    if (engine && checkpoints == stopAt) engine->StopRequested = 1;
  }
};

// A reset engine as a tool window finds it, whose host stops it at event number host.stopAt.
class EngineTest : public ::testing::Test {
 protected:
  EngineTest() : engine(host) {
    host.engine = &engine;
    engine.ResetEngine();
  }
  StoppingHost host;
  Engine engine;
  AppState state;
};

// Runs merida-cli with arguments and standard input; captures output and exit status.
struct CliResult {
  int status = -1;
  std::string out, err;
};
// `shell` runs first in the same shell (limits, traps: "ulimit -f 1; trap '' XFSZ;").
CliResult RunCli(const std::vector<std::string>& args, const std::string& input = "", const std::string& shell = "");

// A file's bytes; nullopt when it cannot be read.
std::optional<std::string> FileText(const std::filesystem::path& path);

// One merida-cli run and what it must print: exit status, standard output, and standard error
// (exactly, or only its start when errIsPrefix).
struct CliCase {
  const char* name;
  std::vector<std::string> args;
  int status;
  std::string out, err;
  bool errIsPrefix = false;
};
inline void PrintTo(const CliCase& c, std::ostream* os) { *os << c.name; }
void ExpectCli(const CliCase& c);

// Runs each CliCase parameter in a fresh directory.
class CliCaseTest : public TempDirTest, public ::testing::WithParamInterface<CliCase> {};
inline std::string CliCaseName(const ::testing::TestParamInfo<CliCase>& p) { return p.param.name; }

}  // namespace merida::test
