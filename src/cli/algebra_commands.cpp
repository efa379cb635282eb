// merida-cli commands of the linear-equation and prime windows: their list lines on standard output.
#include <cstdint>
#include <cstdio>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "algebra/linear_system.h"
#include "algebra/primes.h"
#include "cli/cli.h"
#include "engine/formula_sampler.h"

namespace merida::cli {
namespace {

constexpr int kInputDataError = 46;

void PrintLines(const std::vector<std::string>& lines) {
  for (const std::string& line : lines) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
  }
}

std::vector<std::string> SplitBlanks(std::string_view row) {
  std::vector<std::string> fields;
  size_t i = 0;
  while (i < row.size()) {
    while (i < row.size() && (row[i] == ' ' || row[i] == '\t')) ++i;
    size_t start = i;
    while (i < row.size() && row[i] != ' ' && row[i] != '\t') ++i;
    if (i > start) fields.emplace_back(row.substr(start, i - start));
  }
  return fields;
}

// The grid a command's rows describe; nullopt (after the usage line) when they cannot be a grid.
// A row with fewer numbers leaves empty cells, which end the action as in the window.
std::optional<CellTexts> ReadRows(const std::vector<std::string>& args, bool withConstants, const char* usage) {
  const size_t n = args.size();
  if (n < 1 || n > static_cast<size_t>(kMaxSystemOrder)) {
    Usage(usage);
    return std::nullopt;
  }
  CellTexts grid;
  for (const std::string& row : args) {
    auto fields = SplitBlanks(row);
    if (fields.size() > n + (withConstants ? 1 : 0)) {
      Usage(usage);
      return std::nullopt;
    }
    grid.push_back(std::move(fields));
  }
  return grid;
}

void ReportFault(Context& ctx) {
  ctx.engine.FaultFlag = true;
  ctx.engine.BindToX = -1;
  ctx.engine.StopRequested = 1;
  ctx.host.showFault("overflow");
}

int Report(Context& ctx, const LinearResult& r, bool printCells) {
  switch (r.outcome) {
    case LinearOutcome::Listed:
      PrintLines(r.lines);
      if (printCells) {
        for (const auto& row : r.cells) {
          std::string line;
          for (const std::string& cell : row) line += (line.empty() ? "" : " ") + cell;
          PrintLines({line});
        }
      }
      if (!r.warning.empty()) {
        std::fflush(stdout);
        std::cerr << "warning: " << r.warning << '\n';
      }
      return Finish(ctx, true);
    case LinearOutcome::Refused:
      PrintLines(r.lines);
      return kFailed;
    case LinearOutcome::NotNumeric:
      ctx.engine.Fail(kInputDataError);
      return Finish(ctx, false);
    case LinearOutcome::Fault:
      ReportFault(ctx);
      return Finish(ctx, false);
    case LinearOutcome::Silent:
      ctx.engine.EndSilently("row " + std::to_string(r.badRow) + " has no number in column " +
                             std::to_string(r.badColumn));
      break;
  }
  return Finish(ctx, false);
}

int RunLinear(Context& ctx, const std::vector<std::string>& args, bool withConstants, const char* usage,
              LinearResult (*operation)(const CellTexts&), bool printCells = false) {
  auto grid = ReadRows(args, withConstants, usage);
  if (!grid) return kUsage;
  return Report(ctx, operation(*grid), printCells);
}

// Lines go out through one large buffer: a listing to 10^8 is 5.7 million of them.
class BufferedOut {
 public:
  BufferedOut() { buffer_.reserve(kSize + 64); }
  ~BufferedOut() { flush(); }
  BufferedOut(const BufferedOut&) = delete;
  BufferedOut& operator=(const BufferedOut&) = delete;

  void line(std::string_view text) {
    buffer_.append(text);
    buffer_.push_back('\n');
    if (buffer_.size() >= kSize) flush();
  }
  void flush() {
    if (!buffer_.empty()) std::fwrite(buffer_.data(), 1, buffer_.size(), stdout);
    buffer_.clear();
  }

 private:
  static constexpr size_t kSize = 1 << 20;
  std::string buffer_;
};

}  // namespace

int RunSolve(Context& ctx, const std::vector<std::string>& args) {
  return RunLinear(ctx, args, true, "solve ROW... (each ROW \"a1 ... an c\", n rows, n <= 10)", SolveByElimination);
}

int RunSimult(Context& ctx, const std::vector<std::string>& args) {
  return RunLinear(ctx, args, true, "simult ROW... (each ROW \"a1 ... an c\", n rows, n <= 10)", SolveByMatrix);
}

int RunDet(Context& ctx, const std::vector<std::string>& args) {
  return RunLinear(ctx, args, false, "det ROW... (each ROW \"a1 ... an\", n rows, n <= 10)", Determinant);
}

int RunInverse(Context& ctx, const std::vector<std::string>& args) {
  return RunLinear(ctx, args, false, "inverse ROW... (each ROW \"a1 ... an\", n rows, n <= 10)", Inverse, true);
}

// Why a prime tool did nothing with its box: it ends silently in the window.
constexpr const char* kIntegerRange = "2 to 2147483647";

int RunPfactor(Context& ctx, const std::vector<std::string>& args) {
  if (args.size() != 1) return Usage("pfactor N");
  auto lines = FactorLines(args[0]);
  PrintLines(lines);
  if (lines.empty()) ctx.engine.EndSilently(CountReason("N", args[0], 2, INT32_MAX));
  return Finish(ctx, !lines.empty());
}

int RunPrimes(Context& ctx, const std::vector<std::string>& args) {
  if (args.size() != 1) return Usage("primes N");
  int64_t lines = 0;
  {
    BufferedOut out;
    lines = ListPrimeLines(args[0], [&out](std::string_view line) { out.line(line); });
  }
  std::fflush(stdout);
  if (lines == 0) ctx.engine.EndSilently(CountReason("N", args[0], 2, INT32_MAX));
  return Finish(ctx, lines > 0);
}

int RunGcm(Context& ctx, const std::vector<std::string>& args) {
  if (args.size() != 2) return Usage("gcm A B");
  auto lines = GcmLines(args[0], args[1], ctx.state.japanese());
  if (lines) PrintLines(*lines);
  if (!lines) ctx.engine.EndSilently(std::string("A and B must be whole numbers from ") + kIntegerRange);
  if (lines && lines->empty()) ctx.engine.EndSilently("the least common multiple is above 2147483647");
  return Finish(ctx, lines && !lines->empty());
}

}  // namespace merida::cli
