// The desktop program as one object: it owns the engine, the shared state and the main window.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "engine/engine.h"
#include "main/app_state.h"
#include "main/gui_host_gui.h"
#include "main/main_window.h"
#include "main/translations_gui.h"

namespace merida {

class Application {
 public:
  // Starts up from the settings and user-function files of `dir`; the main window is not shown.
  explicit Application(const std::filesystem::path& dir);
  ~Application();
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  AppState& state() { return state_; }
  GuiHost& host() { return host_; }
  Engine& engine() { return engine_; }
  Translations& translations() { return translations_; }
  MainWindow& mainWindow() { return *main_; }
  // What loading MERIDA.DAT left unsaid beyond the error shown (StoreLoadNotice); empty mostly.
  const std::string& storeNotice() const { return storeNotice_; }

 private:
  AppState state_;
  GuiHost host_;
  Engine engine_{host_};
  Translations translations_{state_};
  std::unique_ptr<MainWindow> main_;
  std::string storeNotice_;
};

}  // namespace merida
