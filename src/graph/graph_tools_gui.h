// Opening the graph subsystem's windows from the main window (one instance each, owned by it).
#pragma once

#include <QString>
#include <QWidget>
#include <functional>

#include "engine/engine.h"
#include "main/app_state.h"

namespace merida {

class ColorWindow;
class GraphWindow;
class StatDataWindow;

// The main window's Graph button: the graph defaults, then the Graph window shown.
// `formula` reads the main window's formula box.
GraphWindow* OpenGraphWindow(QWidget* owner, Engine& engine, AppState& state,
                             std::function<QString()> formula);

// The Statistical Data window on the record function table's current rows.
StatDataWindow* OpenStatDataWindow(QWidget* owner, Engine& engine, AppState& state);

// The Color Situation window (the contour window's Color button).
ColorWindow* OpenColorWindow(QWidget* owner, Engine& engine, AppState& state);

}  // namespace merida
