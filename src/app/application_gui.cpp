// Start-up runs in a fixed order: language, captions, engine, user functions.
#include "app/application_gui.h"

#include "app/tools_gui.h"
#include "main/settings.h"

namespace merida {

Application::Application(const std::filesystem::path& dir) {
  state_.DisplayLanguage = kEnglish;
  state_.DisplayLanguage = ReadDisplayLanguage(dir, state_.DisplayLanguage);
  translations_.apply();
  // The window exists before the user functions load so that their errors have an owner.
  main_ = std::make_unique<MainWindow>(engine_, state_);
  host_.setWindow(main_.get());
  host_.setEnglish([this] { return !state_.japanese(); });
  main_->keepHistoryIn(dir);
  engine_.ResetEngine();
  storeNotice_ = StoreLoadNotice(LoadUserFunctions(engine_, dir));
  RegisterTools(*main_, engine_, state_);
  RegisterHelp(*main_, engine_, state_, translations_);
}

Application::~Application() {
  // Windows go first: they refer to the engine and the state. A job waiting for its turn
  // must not start while the windows before it close.
  engine_.recordWriters().Clear();
  main_.reset();
}

}  // namespace merida
