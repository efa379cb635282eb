// merida-cli: the command table and the host that talks to standard input and error.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "engine/engine.h"
#include "graph/graph_plot.h"
#include "main/app_state.h"
#include "signal/data_files.h"

namespace merida::cli {

// Exit statuses, the same for every command.
enum ExitCode { kOk = 0, kFailed = 1, kUsage = 2, kFault = 3 };

// Reads free variables from --var values, then standard input (EOF answers "0");
// prints errors and faults on standard error.
class CliHost : public EngineHost {
 public:
  std::map<std::string, std::string> vars;
  bool sawError = false;
  bool sawFault = false;
  bool english = false;  // error lines carry their English in parentheses

  std::optional<std::string> askValue(const std::string& prompt) override;
  void showError(int code, const std::string& message) override;
  void showFault(const std::string& description) override;
};

struct Context {
  Engine& engine;
  AppState& state;
  CliHost& host;
  std::filesystem::path dir;  // the current directory
};

// The exit status after an action: fault 3, error 1, else 0 when the action produced its
// output; a silent end is 1, its reason printed on standard error.
int Finish(const Context& ctx, bool produced);

// Every command: its arguments after the command name; returns the exit status.
using Command = int (*)(Context& ctx, const std::vector<std::string>& args);

struct CommandEntry {
  const char* name;
  const char* usage;
  Command run;
};

// Load as the Load window does after a click on the file: Text1 first holds the file's name.
LoadResult LoadFile(Context& ctx, const std::string& file);

// Points of single-precision data, "X Y" a line, as the record table holds them.
std::string FloatPointLines(const std::vector<ChartPoint>& points);

// Prints "usage: merida-cli USAGE" on standard error and returns kUsage.
int Usage(const char* usage);

}  // namespace merida::cli
