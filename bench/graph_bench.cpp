// A 6000-point graph: compile once, evaluate every point, record, and (with Qt) draw the chart.
#include <benchmark/benchmark.h>

#include "engine/engine.h"
#include "graph/graph_plot.h"

#ifdef MERIDA_BENCH_CHART
#include <QApplication>
#include <QPixmap>

#include "controls/chart_widget.h"
#endif

namespace {

using namespace merida;

// Thirteen built-ins, all defined on the whole range.
constexpr const char* kFormula =
    "sin(x)+cos(2*x)+tan(x/40)+exp(-x)+ln(x+1)+log(x+2)+sqr(x)+abs(x-5)+sinh(x/9)+cosh(x/9)+tanh(x)+atan(x)+"
    "erf(x/9)";

PlotResult Plot(Engine& engine, AppState& state) {
  PrepareGraphDefaults(engine, state);
  return PlotGo(engine, state, kFormula, GraphBoxes{"0", "10", "6000"});
}

void BM_GraphPlot6000(benchmark::State& st) {
  SilentHost host;
  Engine engine(host);
  engine.ResetEngine();
  AppState state;
  for (auto _ : st) {
    PlotResult r = Plot(engine, state);
    if (r.end != PlotEnd::kCompleted || r.points.size() != 6000) st.SkipWithError("plot did not complete");
    benchmark::DoNotOptimize(r.points.data());
  }
  st.SetItemsProcessed(st.iterations() * 6000);
}
BENCHMARK(BM_GraphPlot6000)->Unit(benchmark::kMillisecond);

#ifdef MERIDA_BENCH_CHART
// The same plot handed to the chart, drawn and painted into an image as the screen would be.
void BM_GraphPlotAndDraw6000(benchmark::State& st) {
  SilentHost host;
  Engine engine(host);
  engine.ResetEngine();
  AppState state;
  ChartWidget chart;
  chart.resize(640, 480);
  for (auto _ : st) {
    PlotResult r = Plot(engine, state);
    QList<QPointF> points;
    points.reserve(static_cast<qsizetype>(r.points.size()));
    for (const ChartPoint& p : r.points) points.append(QPointF(p.x, p.y));
    chart.setPoints(1, std::move(points));
    chart.draw();
    QPixmap image = chart.grab();
    benchmark::DoNotOptimize(image.cacheKey());
  }
}
BENCHMARK(BM_GraphPlotAndDraw6000)->Unit(benchmark::kMillisecond);
#endif

}  // namespace

#ifdef MERIDA_BENCH_CHART
int main(int argc, char** argv) {
  if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
#else
BENCHMARK_MAIN();
#endif
