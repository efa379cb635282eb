// merida-cli wave, load and display: the WAVE maker, the Load window and the File Display.
#include <filesystem>
#include <iostream>

#include "cli/cli.h"
#include "cli/options.h"
#include "engine/number_text.h"
#include "signal/data_files.h"
#include "signal/wave_maker.h"

namespace merida::cli {
namespace {

constexpr const char* kWaveUsage = "wave [--mrd] --from T0 --to T1 [--name FILE] FORMULA";
constexpr const char* kLoadUsage = "load [--rows] FILE";
constexpr const char* kDisplayUsage = "display FILE";

}  // namespace

int RunWave(Context& ctx, const std::vector<std::string>& args) {
  auto o = ParseOptions(args, {"--from", "--to", "--name"}, {"--mrd"}, {"--from", "--to"});
  if (!o) return Usage(kWaveUsage);
  WaveBoxes boxes{(*o)["--from"], (*o)["--to"], o->has("--name") ? (*o)["--name"] : ""};
  WaveResult r = MakeWave(ctx.engine, *o->formula, boxes, o->flag("--mrd"), ctx.dir);
  // The window ends quietly on these; a script is told what happened.
  if (r.end == WaveEnd::kFault && !ctx.host.sawFault) ctx.host.showFault("Overflow");
  if (r.end == WaveEnd::kConstant) ctx.engine.EndSilently("nothing written: the formula has the same value at every sample");
  if (r.end == WaveEnd::kWriteError) {
    std::cerr << "merida-cli: cannot write " << r.fileName << ": " << r.writeError << '\n';
    return kFailed;
  }
  if (r.end == WaveEnd::kWritten) std::cout << r.fileName << '\n';
  return Finish(ctx, r.end == WaveEnd::kWritten);
}

int RunLoad(Context& ctx, const std::vector<std::string>& args) {
  auto o = ParseOptions(args, {}, {"--rows"}, {});
  if (!o) return Usage(kLoadUsage);
  LoadResult r = LoadFile(ctx, *o->formula);
  if (ctx.host.sawError) return Finish(ctx, false);
  if (!r.loaded) {
    if (ReaderFor(*o->formula) == DataFormat::kWave) std::cout << *r.boxes.text1 << '\n';
    return Finish(ctx, false);
  }
  std::string out;
  for (const auto* box : {&r.boxes.text1, &r.boxes.text2, &r.boxes.text3, &r.boxes.text4}) {
    out += box->value_or("") + "\n";
  }
  if (o->flag("--rows")) {
    const RecordFunctionTable& t = ctx.state.Records;
    for (int i = 1; i <= t.count; ++i) {
      for (int j = 0; j < t.dimension; ++j) out += (j ? " " : "") + PlainText(t.values[i][j]);
      out += '\n';
    }
  }
  std::cout << out;
  return Finish(ctx, true);
}

int RunDisplay(Context& ctx, const std::vector<std::string>& args) {
  auto o = ParseOptions(args, {}, {}, {});
  if (!o) return Usage(kDisplayUsage);
  LoadResult r = LoadFile(ctx, *o->formula);
  if (!r.loaded) return Finish(ctx, false);
  std::cout << FloatPointLines(FileDisplayPoints(ctx.state.Records));
  return Finish(ctx, true);
}

}  // namespace merida::cli
