// One line per button. A window is loaded afresh when opened and only raised while it is open.
#include "app/tools_gui.h"

#include <QPointer>
#include <memory>

#include "algebra/prime_window.h"
#include "algebra/root_window.h"
#include "algebra/simult_window.h"
#include "calculus/delay_window.h"
#include "calculus/diff_window.h"
#include "calculus/integration_window.h"
#include "contour/contour_window.h"
#include "graph/graph_tools_gui.h"
#include "graph/graph_window.h"
#include "graph/parameter_window.h"
#include "help/help_window.h"
#include "main/function_list_window.h"
#include "main/pad_window.h"
#include "signal/fft_window.h"
#include "signal/load_window.h"
#include "signal/wave_window.h"
#include "stats/stat_window.h"

namespace merida {
namespace {

// An opener for window type W built by `make`, which returns a new W parented to the main window.
template <class W, class Make>
std::function<void()> Opener(Make make) {
  auto window = std::make_shared<QPointer<W>>();
  return [window, make] {
    if (*window && (*window)->isVisible()) {
      (*window)->raise();
      (*window)->activateWindow();
      return;
    }
    // A window closed during its run is still inside its button handler: delete it later.
    if (*window) (*window)->deleteLater();
    *window = make();
    (*window)->show();
  };
}

}  // namespace

void RegisterTools(MainWindow& main, Engine& engine, AppState& state) {
  MainWindow* m = &main;
  Engine* e = &engine;
  AppState* s = &state;
  // While a parametric graph is set up, a chosen function goes to the parameter window's active box.
  auto graph = std::make_shared<QPointer<GraphWindow>>();
  auto parameterTarget = [graph](const QString& line) {
    if (!*graph) return false;
    (*graph)->parameterWindow()->insertFunction(line);
    return true;
  };
  auto openList = Opener<FunctionListWindow>([=] {
    auto* list = new FunctionListWindow(*e, *s, *m, m);
    list->setParameterTarget(parameterTarget);
    return list;
  });
  main.setToolOpener(3, openList);
  main.setToolOpener(2, [=] {
    *graph = OpenGraphWindow(m, *e, *s, [m] { return m->formulaText(); });
    (*graph)->parameterWindow()->setFunctionListOpener(openList);
  });
  main.setToolOpener(13, [=] { ShowSimultWindow(m, *e, *s, SimultWindow::kEquationsMode); });
  main.setToolOpener(16, [=] { ShowSimultWindow(m, *e, *s, SimultWindow::kMatrixMode); });
  main.setToolOpener(20, [=] { ShowPrimeWindow(m, *e, *s); });
  MainFormula mainFormula{[m] { return m->formulaText(); }, [m](const QString& a) { m->setAnswerText(a); }};
  main.setToolOpener(7, Opener<IntegrationWindow>([=] { return new IntegrationWindow(*e, *s, mainFormula, m); }));
  main.setToolOpener(14, Opener<DelayWindow>([=] { return new DelayWindow(*e, *s, [m] { return m->formulaText(); }, m); }));
  main.setToolOpener(9, Opener<DiffWindow>([=] { return new DiffWindow(*e, *s, [m] { return m->formulaText(); }, m); }));
  main.setToolOpener(10, Opener<IntersectionWindow>([=] {
    return new IntersectionWindow(
        *e, *s, [m] { return m->formulaText(); }, [m](const QString& text) { m->setFormulaText(text); }, m);
  }));
  main.setToolOpener(11, Opener<ContourWindow>([=] { return new ContourWindow(*e, *s, [m] { return m->formulaText(); }, m); }));
  main.setToolOpener(12, Opener<PadWindow>([=] { return new PadWindow(*e, *s, *m, m); }));
  main.setToolOpener(15, Opener<WaveWindow>([=] { return new WaveWindow(*e, *s, [m] { return m->formulaText(); }, m); }));
  main.setToolOpener(17, Opener<FftWindow>([=] { return new FftWindow(*e, *s, [m] { return m->formulaText(); }, m); }));
  main.setToolOpener(18, Opener<LoadWindow>([=] { return new LoadWindow(*e, *s, m); }));
  main.setToolOpener(19, Opener<StatWindow>([=] { return new StatWindow(*e, *s, m); }));
}

void RegisterHelp(MainWindow& main, Engine& engine, AppState& state, Translations& translations) {
  MainWindow* m = &main;
  Engine* e = &engine;
  AppState* s = &state;
  Translations* t = &translations;
  main.setToolOpener(8, Opener<HelpWindow>([=] { return new HelpWindow(*e, *s, *t, *m, m); }));
}

}  // namespace merida
