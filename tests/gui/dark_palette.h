// A dark desktop theme's palette, as a platform theme would hand it to the program.
#pragma once

#include <QPalette>

namespace merida::test {

inline QPalette DarkPalette() {
  QPalette p;
  const QColor window(53, 53, 53), base(35, 35, 35), text(230, 230, 230);
  p.setColor(QPalette::Window, window);
  p.setColor(QPalette::WindowText, text);
  p.setColor(QPalette::Base, base);
  p.setColor(QPalette::AlternateBase, window);
  p.setColor(QPalette::Text, text);
  p.setColor(QPalette::Button, window);
  p.setColor(QPalette::ButtonText, text);
  p.setColor(QPalette::Highlight, QColor(42, 130, 218));
  p.setColor(QPalette::HighlightedText, Qt::black);
  p.setColor(QPalette::Mid, QColor(80, 80, 80));
  return p;
}

}  // namespace merida::test
