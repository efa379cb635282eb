// Translators are loaded once and only installed or removed on a language switch.
#include "main/translations_gui.h"

#include <QCoreApplication>
#include <QLibraryInfo>

namespace merida {

Translations::Translations(AppState& state) : state_(state) {
  // An installed catalogue can be updated without rebuilding; the embedded one always works.
  QString installed = QCoreApplication::applicationDirPath() + QStringLiteral("/../share/merida/translations");
  if (!captions_.load(QStringLiteral("merida_ja.qm"), installed)) {
    [[maybe_unused]] bool loaded = captions_.load(QStringLiteral(":/i18n/merida_ja.qm"));
    Q_ASSERT(loaded);
  }
  // Missing system catalogues only leave "Yes"/"Cancel" in English.
  (void)platform_.load(QStringLiteral("qtbase_ja"), QLibraryInfo::path(QLibraryInfo::TranslationsPath));
}

Translations::~Translations() {
  if (installed_) {
    QCoreApplication::removeTranslator(&captions_);
    QCoreApplication::removeTranslator(&platform_);
  }
}

void Translations::apply() {
  bool wanted = state_.japanese();
  if (wanted == installed_) return;
  if (wanted) {
    QCoreApplication::installTranslator(&platform_);
    QCoreApplication::installTranslator(&captions_);
  } else {
    QCoreApplication::removeTranslator(&captions_);
    QCoreApplication::removeTranslator(&platform_);
  }
  installed_ = wanted;
}

}  // namespace merida
