// merida-cli graph: the Graph window's points, one "X Y" line each.
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "cli/graph_command.h"
#include "cli/options.h"
#include "engine/number_text.h"
#include "graph/graph_plot.h"

namespace merida::cli {
namespace {

constexpr const char* kGraphUsage = "graph --min A --max B --num N [--polar] [--param F2] FORMULA";

}  // namespace

int RunGraph(Context& ctx, const std::vector<std::string>& args) {
  std::optional<std::string> minText, maxText, numText, second, formula;
  bool polar = false;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    auto value = [&](std::optional<std::string>& slot) {
      if (slot || i + 1 >= args.size()) return false;
      slot = args[++i];
      return true;
    };
    bool ok = true;
    if (a == "--min") {
      ok = value(minText);
    } else if (a == "--max") {
      ok = value(maxText);
    } else if (a == "--num") {
      ok = value(numText);
    } else if (a == "--param") {
      ok = value(second);
    } else if (a == "--polar") {
      ok = !polar;
      polar = true;
    } else if (a.rfind("--", 0) == 0 || formula) {
      ok = false;  // a formula may start with a single "-", never with "--"
    } else {
      formula = a;
    }
    if (!ok) return Usage(kGraphUsage);
  }
  if (!minText || !maxText || !numText || !formula || (polar && second)) return Usage(kGraphUsage);

  PrepareGraphDefaults(ctx.engine, ctx.state);
  GraphBoxes boxes{*minText, *maxText, *numText};
  PlotResult plot;
  if (second) {
    plot = PlotPara(ctx.engine, ctx.state, *formula, *second, boxes);
  } else if (polar) {
    plot = PlotPole(ctx.engine, ctx.state, *formula, boxes);
  } else {
    plot = PlotGo(ctx.engine, ctx.state, *formula, boxes);
  }
  if (plot.divisionsBox) ReportBox("Text3", *plot.divisionsBox);
  const bool produced = plot.end == PlotEnd::kCompleted;
  if (plot.end == PlotEnd::kFault && !ctx.host.sawFault) ctx.host.showFault("Overflow");
  if (produced) {
    std::string out;
    out.reserve(plot.points.size() * 40);
    for (const ChartPoint& p : plot.points) out += PlainText(p.x) + " " + PlainText(p.y) + "\n";
    std::cout << out;
  }
  return Finish(ctx, produced);
}

}  // namespace merida::cli
