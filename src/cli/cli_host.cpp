// The command line's host: --var values, standard input, standard error.
#include <cstdio>
#include <iostream>

#include "cli/cli.h"

namespace merida::cli {

std::optional<std::string> CliHost::askValue(const std::string& prompt) {
  if (auto it = vars.find(prompt); it != vars.end()) return it->second;
  std::cerr << prompt << std::endl;
  std::string line;
  if (!std::getline(std::cin, line)) return std::string("0");  // the input box's default
  if (!line.empty() && line.back() == '\r') line.pop_back();
  return line;
}

void CliHost::showError(int code, const std::string& message) {
  sawError = true;
  std::cerr << "error " << code << ": " << message << std::endl;
}

void CliHost::showFault(const std::string& description) {
  if (!sawFault) std::cerr << "fault: " << description << std::endl;
  sawFault = true;
}

int Finish(const Context& ctx, bool produced) {
  if (ctx.host.sawFault || ctx.engine.FaultFlag) return kFault;
  if (ctx.host.sawError || ctx.engine.ErrorFlag == 1 || !produced) return kFailed;
  return kOk;
}

int Usage(const char* usage) {
  std::cerr << "usage: merida-cli " << usage << std::endl;
  return kUsage;
}

}  // namespace merida::cli
