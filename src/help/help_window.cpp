// The lists are fixed texts chosen by DisplayLanguage; the captions come through tr().
#include "help/help_window.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QFontDatabase>
#include <QMessageBox>
#include <QUrl>
#include <algorithm>
#include <filesystem>
#include <span>

#include "help/help_lists.h"
#include "main/main_window.h"
#include "main/settings.h"
#include "main/translations_gui.h"

namespace merida {
namespace {

// The lines line up in columns only in a fixed-pitch font whose half-width katakana are half
// as wide as kanji.
QFont ListFont() {
  QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  font.setFamilies({QStringLiteral("Noto Sans Mono CJK JP"), font.family()});
  return font;
}

void Fill(QListWidget* list, std::span<const std::string_view> lines) {
  list->clear();
  for (std::string_view line : lines) {
    list->addItem(QString::fromUtf8(line.data(), static_cast<qsizetype>(line.size())));
  }
}

}  // namespace

HelpWindow::HelpWindow(Engine& engine, AppState& state, Translations& translations, MainWindow& main,
                       QWidget* parent)
    : ToolWindow(engine, state, parent), translations_(translations), main_(main) {
  setupUi(this);
  QFont font = ListFont();
  List1->setFont(font);
  List2->setFont(font);

  // Both lists show every line without scrolling, in either language.
  QFontMetrics metrics(font);
  auto widest = [&metrics](std::span<const std::string_view> english,
                           std::span<const std::string_view> japanese) {
    int width = 0;
    for (auto lines : {english, japanese}) {
      for (std::string_view line : lines) {
        width = std::max(width, metrics.horizontalAdvance(
                                    QString::fromUtf8(line.data(), static_cast<qsizetype>(line.size()))));
      }
    }
    return width;
  };
  retranslate();  // fills the lists, whose rows give the height
  auto fit = [&metrics](QListWidget* list, int width, int lines) {
    int frame = 2 * list->frameWidth();
    int row = std::max(list->sizeHintForRow(0), metrics.lineSpacing());
    list->setFixedSize(width + frame + 2 * metrics.averageCharWidth(), lines * row + frame + 4);
  };
  fit(List1, widest(OperatorLines(kEnglish), OperatorLines(kJapanese)), 6);
  fit(List2, widest(FunctionLines(kEnglish), FunctionLines(kJapanese)), 26);

  connect(Command3, &QPushButton::clicked, this, &HelpWindow::showVersion);
  connect(Command4, &QPushButton::clicked, this, &HelpWindow::switchLanguage);
  connect(Command5, &QPushButton::clicked, this, &HelpWindow::openManual);
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);
}

void HelpWindow::retranslate() {
  retranslateUi(this);
  Fill(List1, OperatorLines(state_.DisplayLanguage));
  Fill(List2, FunctionLines(state_.DisplayLanguage));
}

void HelpWindow::showVersion() {
  QMessageBox::information(this, tr("Version Number"), tr("Merida Calculator  Ver.7.6"), QMessageBox::Ok);
}

void HelpWindow::switchLanguage() {
  auto reply = QMessageBox::question(this, tr("English To Japanese"), tr("Japanese Transfer?"),
                                     QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
  if (reply == QMessageBox::Yes) {
    state_.DisplayLanguage = japanese() ? kEnglish : kJapanese;
    translations_.apply();
    main_.retranslate();
    retranslate();
  }
  // Written on No as well; a file that cannot be written is no reason to bother the user.
  std::error_code error;
  std::filesystem::path dir = std::filesystem::current_path(error);
  if (!error) WriteDisplayLanguage(dir, state_.DisplayLanguage);
}

void HelpWindow::openManual() {
  // Beside the program in a build, in share/merida once installed.
  const QDir programDir(QCoreApplication::applicationDirPath());
  QString path = programDir.filePath(QStringLiteral("Merida.htm"));
  if (!QFileInfo::exists(path)) path = programDir.filePath(QStringLiteral("../share/merida/Merida.htm"));
  QDesktopServices::openUrl(QUrl::fromLocalFile(QDir::cleanPath(path)));
}

}  // namespace merida
