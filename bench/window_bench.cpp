// A long run pressed in its window (offscreen) from Go to the result shown, against the same
// run by merida-cli as a separate process, in the same iteration. The goal is a ratio of at
// most 1.2: the window adds a job, a progress bar and a busy cursor, nothing per point.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <chrono>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>

#include "app/application_gui.h"
#include "calculus/integration_window.h"
#include "signal/wave_window.h"

namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::time_point from) { return std::chrono::duration<double>(Clock::now() - from).count(); }

// The program in a directory of its own, as a user starts it.
struct Program {
  QTemporaryDir dir;
  std::unique_ptr<merida::Application> app;
  Program() {
    QDir::setCurrent(dir.path());
    app = std::make_unique<merida::Application>(dir.path().toStdString());
    app->mainWindow().show();
  }
  void press(const char* button) { app->mainWindow().findChild<QPushButton*>(button)->click(); }
  template <class W>
  W* window(const char* name) {
    for (QWidget* w : QApplication::topLevelWidgets()) {
      if (w->objectName() == name && w->isVisible()) return qobject_cast<W*>(w);
    }
    return nullptr;
  }
};

// Presses `go` and lets the event loop run until the window's job has ended.
template <class W>
double RunInWindow(W* w, QPushButton* go) {
  const auto t0 = Clock::now();
  go->click();
  while (w->running()) QTest::qWait(1);
  return Seconds(t0);
}

double RunCli(const std::string& arguments) {
  const auto t0 = Clock::now();
  const std::string command = std::string(MERIDA_CLI) + " " + arguments + " >/dev/null";
  if (std::system(command.c_str()) != 0) return -1;
  return Seconds(t0);
}

void Report(benchmark::State& st, double window, double cli) {
  const double n = static_cast<double>(st.iterations());
  st.counters["window_s"] = window / n;
  st.counters["cli_s"] = cli / n;
  st.counters["window/cli"] = cli > 0 ? window / cli : 0;
}

constexpr const char* kSum = "sgm(sin(k*x)/k,1,60000,k)";

void BM_WaveOfASum60000(benchmark::State& st) {
  Program p;
  p.app->mainWindow().setFormulaText(kSum);
  p.press("Command15");
  auto* w = p.window<merida::WaveWindow>("WaveWindow");
  if (!w) return st.SkipWithError("no WAVE window");
  w->Text1->setText("0");
  w->Text2->setText("0.2");
  w->Text3->setText("window.wav");
  double window = 0, cli = 0;
  for (auto _ : st) {
    window += RunInWindow(w, w->Command1);
    const double c = RunCli("wave --from 0 --to 0.2 --name cli.wav '" + std::string(kSum) + "'");
    if (c < 0) return st.SkipWithError("merida-cli failed");
    cli += c;
  }
  Report(st, window, cli);
}
BENCHMARK(BM_WaveOfASum60000)->Unit(benchmark::kSecond)->Iterations(3)->UseRealTime();

void BM_DoubleIntegral10000x10000(benchmark::State& st) {
  Program p;
  p.app->mainWindow().setFormulaText("x*y+1");
  p.press("Command7");
  auto* single = p.window<merida::IntegrationWindow>("IntegrationWindow");
  if (!single) return st.SkipWithError("no Integration window");
  single->Command3->click();
  merida::DoubleIntegrationWindow* w = single->doubleWindow();
  if (!w) return st.SkipWithError("no Double Integration window");
  for (QLineEdit* box : {w->Text1, w->Text4}) box->setText("0");
  for (QLineEdit* box : {w->Text2, w->Text5}) box->setText("1");
  for (QLineEdit* box : {w->Text3, w->Text6}) box->setText("10000");
  double window = 0, cli = 0;
  for (auto _ : st) {
    window += RunInWindow(w, w->Command1);
    const double c = RunCli("dinteg --min 0 --max 1 --num 10000 --min2 0 --max2 1 --num2 10000 'x*y+1'");
    if (c < 0) return st.SkipWithError("merida-cli failed");
    cli += c;
  }
  Report(st, window, cli);
}
BENCHMARK(BM_DoubleIntegral10000x10000)->Unit(benchmark::kSecond)->Iterations(3)->UseRealTime();

}  // namespace

int main(int argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication qt(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
