// merida-cli stat and test: a data file loaded as the Load window loads it, then one button of
// the Statistical Analysis or the Test window.
#include <cstdio>
#include <iostream>
#include <sstream>

#include "cli/cli.h"
#include "cli/options.h"
#include "stats/hypothesis_test.h"
#include "stats/statistics.h"

namespace merida::cli {
namespace {

constexpr const char* kStatUsage = "stat freq|ave|regres|multreg [--column K] [--chart] FILE";
constexpr const char* kTestUsage =
    "test t|f|chi [--level 5|1] [--pop \"MEAN SD COUNT\"] [--sample \"MEAN SD COUNT\"] [--record FILE --column J] "
    "[--exact]";

std::string Lines(std::initializer_list<const std::string*> boxes) {
  std::string out;
  for (const std::string* box : boxes) out += *box + '\n';
  return out;
}

// "MEAN SD COUNT" into three boxes; words missing leave their boxes blank.
bool SplitRow(const std::string& row, std::array<std::string, 6>& boxes, int first) {
  std::istringstream words(row);
  std::string word;
  for (int k = 0; words >> word; ++k) {
    if (k == 3) return false;
    boxes[first + k] = word;
  }
  return true;
}

}  // namespace

int RunStat(Context& ctx, const std::vector<std::string>& args) {
  if (args.empty()) return Usage(kStatUsage);
  const std::string action = args[0];
  auto o = ParseOptions({args.begin() + 1, args.end()}, {"--column"}, {"--chart"}, {});
  if (!o || (action != "freq" && action != "ave" && action != "regres" && action != "multreg")) {
    return Usage(kStatUsage);
  }
  if (!LoadFile(ctx, *o->formula).loaded) return Finish(ctx, false);
  const std::string column = o->has("--column") ? (*o)["--column"] : "1";
  const RecordFunctionTable& table = ctx.state.Records;
  std::string out;
  if (action == "freq") {
    auto r = FrequencyDistribution(ctx.engine, table, column);
    if (!r) return Finish(ctx, false);
    out = Lines({&r->medianBox, &r->modeBox});
    if (o->flag("--chart")) out += FloatPointLines(r->chart);
  } else if (action == "ave") {
    auto r = BasicStatistics(ctx.engine, table, column);
    if (!r) return Finish(ctx, false);
    out = Lines({&r->meanBox, &r->varianceBox, &r->deviationBox});
  } else if (action == "regres") {
    auto r = RegressionLine(ctx.engine, table, column);
    if (!r) return Finish(ctx, false);
    out = Lines({&r->aBox, &r->bBox, &r->rBox});
    if (o->flag("--chart")) out += FloatPointLines(r->chart);
  } else {
    auto r = MultipleRegression(ctx.engine, table);
    if (!r) return Finish(ctx, false);
    for (const std::string& box : r->boxes) out += box + '\n';
  }
  std::cout << out;
  return Finish(ctx, true);
}

int RunTest(Context& ctx, const std::vector<std::string>& args) {
  if (args.empty()) return Usage(kTestUsage);
  const std::string action = args[0];
  auto o = ParseOptions({args.begin() + 1, args.end()}, {"--level", "--pop", "--sample", "--record", "--column"},
                        {"--exact"}, {}, false);
  const std::string level = o && o->has("--level") ? (*o)["--level"] : "5";
  if (!o || o->formula || (action != "t" && action != "f" && action != "chi") || (level != "5" && level != "1") ||
      (o->has("--column") && !o->has("--record"))) {
    return Usage(kTestUsage);
  }
  TestInput in;
  in.level = level == "1" ? 1 : 5;
  if ((o->has("--pop") && !SplitRow((*o)["--pop"], in.boxes, 0)) ||
      (o->has("--sample") && !SplitRow((*o)["--sample"], in.boxes, 3))) {
    return Usage(kTestUsage);
  }
  if (o->has("--record")) {
    if (!LoadFile(ctx, (*o)["--record"]).loaded) return Finish(ctx, false);
    in.record = true;
    if (o->has("--column")) in.column = (*o)["--column"];
  }
  const TestKind kind = action == "t" ? TestKind::kMean : action == "f" ? TestKind::kVariance : TestKind::kChiSquare;
  auto r = merida::RunTest(ctx.engine, ctx.state.Records, kind, in);
  if (!r) return Finish(ctx, false);
  static const char* const kBoxNames[6] = {"Text1", "Text2", "Text3", "Text4", "Text5", "Text6"};
  for (int k = 0; k < 6; ++k) {
    if (r->boxes[k]) ReportBox(kBoxNames[k], *r->boxes[k]);
  }
  std::cout << Lines({&r->statisticBox, &r->criticalBox, &r->conclusion});
  if (o->flag("--exact") && r->pValue && r->exactCritical) {
    char line[96];
    std::snprintf(line, sizeof line, "p-value %.6g\nexact critical value %.6g\n", *r->pValue, *r->exactCritical);
    std::cout << line;
    if (r->decisionDiffers) std::cerr << "note: the exact critical value gives the other conclusion\n";
  }
  return Finish(ctx, true);
}

}  // namespace merida::cli
