// merida-cli roots and inter: the Intersection Point window's list lines.
#include <iostream>

#include "algebra/roots.h"
#include "cli/cli.h"
#include "cli/options.h"
#include "engine/number_text.h"

namespace merida::cli {
namespace {

constexpr const char* kRootsUsage = "roots --min A --max B --num N [--judge J] [--integer] FORMULA";
constexpr const char* kInterUsage = "inter --second G --min A --max B --num N [--judge J] FORMULA";
constexpr const char* kOpeningJudge = "1E-07";  // what the window's judge box shows on opening

int Report(Context& ctx, const RootResult& r) {
  if (r.numBox) ReportBox("Text3", *r.numBox);
  if (r.end == RootEnd::kFault && !ctx.host.sawFault) ctx.host.showFault("Overflow");
  for (const std::string& line : r.lines) std::cout << line << '\n';
  if (r.end == RootEnd::kListed) {
    std::cout.flush();
    for (double x : r.unresolved) {
      std::cerr << "note: the sign change near x=" << PlainText(x)
                << " never came within the judge value; it is not listed as a root\n";
    }
  }
  // A list cut short by an error still shows what was found; the error's exit status stands.
  return Finish(ctx, r.end == RootEnd::kListed);
}

RootBoxes Boxes(const Options& o) {
  return {o["--min"], o["--max"], o["--num"], o.has("--judge") ? o["--judge"] : kOpeningJudge};
}

}  // namespace

int RunRoots(Context& ctx, const std::vector<std::string>& args) {
  auto o = ParseOptions(args, {"--min", "--max", "--num", "--judge"}, {"--integer"}, {"--min", "--max", "--num"});
  if (!o) return Usage(kRootsUsage);
  ctx.state.DivisionCount = 50;
  return Report(ctx, SearchRoots(ctx.engine, ctx.state, *o->formula, Boxes(*o), false, o->flag("--integer")));
}

int RunInter(Context& ctx, const std::vector<std::string>& args) {
  auto o = ParseOptions(args, {"--second", "--min", "--max", "--num", "--judge"}, {},
                        {"--second", "--min", "--max", "--num"});
  if (!o) return Usage(kInterUsage);
  ctx.state.DivisionCount = 50;
  return Report(ctx, SearchIntersections(ctx.engine, ctx.state, *o->formula, o->values["--second"], Boxes(*o), false));
}

}  // namespace merida::cli
