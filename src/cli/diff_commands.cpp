// merida-cli diff and ode: the Differential & Differential Equation window's chart points.
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "calculus/differential.h"
#include "cli/cli.h"
#include "cli/options.h"
#include "engine/number_text.h"

namespace merida::cli {
namespace {

constexpr const char* kDiffUsage = "diff [--order 2] --width H --min A --max B FORMULA";
constexpr const char* kOdeUsage =
    "ode [--order 2] [--rk] [--plane] --var Y --width H --min A --max B --init Y0 [--slope P0] FORMULA\n"
    "       merida-cli ode --simult [--plane] --var Y --var2 Z --second G --width H --min A --max B --init Y0 "
    "--slope Z0 FORMULA";

// --order: 1 or 2; nullopt for anything else.
std::optional<int> Grade(const Options& o) {
  if (!o.has("--order")) return 1;
  const std::string& g = o["--order"];
  if (g == "1") return 1;
  if (g == "2") return 2;
  return std::nullopt;
}

std::string Get(const Options& o, const char* name) { return o.has(name) ? o[name] : std::string(); }

// The chart as lines: "X Y" per point, "X Y Z" with two data sets.
int Print(Context& ctx, const DiffResult& r) {
  if (r.end == DiffEnd::kFault && !ctx.host.sawFault) ctx.host.showFault("Overflow");
  const bool produced = r.end == DiffEnd::kCompleted;
  if (produced) {
    std::string out;
    out.reserve(r.points.size() * 48);
    for (size_t i = 0; i < r.points.size(); ++i) {
      out += PlainText(r.points[i].x) + " " + PlainText(r.points[i].y);
      if (r.dataSets == 2 && i < r.points2.size()) out += " " + PlainText(r.points2[i].y);
      out += '\n';
    }
    std::cout << out;
  }
  return Finish(ctx, produced);
}

}  // namespace

int RunDiff(Context& ctx, const std::vector<std::string>& args) {
  auto o = ParseOptions(args, {"--order", "--width", "--min", "--max"}, {}, {"--width", "--min", "--max"});
  std::optional<int> grade = o ? Grade(*o) : std::nullopt;
  if (!grade) return Usage(kDiffUsage);
  OpenDiffWindow(ctx.engine, ctx.state);
  DiffBoxes boxes;
  boxes.width = (*o)["--width"];
  boxes.min = (*o)["--min"];
  boxes.max = (*o)["--max"];
  DiffResult r = RunGrade(ctx.engine, ctx.state, *o->formula, boxes, *grade, false);
  return Print(ctx, r);
}

int RunOde(Context& ctx, const std::vector<std::string>& args) {
  auto o = ParseOptions(args, {"--order", "--var", "--var2", "--second", "--width", "--min", "--max", "--init", "--slope"},
                        {"--rk", "--plane", "--simult"}, {"--var", "--width", "--min", "--max", "--init"});
  if (!o) return Usage(kOdeUsage);
  const bool simult = o->flag("--simult");
  std::optional<int> grade = Grade(*o);
  if (!grade) return Usage(kOdeUsage);
  if (simult && (o->has("--order") || !o->has("--var2") || !o->has("--second") || !o->has("--slope"))) {
    return Usage(kOdeUsage);
  }
  if (!simult && (o->has("--var2") || o->has("--second"))) return Usage(kOdeUsage);

  OpenDiffWindow(ctx.engine, ctx.state);
  SelectDiffEquationOption(ctx.state);
  ClickRungeKutta(ctx.state, o->flag("--rk"));
  DiffBoxes boxes{Get(*o, "--var"), Get(*o, "--width"),  Get(*o, "--init"),   Get(*o, "--min"),
                  Get(*o, "--max"), Get(*o, "--slope"), Get(*o, "--second"), Get(*o, "--var2")};
  const bool plane = o->flag("--plane");
  DiffResult r = simult ? RunSimult(ctx.engine, ctx.state, *o->formula, boxes, plane)
                        : RunGrade(ctx.engine, ctx.state, *o->formula, boxes, *grade, plane);
  return Print(ctx, r);
}

}  // namespace merida::cli
