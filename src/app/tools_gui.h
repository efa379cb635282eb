// The table that connects the main window's buttons to the windows they open.
#pragma once

#include "engine/engine.h"
#include "main/app_state.h"
#include "main/main_window.h"
#include "main/translations_gui.h"

namespace merida {

// Gives every button whose window exists its opener.
void RegisterTools(MainWindow& main, Engine& engine, AppState& state);

// The Help button: its window also switches the display language.
void RegisterHelp(MainWindow& main, Engine& engine, AppState& state, Translations& translations);

}  // namespace merida
