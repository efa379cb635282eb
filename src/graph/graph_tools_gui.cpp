// Opening the graph subsystem's windows from the main window.
#include "graph/graph_tools_gui.h"

#include "graph/color_window.h"
#include "graph/graph_plot.h"
#include "graph/graph_window.h"
#include "stats/stat_data_window.h"

namespace merida {
namespace {

template <typename W>
W* Existing(QWidget* owner) {
  return owner ? owner->findChild<W*>(QString(), Qt::FindDirectChildrenOnly) : nullptr;
}

void Raise(QWidget* w) {
  w->show();
  w->raise();
  w->activateWindow();
}

}  // namespace

GraphWindow* OpenGraphWindow(QWidget* owner, Engine& engine, AppState& state,
                             std::function<QString()> formula) {
  GraphWindow* w = Existing<GraphWindow>(owner);
  // A plot running in that window keeps its flags until it ends.
  if (w && w->plotting()) {
    Raise(w);
    return w;
  }
  PrepareGraphDefaults(engine, state);
  if (!w) w = new GraphWindow(engine, state, std::move(formula), owner);
  w->prepare();
  Raise(w);
  return w;
}

StatDataWindow* OpenStatDataWindow(QWidget* owner, Engine& engine, AppState& state) {
  StatDataWindow* w = Existing<StatDataWindow>(owner);
  if (!w) w = new StatDataWindow(engine, state, owner);
  w->load();
  Raise(w);
  return w;
}

ColorWindow* OpenColorWindow(QWidget* owner, Engine& engine, AppState& state) {
  ColorWindow* w = Existing<ColorWindow>(owner);
  if (!w) w = new ColorWindow(engine, state, owner);
  Raise(w);
  return w;
}

}  // namespace merida
