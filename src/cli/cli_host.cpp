// The command line's host: --var values, standard input, standard error.
#include <cstdio>
#include <iostream>

#include "cli/cli.h"
#include "engine/english.h"
#include "engine/number_text.h"

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
  std::cerr << "error " << code << ": " << (english ? WithEnglish(message) : message) << std::endl;
}

void CliHost::showFault(const std::string& description) {
  if (!sawFault) std::cerr << "fault: " << description << std::endl;
  sawFault = true;
}

LoadResult LoadFile(Context& ctx, const std::string& file) {
  std::filesystem::path path = std::filesystem::absolute(file);
  LoadResult r = LoadDataFile(ctx.engine, ctx.state.Records, path);
  if (!r.boxes.text1) r.boxes.text1 = path.filename().string();
  if (!r.loaded && !r.reason.empty()) ctx.engine.EndSilently(r.reason);
  return r;
}

std::string FloatPointLines(const std::vector<ChartPoint>& points) {
  std::string out;
  for (const ChartPoint& p : points) {
    out += PlainText(static_cast<float>(p.x)) + " " + PlainText(static_cast<float>(p.y)) + "\n";
  }
  return out;
}

int Finish(const Context& ctx, bool produced) {
  if (ctx.host.sawFault || ctx.engine.FaultFlag) return kFault;
  if (ctx.host.sawError || ctx.engine.ErrorFlag == 1) return kFailed;
  if (!produced) {
    // Where the window ends without a word, a script still learns why.
    const std::string& why = ctx.engine.silentReason();
    std::cerr << "merida-cli: " << (why.empty() ? "nothing to show for these boxes" : why) << std::endl;
    return kFailed;
  }
  return kOk;
}

int Usage(const char* usage) {
  std::cerr << "usage: merida-cli " << usage << std::endl;
  return kUsage;
}

}  // namespace merida::cli
