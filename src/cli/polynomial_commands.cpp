// merida-cli expand, arrange, seek and factor: the polynomial tools of the Intersection Point window.
#include <iostream>

#include "algebra/polynomial.h"
#include "cli/cli.h"
#include "cli/options.h"
#include "engine/number_text.h"

namespace merida::cli {
namespace {

constexpr const char* kExpandUsage = "expand FORMULA";
constexpr const char* kArrangeUsage = "arrange FORMULA";
constexpr const char* kSeekUsage = "seek [--integer] [--tolerance T] [--judge J] FORMULA";
constexpr const char* kFactorUsage = "factor [--coeff] [--integer] [--tolerance T] [--root V]... FORMULA";
// What the window's boxes hold on opening.
constexpr const char* kOpeningTolerance = "1E-05";
constexpr double kOpeningJudge = 1e-7;

// Prints what the window shows after one press; false when the press ended the command.
bool Shown(Context& ctx, const PolyResult& r) {
  if (r.end == PolyEnd::kFault && !ctx.host.sawFault) ctx.host.showFault("Overflow");
  if (r.lines) {
    for (const std::string& line : *r.lines) std::cout << line << '\n';
  }
  if (r.secondFunction) std::cout << *r.secondFunction << '\n';
  return r.end == PolyEnd::kDone;
}

// The judge value Seek and Factor use: the window's, or what a Go before would have read.
std::optional<double> Judge(const Options& o) {
  if (!o.has("--judge")) return kOpeningJudge;
  return ReadNumber(o["--judge"]);
}

}  // namespace

int RunExpand(Context& ctx, const std::vector<std::string>& args) {
  auto o = ParseOptions(args, {}, {}, {});
  if (!o) return Usage(kExpandUsage);
  PolynomialTools tools(ctx.engine);
  return Finish(ctx, Shown(ctx, tools.expand(*o->formula)));
}

int RunArrange(Context& ctx, const std::vector<std::string>& args) {
  auto o = ParseOptions(args, {}, {}, {});
  if (!o) return Usage(kArrangeUsage);
  PolynomialTools tools(ctx.engine);
  return Finish(ctx, Shown(ctx, tools.arrange(*o->formula)));
}

int RunSeek(Context& ctx, const std::vector<std::string>& args) {
  auto o = ParseOptions(args, {"--tolerance", "--judge"}, {"--integer"}, {});
  if (!o) return Usage(kSeekUsage);
  std::optional<double> judge = Judge(*o);
  if (!judge) {  // a judge box that is not a number: Go ends silently
    ctx.engine.EndSilently("the judge value must be a number (not \"" + (*o)["--judge"] + "\")");
    return Finish(ctx, false);
  }
  PolynomialTools tools(ctx.engine);
  const std::string tolerance = o->has("--tolerance") ? (*o)["--tolerance"] : kOpeningTolerance;
  return Finish(ctx, Shown(ctx, tools.seek(*o->formula, tolerance, *judge, o->flag("--integer"))));
}

int RunFactor(Context& ctx, const std::vector<std::string>& args) {
  // --root may repeat: each is one press, in order.
  std::vector<std::string> roots, rest;
  for (size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--root" && i + 1 < args.size()) {
      roots.push_back(args[++i]);
    } else if (args[i] == "--root") {
      return Usage(kFactorUsage);
    } else {
      rest.push_back(args[i]);
    }
  }
  auto o = ParseOptions(rest, {"--tolerance"}, {"--coeff", "--integer"}, {});
  if (!o) return Usage(kFactorUsage);
  const std::string tolerance = o->has("--tolerance") ? (*o)["--tolerance"] : kOpeningTolerance;
  const bool coeff = o->flag("--coeff");
  PolynomialTools tools(ctx.engine);
  if (roots.empty()) {
    PolyResult seek = tools.seek(*o->formula, tolerance, kOpeningJudge, o->flag("--integer"));
    if (seek.end == PolyEnd::kFault && !ctx.host.sawFault) ctx.host.showFault("Overflow");
    if (seek.end != PolyEnd::kDone) return Finish(ctx, false);
    PolyResult r = tools.factor("", tolerance, kOpeningJudge, coeff);
    // Divisions before a failing one have shown their boxes.
    if (r.secondFunction) std::cout << *r.secondFunction << '\n';
    return Finish(ctx, r.end == PolyEnd::kDone);
  }
  PolyResult arranged = tools.arrange(*o->formula);
  if (arranged.end != PolyEnd::kDone) return Finish(ctx, Shown(ctx, arranged));
  bool changed = false;
  for (const std::string& root : roots) {
    PolyResult r = tools.factor(root, tolerance, kOpeningJudge, coeff);
    if (r.end == PolyEnd::kError) return Finish(ctx, false);
    if (r.secondFunction) {
      std::cout << *r.secondFunction << '\n';
      changed = true;
    }
  }
  return Finish(ctx, changed);
}

}  // namespace merida::cli
