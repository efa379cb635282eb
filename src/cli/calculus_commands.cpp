// merida-cli integ and dinteg: the Integration windows' answers.
#include <iostream>

#include "calculus/delay.h"
#include "calculus/integration.h"
#include "cli/cli.h"
#include "cli/options.h"
#include "engine/number_text.h"

namespace merida::cli {
namespace {

constexpr const char* kIntegUsage = "integ --min A --max B --num N FORMULA";
constexpr const char* kDelayUsage = "delay --steps N --init V1,V2,...,VK FORMULA";
constexpr const char* kDintegUsage = "dinteg --min A --max B --num N --min2 C --max2 D --num2 M FORMULA";

int Report(Context& ctx, const IntegrationResult& r) {
  if (r.numBox) ReportBox("Text3", *r.numBox);
  if (r.numBox2) ReportBox("Text6", *r.numBox2);
  if (r.end == IntegrationEnd::kFault && !ctx.host.sawFault) ctx.host.showFault("Overflow");
  if (r.value) std::cout << PlainText(*r.value) << '\n';
  return Finish(ctx, r.value.has_value());
}

}  // namespace

int RunInteg(Context& ctx, const std::vector<std::string>& args) {
  auto o = ParseOptions(args, {"--min", "--max", "--num"}, {}, {"--min", "--max", "--num"});
  if (!o) return Usage(kIntegUsage);
  return Report(ctx, IntegrateSingle(ctx.engine, ctx.state, *o->formula, {o->values["--min"], o->values["--max"], o->values["--num"]}));
}

int RunDinteg(Context& ctx, const std::vector<std::string>& args) {
  const std::set<std::string> names{"--min", "--max", "--num", "--min2", "--max2", "--num2"};
  auto o = ParseOptions(args, names, {}, names);
  if (!o) return Usage(kDintegUsage);
  // Double first: it refuses a formula without exactly two variables.
  if (!PrepareDoubleIntegral(ctx.engine, *o->formula)) return Finish(ctx, false);
  RangeBoxes first{o->values["--min"], o->values["--max"], o->values["--num"]};
  RangeBoxes second{o->values["--min2"], o->values["--max2"], o->values["--num2"]};
  return Report(ctx, IntegrateDouble(ctx.engine, ctx.state, *o->formula, first, second));
}

int RunDelay(Context& ctx, const std::vector<std::string>& args) {
  auto o = ParseOptions(args, {"--steps", "--init"}, {}, {"--steps", "--init"});
  if (!o) return Usage(kDelayUsage);
  // The grid's column, top down.
  std::vector<std::string> cells;
  const std::string& init = o->values["--init"];
  for (size_t start = 0;;) {
    size_t comma = init.find(',', start);
    cells.push_back(init.substr(start, comma - start));
    if (comma == std::string::npos) break;
    start = comma + 1;
  }
  DelayResult r = merida::RunDelay(ctx.engine, ctx.state, *o->formula, o->values["--steps"], cells);
  if (r.stepBox) ReportBox("Text1", *r.stepBox);
  if (r.end == DelayEnd::kFault && !ctx.host.sawFault) ctx.host.showFault("Overflow");
  const bool produced = r.end == DelayEnd::kCompleted;
  if (produced) {
    std::string out;
    for (const ChartPoint& p : r.points) out += PlainText(p.x) + " " + PlainText(p.y) + "\n";
    std::cout << out;
  }
  return Finish(ctx, produced);
}

}  // namespace merida::cli
