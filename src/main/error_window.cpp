// The caption is set whenever the window is loaded, so a language switch reaches the next error.
// A dialog only for Esc and the default button: it is always shown without a modal loop.
#include "main/error_window.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>

namespace merida {

QPoint PlaceBeside(const QRect& anchor, const QSize& size, const QRect& screen) {
  constexpr int kGap = 8;
  const QPoint candidates[] = {
      {anchor.right() + 1 + kGap, anchor.top()},
      {anchor.left() - kGap - size.width(), anchor.top()},
      {anchor.left(), anchor.bottom() + 1 + kGap},
      {anchor.left(), anchor.top() - kGap - size.height()},
  };
  QPoint best;
  long long bestCover = -1;
  for (QPoint p : candidates) {
    // Kept on the screen; a window larger than the screen keeps its top left corner visible.
    p.setX(std::max(screen.left(), std::min(p.x(), screen.right() + 1 - size.width())));
    p.setY(std::max(screen.top(), std::min(p.y(), screen.bottom() + 1 - size.height())));
    QRect covered = QRect(p, size).intersected(anchor);
    long long cover = covered.isEmpty() ? 0 : 1LL * covered.width() * covered.height();
    if (cover == 0) return p;
    if (bestCover < 0 || cover < bestCover) {
      bestCover = cover;
      best = p;
    }
  }
  return best;
}

ErrorWindow::ErrorWindow(QWidget* parent) : QDialog(parent) {
  setupUi(this);
  connect(Command1, &QPushButton::clicked, this, &QDialog::accept);
}

void ErrorWindow::retranslate() { retranslateUi(this); }

void ErrorWindow::showMessage(const QString& message, QWidget* raisedBy, const QString& english) {
  if (!isVisible()) {
    retranslate();
    Label1->setText(message);
    EnglishLabel->setText(english);
    EnglishLabel->setVisible(!english.isEmpty());
    adjustSize();
    if (raisedBy) {
      QWidget* anchor = raisedBy->window();
      QScreen* screen = anchor->screen() ? anchor->screen() : QGuiApplication::primaryScreen();
      QRect frame = frameGeometry();
      // The frame around the window adds to its size; place the whole frame.
      QSize outer = frame.size().expandedTo(size());
      QPoint corner = PlaceBeside(anchor->frameGeometry(), outer, screen->availableGeometry());
      move(corner);
    }
    show();
    Command1->setFocus();
  }
  raise();
  activateWindow();
}

}  // namespace merida
