// The Japanese caption catalogues, installed while the display language is Japanese.
#pragma once

#include <QTranslator>

#include "main/app_state.h"

namespace merida {

class Translations {
 public:
  explicit Translations(AppState& state);
  ~Translations();
  Translations(const Translations&) = delete;
  Translations& operator=(const Translations&) = delete;

  // Installs the catalogues when DisplayLanguage is Japanese and removes them otherwise.
  // Windows already open keep their captions until they retranslate.
  void apply();

 private:
  AppState& state_;
  QTranslator captions_;  // our windows, embedded under :/i18n
  QTranslator platform_;  // Qt's own dialog buttons, when the system has them
  bool installed_ = false;
};

}  // namespace merida
