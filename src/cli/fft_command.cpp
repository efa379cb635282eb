// merida-cli fft: Go of the frequency analysis window, on a formula or a file loaded first,
// then one display.
#include <iostream>

#include "cli/cli.h"
#include "cli/options.h"
#include "engine/atomic_file.h"
#include "engine/number_text.h"
#include "signal/data_files.h"
#include "signal/frequency.h"

namespace merida::cli {
namespace {

constexpr const char* kFftUsage =
    "fft [--wave FILE | --mrd FILE] [--average | --continue] --from T0 --to T1 --num N "
    "--show fourier|imaginary|power|corr [--matrix FILE] [FORMULA]";

std::string PointLine(const ChartPoint& p) {
  return PlainText(p.x) + " " + PlainText(static_cast<float>(p.y)) + "\n";
}

}  // namespace

int RunFft(Context& ctx, const std::vector<std::string>& args) {
  auto o = ParseOptions(args, {"--wave", "--mrd", "--from", "--to", "--num", "--show", "--matrix"},
                        {"--average", "--continue"}, {"--from", "--to", "--num", "--show"}, false);
  if (!o) return Usage(kFftUsage);
  const std::string show = (*o)["--show"];
  const bool file = o->has("--wave") || o->has("--mrd");
  const bool continuous = o->flag("--continue");
  if ((o->has("--wave") && o->has("--mrd")) || (o->flag("--average") && continuous) || file == o->formula.has_value() ||
      (show != "fourier" && show != "imaginary" && show != "power" && show != "corr") ||
      (o->has("--matrix") && !(continuous && show == "power")) || (!file && (o->flag("--average") || continuous))) {
    return Usage(kFftUsage);
  }
  FftSource source = FftSource::kFormula;
  if (file) {
    source = o->has("--wave") ? FftSource::kWave : FftSource::kMerida;
    if (!LoadFile(ctx, o->has("--wave") ? (*o)["--wave"] : (*o)["--mrd"]).loaded) return Finish(ctx, false);
  }
  FrequencyAnalysis fft(ctx.engine, ctx.state);
  FftGoResult go = fft.go(o->formula.value_or(""), {(*o)["--from"], (*o)["--to"], (*o)["--num"]}, source);
  if (go.numBox && *go.numBox != (*o)["--num"]) ReportBox("Text3", *go.numBox);
  if (go.end == FftEnd::kFault && !ctx.host.sawFault) ctx.host.showFault("Overflow");
  if (go.end != FftEnd::kDone) return Finish(ctx, false);

  const FftMode mode = continuous ? FftMode::kContinue : o->flag("--average") ? FftMode::kAverage : FftMode::kOneFrame;
  const FftShow what = show == "power" ? FftShow::kPower : show == "corr" ? FftShow::kCorrelation : FftShow::kFourier;
  if (show == "imaginary") fft.display(FftShow::kFourier, FftMode::kOneFrame);  // the second press shows them
  std::string out;
  bool first = true;
  auto frame = [&](const std::vector<ChartPoint>& points) {
    if (!first) out += '\n';
    first = false;
    for (const ChartPoint& p : points) out += PointLine(p);
  };
  FftDisplayResult r = fft.display(what, mode, frame);
  if (r.end != FftEnd::kDone) return Finish(ctx, false);
  if (mode != FftMode::kContinue) frame(r.points);
  std::cout << out;
  if (o->has("--matrix")) {
    std::string text;
    for (const std::vector<float>& row : fft.continuousMatrix()) {
      for (size_t p = 0; p < row.size(); ++p) text += (p ? " " : "") + PlainText(row[p]);
      text += "\n";
    }
    if (FileResult w = WriteFileAtomically(ctx.dir / (*o)["--matrix"], text); !w) {
      std::cerr << "merida-cli: cannot write " << (*o)["--matrix"] << ": " << w.error << '\n';
      return kFailed;
    }
  }
  return Finish(ctx, true);
}

}  // namespace merida::cli
