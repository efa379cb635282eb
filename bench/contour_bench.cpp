// Calc of a 101 x 101 grid and Hide of a 100 x 100 surface, each beside a hand-written loop doing
// the same work, so that the ratio of the two is read off one run.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "contour/contour_grid.h"
#include "contour/contour_plot.h"
#include "contour/contour_scene.h"
#include "engine/engine.h"

#ifdef MERIDA_BENCH_PAINT
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QPolygonF>

#include "contour/contour_paint.h"
#endif

namespace {

using namespace merida;

// Twelve built-ins, all defined on 0..1 by 0..1.
constexpr const char* kFormula =
    "sin(x)+cos(y)+tan(x/9)+exp(-y)+ln(x+3)+log(y+3)+sqr(x+2)+abs(x-y)+sinh(x/9)+cosh(y/9)+tanh(x)+atan(y)";
const GridBoxes kBoxes{"0", "1", "100", "0", "1", "100"};

double HandFormula(double x, double y) {
  return std::sin(x) + std::cos(y) + std::tan(x / 9) + std::exp(-y) + std::log(x + 3) + std::log10(y + 3) +
         std::sqrt(x + 2) + std::fabs(x - y) + std::sinh(x / 9) + std::cosh(y / 9) + std::tanh(x) + std::atan(y);
}

void BM_ContourCalc(benchmark::State& st) {
  SilentHost host;
  Engine engine(host);
  engine.ResetEngine();
  for (auto _ : st) {
    GridResult r = EvaluateGrid(engine, kFormula, kBoxes, false);
    if (r.end != GridEnd::kCompleted) st.SkipWithError("grid did not complete");
    benchmark::DoNotOptimize(r.grid.z.data());
  }
  st.SetItemsProcessed(st.iterations() * 101 * 101);
}
BENCHMARK(BM_ContourCalc)->Unit(benchmark::kMillisecond);

// The same grid as a plain loop: the floor Calc is measured against.
void BM_ContourCalcHandWritten(benchmark::State& st) {
  std::vector<double> z(101 * 101);
  for (auto _ : st) {
    for (int i = 0; i <= 100; ++i) {
      const double y = i * 0.01;
      for (int j = 0; j <= 100; ++j) z[i * 101 + j] = HandFormula(j * 0.01, y);
    }
    benchmark::DoNotOptimize(z.data());
  }
  st.SetItemsProcessed(st.iterations() * 101 * 101);
}
BENCHMARK(BM_ContourCalcHandWritten)->Unit(benchmark::kMillisecond);

#ifdef MERIDA_BENCH_PAINT
ContourGrid Surface() {
  SilentHost host;
  Engine engine(host);
  engine.ResetEngine();
  return EvaluateGrid(engine, "sin(x*3)*cos(y*3)", kBoxes, false).grid;
}

// Hide: the scene built back to front with its colours, then painted into a 640 x 640 image.
void BM_HideRender(benchmark::State& st) {
  const ContourGrid g = Surface();
  DrawRequest request;
  request.drawing = MapDrawing::kHide;
  request.colors.Green = -1;
  request.colors.MultiColor = 1;
  for (auto _ : st) {
    MapScene scene;
    BuildMap(g, request, nullptr, scene);
    QImage image = RenderMap(scene, QSize(640, 640), MapStyle{});
    benchmark::DoNotOptimize(image.constBits());
  }
}
BENCHMARK(BM_HideRender)->Unit(benchmark::kMillisecond);

// The same cells projected and filled straight onto a painter, without the scene in between.
void BM_HideRenderHandWritten(benchmark::State& st) {
  const ContourGrid g = Surface();
  const double ca = std::cos(20 * M_PI / 180), sa = std::sin(20 * M_PI / 180);
  const double cb = std::cos(30 * M_PI / 180), sb = std::sin(30 * M_PI / 180);
  const double W = ca + cb, H = sa + sb + 1, k = 640 / (W + 1), kh = 640 / (H + 1);
  const double sz = 1 / (g.zMax - g.zMin);
  auto at = [&](int i, int j) {
    const double X = ca * 0.01 * j - cb * 0.01 * i, Y = sa * 0.01 * j + sb * 0.01 * i + (g.at(i, j) - g.zMin) * sz;
    return QPointF((W / 2 + X + 0.5) * k, (H - Y + 0.5) * kh);
  };
  for (auto _ : st) {
    QImage image(640, 640, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.fillRect(image.rect(), Qt::white);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(Qt::black, 1));
    for (int i = g.ny; i >= 1; --i) {
      for (int j = g.nx - 1; j >= 0; --j) {
        const double h = (g.at(i, j) + g.at(i, j + 1) + g.at(i - 1, j + 1) + g.at(i - 1, j)) / 4;
        const Rgb c = SchemeColor(HeightByte(h, g.zMin, g.zMax), ColorScheme{-1, -1, -1, -1, 1});
        painter.setBrush(QColor(c.r, c.g, c.b));
        const QPointF corners[] = {at(i, j), at(i, j + 1), at(i - 1, j + 1), at(i - 1, j)};
        painter.drawPolygon(corners, 4);
      }
    }
    painter.end();
    benchmark::DoNotOptimize(image.constBits());
  }
}
BENCHMARK(BM_HideRenderHandWritten)->Unit(benchmark::kMillisecond);
#endif

}  // namespace

#ifdef MERIDA_BENCH_PAINT
int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QGuiApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
#else
BENCHMARK_MAIN();
#endif
