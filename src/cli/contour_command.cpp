// merida-cli contour: Calc's Label5, Plot's segments, or a drawing of the Contour Map written to a file.
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "cli/cli.h"
#include "cli/options.h"
#include "contour/contour_plot.h"
#include "contour/contour_scene.h"
#include "engine/number_text.h"

#ifdef MERIDA_CLI_DRAWS
#include <QGuiApplication>

#include "contour/contour_paint.h"
#endif

namespace merida::cli {
namespace {

constexpr const char* kContourUsage =
    "contour --x A,B,N --y C,D,M [--levels K0,K1,D] FORMULA\n"
    "  merida-cli contour --x A,B,N --y C,D,M --draw plot|cube|hide [--levels K0,K1,D] "
    "[--color red|green|skyblue|yellow|multi] [--angles A,B] --out FILE.png|FILE.svg FORMULA";

// "A,B,N" into its parts; nullopt unless there are exactly `count`.
std::optional<std::vector<std::string>> Split(const std::string& text, size_t count) {
  std::vector<std::string> parts(1);
  for (char c : text) {
    if (c == ',') {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  if (parts.size() != count) return std::nullopt;
  return parts;
}

std::optional<ColorScheme> Scheme(const std::string& name) {
  ColorScheme c;
  c.Green = -1;
  if (name == "red") {
    c.Red = 1;
  } else if (name == "green") {
    c.Green = 1;
  } else if (name == "skyblue") {
    c.SkyBlue = 1;
  } else if (name == "yellow") {
    c.Yellow = 1;
  } else if (name == "multi") {
    c.MultiColor = 1;
  } else {
    return std::nullopt;
  }
  return c;
}

std::optional<MapDrawing> Drawing(const std::string& name) {
  if (name == "plot") return MapDrawing::kPlot;
  if (name == "cube") return MapDrawing::kCube;
  if (name == "hide") return MapDrawing::kHide;
  return std::nullopt;
}

bool IsImageName(const std::string& path) {
  auto endsWith = [&path](const std::string& tail) {
    return path.size() > tail.size() && path.compare(path.size() - tail.size(), tail.size(), tail) == 0;
  };
  return endsWith(".png") || endsWith(".svg");
}

int WriteMap(const MapScene& scene, const std::string& path) {
#ifdef MERIDA_CLI_DRAWS
  // Fonts need an application object; the offscreen platform needs no display.
  static int argc = 3;
  static char name[] = "merida-cli", option[] = "-platform", platform[] = "offscreen";
  static char* argv[] = {name, option, platform, nullptr};
  qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
  QGuiApplication app(argc, argv);
  const FileResult r = SaveMap(scene, QString::fromStdString(path), QSize(640, 640), MapStyle{});
  if (r) return kOk;
  std::cerr << "merida-cli: cannot write " << path << ": " << r.error << '\n';
  return kFailed;
#else
  (void)scene;
  std::cerr << "merida-cli: this build draws no images (" << path << ")\n";
  return kUsage;
#endif
}

}  // namespace

int RunContour(Context& ctx, const std::vector<std::string>& args) {
  auto o = ParseOptions(args, {"--x", "--y", "--levels", "--draw", "--color", "--angles", "--out"}, {},
                        {"--x", "--y"});
  if (!o) return Usage(kContourUsage);
  auto x = Split((*o)["--x"], 3), y = Split((*o)["--y"], 3);
  std::optional<std::vector<std::string>> levelParts;
  if (o->has("--levels")) levelParts = Split((*o)["--levels"], 3);
  const bool drawing = o->has("--draw");
  std::optional<MapDrawing> mode = drawing ? Drawing((*o)["--draw"]) : std::nullopt;
  std::optional<ColorScheme> scheme = o->has("--color") ? Scheme((*o)["--color"]) : ColorScheme{};
  std::optional<std::vector<std::string>> angleParts;
  if (o->has("--angles")) angleParts = Split((*o)["--angles"], 2);
  std::optional<ViewAngles> angles = ViewAngles{};
  if (angleParts) angles = DecideAngles((*angleParts)[0], (*angleParts)[1]);
  if (!x || !y || (o->has("--levels") && !levelParts) || drawing != o->has("--out") || (drawing && !mode) ||
      !scheme || (o->has("--angles") && !angleParts) || !angles ||
      (!drawing && (o->has("--color") || o->has("--angles"))) || (drawing && !IsImageName((*o)["--out"]))) {
    return Usage(kContourUsage);
  }

  GridResult calc = EvaluateGrid(ctx.engine, *o->formula, GridBoxes{(*x)[0], (*x)[1], (*x)[2], (*y)[0], (*y)[1], (*y)[2]},
                                 false);
  if (calc.xDivisionsBox) ReportBox("Text3", *calc.xDivisionsBox);
  if (calc.yDivisionsBox) ReportBox("Text6", *calc.yDivisionsBox);
  if (calc.end == GridEnd::kFault && !ctx.host.sawFault) ctx.host.showFault("Overflow");
  if (calc.end != GridEnd::kCompleted) return Finish(ctx, false);
  const ContourGrid& grid = calc.grid;
  std::cout << MinMaxText(grid) << '\n';
  if (!levelParts && !drawing) return Finish(ctx, true);

  // The angle boxes show what Decide accepted.
  if (angleParts) {
    if (PlainText(angles->x) != (*angleParts)[0]) ReportBox("Text1", PlainText(angles->x));
    if (PlainText(angles->y) != (*angleParts)[1]) ReportBox("Text2", PlainText(angles->y));
  }
  DrawRequest request{mode.value_or(MapDrawing::kPlot), o->has("--color"), *scheme, *angles, Levels{}};
  if (request.drawing == MapDrawing::kPlot) {
    LevelBoxes boxes = levelParts ? LevelBoxes{(*levelParts)[0], (*levelParts)[1], (*levelParts)[2]}
                                  : OpeningLevelBoxes();
    LevelsResult levels = ReadLevels(ctx.engine, boxes);
    if (levels.stepBox) ReportBox("Text9", *levels.stepBox);
    if (!levels.levels) return Finish(ctx, false);
    request.levels = *levels.levels;
    if (!drawing) {
      std::vector<Segment> segments;
      ContourLines(grid, request.levels, nullptr, segments);
      std::string out;
      out.reserve(segments.size() * 64);
      for (const Segment& s : segments) {
        out += PlainText(s.x1) + ' ' + PlainText(s.y1) + ' ' + PlainText(s.x2) + ' ' + PlainText(s.y2) + '\n';
      }
      std::cout << out;
      return Finish(ctx, true);
    }
  }
  MapScene scene;
  BuildMap(grid, request, nullptr, scene);
  std::cout.flush();
  const int written = WriteMap(scene, (*o)["--out"]);
  return written == kOk ? Finish(ctx, true) : written;
}

}  // namespace merida::cli
