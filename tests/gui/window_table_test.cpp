// Every window the program opens, in both languages: its captions against the catalogue, the
// Tab ring, Return and Escape, room for every caption at the smallest size, and a language
// switch while it is open. With MERIDA_SCREENSHOT_DIR set, each window is also saved there as a
// PNG in a light and a dark theme, for a person to look at.
#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QRadioButton>
#include <QScreen>
#include <QStyleOptionButton>
#include <QStyleOptionGroupBox>
#include <QTranslator>
#include <QXmlStreamReader>
#include <map>
#include <set>

#include "controls/grid_widget.h"
#include "graph/negative_function_window.h"
#include "gui_fixture.h"

namespace merida::test {
namespace {

// A caption the form sets: its control ("" for the window's title) and English source.
struct FormCaption {
  QString control, source, disambiguation;
  bool translated;
};

std::vector<FormCaption> ReadForm(const char* ui, QString* context) {
  QFile file(QStringLiteral(MERIDA_TEST_DATA "/../../src/") + QString::fromLatin1(ui));
  EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << ui;
  static const QStringList kCaptioned = {"QLabel", "QPushButton", "QGroupBox", "QCheckBox", "QRadioButton"};
  std::vector<FormCaption> out;
  std::vector<std::pair<QString, QString>> widgets;  // class and name of the open <widget>s
  QString property;
  QXmlStreamReader xml(&file);
  while (!xml.atEnd()) {
    xml.readNext();
    if (xml.isEndElement() && xml.name() == u"widget") widgets.pop_back();
    if (!xml.isStartElement()) continue;
    const QXmlStreamAttributes a = xml.attributes();
    if (xml.name() == u"class" && context->isEmpty()) *context = xml.readElementText();
    if (xml.name() == u"widget") widgets.emplace_back(a.value("class").toString(), a.value("name").toString());
    if (xml.name() == u"property") property = a.value("name").toString();
    if (xml.name() != u"string" || widgets.empty()) continue;
    const bool top = widgets.size() == 1;
    const bool caption = top ? property == "windowTitle"
                             : kCaptioned.contains(widgets.back().first) && (property == "text" || property == "title");
    if (caption) {
      out.push_back({top ? QString() : widgets.back().second, xml.readElementText(), a.value("comment").toString(),
                     a.value("notr") != u"true"});
    }
  }
  return out;
}

QString TextOf(QWidget* window, const QString& name) {
  if (name.isEmpty()) return window->windowTitle();
  QWidget* c = GuiTest::child<QWidget>(window, name.toLatin1().constData());
  if (auto* g = qobject_cast<QGroupBox*>(c)) return g->title();
  if (auto* b = qobject_cast<QAbstractButton*>(c)) return b->text();
  if (auto* l = qobject_cast<QLabel*>(c)) return l->text();
  return QStringLiteral("<no control %1>").arg(name);
}

std::string NameOf(const QWidget* c) {
  return (c->objectName().isEmpty() ? QString::fromLatin1(c->metaObject()->className()) : c->objectName())
      .toStdString();
}

// Room for the caption: a button's with half a character clear on each side, a label's
// whole (wrapped where it wraps), a group box's title inside the box.
::testing::AssertionResult HasRoom(QWidget* c) {
  const QFontMetrics fm = c->fontMetrics();
  QString text;
  QSize need, room;
  if (auto* b = qobject_cast<QAbstractButton*>(c); b && !b->text().isEmpty()) {
    QStyleOptionButton o;
    o.initFrom(b);
    o.text = text = b->text();
    auto* push = qobject_cast<QPushButton*>(b);
    if (push && push->autoDefault()) o.features |= QStyleOptionButton::AutoDefaultButton;
    const QStyle::SubElement e = push                             ? QStyle::SE_PushButtonContents
                                 : qobject_cast<QRadioButton*>(b) ? QStyle::SE_RadioButtonContents
                                                                  : QStyle::SE_CheckBoxContents;
    room = b->style()->subElementRect(e, &o, b).size();
    need = {fm.horizontalAdvance(text) + (push ? fm.averageCharWidth() : 0), 0};
  } else if (auto* l = qobject_cast<QLabel*>(c); l && !l->text().isEmpty()) {
    text = l->text();
    room = l->contentsRect().marginsRemoved(QMargins(l->margin(), l->margin(), l->margin(), l->margin())).size();
    const int wrap = l->wordWrap() ? Qt::TextWordWrap : 0;
    need = fm.boundingRect(QRect(0, 0, l->wordWrap() ? room.width() : 100000, 100000), wrap, text).size();
  } else if (auto* g = qobject_cast<QGroupBox*>(c); g && !g->title().isEmpty()) {
    QStyleOptionGroupBox o;
    o.initFrom(g);
    o.text = text = g->title();
    o.subControls = QStyle::SC_GroupBoxFrame | QStyle::SC_GroupBoxLabel;
    room = {g->width() - g->style()->subControlRect(QStyle::CC_GroupBox, &o, QStyle::SC_GroupBoxLabel, g).left(), 0};
    need = {fm.horizontalAdvance(text), 0};
  }
  if (need.width() <= room.width() && need.height() <= room.height()) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << NameOf(c) << " \"" << text.toStdString() << "\" needs " << need.width() << "x"
                                       << need.height() << " px and has " << room.width() << "x" << room.height();
}

bool InScrollArea(const QWidget* c, const QWidget* window) {
  for (const QWidget* p = c->parentWidget(); p && p != window; p = p->parentWidget()) {
    if (qobject_cast<const QAbstractScrollArea*>(p)) return true;
  }
  return false;
}

using Step = std::function<void(GuiTest&, QWidget*)>;
using Seen = std::function<bool(GuiTest&, QWidget*)>;


struct WindowRow {
  const char* name;      // the window's object name, or MatrixWindow
  const char* form;      // its form under src/
  const char* firstBox;  // where the cursor is when it opens; nullptr: no box
  const char* enterIn;   // where Return is pressed; "": the focused control; nullptr: no main action
  Step prepare;          // fills the boxes the main action reads
  Seen done;             // the main action's result is on screen
  Step show = {};        // for the screenshots: a result worth showing
};

void PrintTo(const WindowRow& r, std::ostream* out) { *out << r.name; }

Step Fill(std::vector<std::pair<const char*, const char*>> boxes) {
  return [boxes](GuiTest& t, QWidget* w) {
    for (auto [box, text] : boxes) t.fill(w, {{box, text}});
  };
}
Step Run(std::vector<std::pair<const char*, const char*>> boxes, std::vector<const char*> buttons) {
  return [=](GuiTest& t, QWidget* w) {
    Fill(boxes)(t, w);
    for (const char* b : buttons) std::string_view(b).starts_with("Check") ? ClickBox(GuiTest::child<QCheckBox>(w, b)) : t.click(w, b);
  };
}
Seen Shows(const char* control, const char* text) {
  return [=](GuiTest&, QWidget* w) { return TextOf(w, control) == text; };
}
Seen ChartHas(int n) {
  return [=](GuiTest&, QWidget* w) { return GuiTest::child<ChartWidget>(w, "Graph1")->points(1).size() == n; };
}
Seen ListHas(int n) {
  return [=](GuiTest&, QWidget* w) { return Lines(GuiTest::child<QAbstractItemView>(w, "List1")).size() == n; };
}
Seen Answer(const char* text) {
  return [=](GuiTest& t, QWidget*) { return t.main().answerText() == text; };
}
Seen FirstCell(const char* text) {
  return [=](GuiTest&, QWidget* w) { return GuiTest::child<GridWidget>(w, "Grid1")->cellText(1, 1) == text; };
}


const WindowRow kWindows[] = {
    {"MainWindow", "main/main_window.ui", "Text1", "Text1", Fill({{"Text1", "6*7"}}), Shows("Label1", "42")},
    {"GraphWindow", "graph/graph_window.ui", "Text1", "Text3",
     Fill({{"formula", "x"}, {"Text1", "0"}, {"Text2", "1"}, {"Text3", "4"}}), ChartHas(5),
     Run({{"formula", "x*sin(x)"}, {"Text1", "-10"}, {"Text2", "10"}, {"Text3", "200"}}, {"Command1"})},
    {"NegativeFunctionWindow", "graph/negative_function_window.ui", "Text1", "Text1", Fill({{"formula", "x^2+y^2-1"}}),
     [](GuiTest&, QWidget* w) { return !static_cast<NegativeFunctionWindow*>(w)->Picture1->segments().empty(); }},
    {"ParameterWindow", "graph/parameter_window.ui", "Text1", nullptr, {}, {}},
    {"ColorWindow", "graph/color_window.ui", nullptr, nullptr, {}, {}},
    {"StatDataWindow", "stats/stat_data_window.ui", "Text1", "Text1", Fill({{"Text1", "2"}}),
     [](GuiTest&, QWidget* w) { return GuiTest::child<GridWidget>(w, "Grid1")->columnCount() == 3; }},
    {"FunctionListWindow", "main/function_list_window.ui", nullptr, nullptr, {}, {}},
    {"IntegrationWindow", "calculus/integration_window.ui", "Text1", "Text2",
     Fill({{"formula", "x"}, {"Text1", "0"}, {"Text2", "1"}}), Answer("0.5")},
    {"DoubleIntegrationWindow", "calculus/double_integration_window.ui", "Text1", "Text5",
     Fill({{"Text1", "0"}, {"Text2", "1"}, {"Text4", "0"}, {"Text5", "2"}}), Answer("1")},
    {"DiffWindow", "calculus/diff_window.ui", "Text4", "Text5",
     Fill({{"formula", "x^2"}, {"Text2", "1"}, {"Text4", "0"}, {"Text5", "3"}}), ChartHas(4)},
    {"IntersectionWindow", "algebra/root_window.ui", "Text1", "Text3",
     Fill({{"formula", "x^2-1"}, {"Text1", "-2"}, {"Text2", "2"}, {"Text3", "4"}}), ListHas(2),
     Run({{"formula", "x^3-2*x"}, {"Text3", "40"}}, {"Check1", "Command1"})},
    {"ContourWindow", "contour/contour_window.ui", "Text1", "Text1", Fill({{"formula", "x*y"}}),
     Shows("Label5", "-4 ～ 4")},
    {"ContourMapWindow", "contour/contour_map_window.ui", nullptr, nullptr, {}, {},
     [](GuiTest& t, QWidget*) {
       Run({{"formula", "10*sin(x)*cos(y)"}, {"Text1", "-3"}, {"Text2", "3"}, {"Text4", "-3"}, {"Text5", "3"}},
           {"Command1", "Command5"})(t, t.window("ContourWindow"));
     }},
    {"AxisAngleWindow", "contour/axis_angle_window.ui", "Text1", "Text1", Fill({{"Text1", "45"}}),
     [](GuiTest& t, QWidget*) { return t.state().ViewAngleX == 45; }},
    {"PadWindow", "main/pad_window.ui", nullptr, nullptr, {}, {}},
    {"SimultWindow", "algebra/simult_window.ui", "Text1", "Text2", Fill({{"Text2", "5"}}), FirstCell("5"),
     [](GuiTest& t, QWidget* w) {  // after the 5: 5x + y + z = 10, 2x - y + z = 3, x + 2y - z = 2
       for (const char* v : {"1", "1", "10", "2", "-1", "1", "3", "1", "2", "-1", "2"}) GuiTest::enter(w->findChild<QLineEdit*>("Text2"), v);
       t.click(w, "Command1");
     }},
    {"MatrixWindow", "algebra/simult_window.ui", "Text1", "Text2", Fill({{"Text2", "5"}}), FirstCell("5"),
     [](GuiTest& t, QWidget* w) {
       for (const char* v : {"1", "1", "2", "-1", "1", "1", "2", "-1"}) GuiTest::enter(GuiTest::child<QLineEdit>(w, "Text2"), v);
       t.click(w, "Command4");
     }},
    {"DelayWindow", "calculus/delay_window.ui", "Text1", "Text1",
     [](GuiTest& t, QWidget* w) {
       t.fill(w, {{"formula", "timestep(1)+1"}});
       GuiTest::enter(GuiTest::child<QLineEdit>(w, "Text2"), "1");  // the initial value
       t.fill(w, {{"Text1", "3"}});
     },
     ChartHas(4)},
    {"WaveWindow", "signal/wave_window.ui", "Text1", "Text2",
     Fill({{"formula", "sin(2*PI*440*x)"}, {"Text1", "0"}, {"Text2", "0.01"}}),
     [](GuiTest& t, QWidget*) { return t.readFile("mrdsound.wav").starts_with("RIFF"); }},
    {"HelpWindow", "help/help_window.ui", nullptr, nullptr, {}, {}},
    {"FftWindow", "signal/fft_window.ui", "Text1", "Text3", Fill({{"formula", "sin(2*PI*5*x)"}}),
     [](GuiTest&, QWidget* w) { return !TextOf(w, "Label3").isEmpty(); },
     Run({{"formula", "cos(2*PI*5*x)+0.5*cos(2*PI*12*x)"}}, {"Command1", "Command3"})},
    {"SpectrumWindow", "signal/spectrum3d_window.ui", nullptr, nullptr, {}, {}},
    {"LoadWindow", "signal/load_window.ui", "Text1", nullptr, {}, {}},
    {"FileDisplayWindow", "signal/file_display_window.ui", nullptr, nullptr, {}, {}, Run({}, {"Command1"})},
    {"StatWindow", "stats/stat_window.ui", "Text1", nullptr, {}, {},
     [](GuiTest& t, QWidget* w) {
       std::vector<std::vector<float>> rows;
       for (int k = 0; k < 40; ++k) rows.push_back({k * 0.5f, k * 0.9f + 3 * std::sin(k * 1.7f)});
       t.recordRows(rows);
       QEvent activate(QEvent::WindowActivate);  // the record table's state, as on coming to the front
       QApplication::sendEvent(w, &activate);
       Run({{"Text1", "2"}}, {"Command1", "Command2"})(t, w);  // then the regression of column 2 on 1
       Run({{"Text1", "1"}}, {"Command3"})(t, w);
     }},
    {"MultRegWindow", "stats/multreg_window.ui", "Text1", nullptr, {}, {}},
    {"TestWindow", "stats/test_window.ui", "Text1", nullptr, {}, {},
     Run({{"Text1", "50"}, {"Text4", "52.5"}, {"Text5", "4"}, {"Text6", "20"}}, {"Command1"})},
    {"PrimeWindow", "algebra/prime_window.ui", "Text1", "Text1", Fill({{"Text1", "360"}}), ListHas(3)},
    {"ErrorWindow", "main/error_window.ui", nullptr, "", {}, [](GuiTest&, QWidget* w) { return !w->isVisible(); }},
};

class EveryWindow : public GuiTest, public ::testing::WithParamInterface<std::tuple<WindowRow, bool>> {
 protected:
  void SetUp() override {
    GuiTest::SetUp();
    ASSERT_TRUE(catalogue_.load(QStringLiteral(":/i18n/merida_ja.qm")));
    form_ = ReadForm(row().form, &context_);
  }
  const WindowRow& row() const { return std::get<0>(GetParam()); }

  // Every caption the form sets, as the catalogue gives it in the language.
  void expectCaptions(QWidget* w, bool japanese) {
    for (const FormCaption& c : form_) {
      QString expected = c.source;
      if (japanese && c.translated) {
        expected = catalogue_.translate(context_.toUtf8(), c.source.toUtf8(),
                                        c.disambiguation.isEmpty() ? nullptr : c.disambiguation.toUtf8().constData());
        EXPECT_FALSE(expected.isEmpty()) << c.source.toStdString() << " is not in the catalogue";
      }
      EXPECT_EQ(TextOf(w, c.control), expected) << row().name << " " << c.control.toStdString();
    }
  }
  QStringList captions(QWidget* w) {
    QStringList out;
    for (const FormCaption& c : form_) out << TextOf(w, c.control);
    return out;
  }

  // From the first box, Tab visits every control that takes focus once (an exclusive group of
  // option buttons is one stop) and comes back; it reads the window as laid out, with one way
  // back up: from the last control to the first.
  void expectTabRing(QWidget* w) {
    w->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(w));
    QWidget* first = w->focusWidget();
    ASSERT_NE(first, nullptr) << "nothing has the focus";
    EXPECT_TRUE(!row().firstBox || NameOf(first) == row().firstBox) << "the cursor starts in " << NameOf(first);
    auto stop = [](QWidget* c) -> QObject* {
      auto* option = qobject_cast<QRadioButton*>(c);
      return option && option->autoExclusive() ? c->parent() : c;
    };
    std::set<QObject*> stops;
    for (QWidget* c : w->findChildren<QWidget*>()) {
      if (c->window() == w && c->isVisibleTo(w) && c->isEnabled() && (c->focusPolicy() & Qt::TabFocus) &&
          !c->focusProxy()) {
        stops.insert(stop(c));
      }
    }
    std::vector<QWidget*> ring{first};
    for (size_t i = 0; i <= stops.size() && w->focusWidget(); ++i) {
      QTest::keyClick(w->focusWidget(), Qt::Key_Tab);
      if (w->focusWidget() == first) break;
      ring.push_back(w->focusWidget());
    }
    std::string order;
    int backwards = 0;
    for (size_t i = 0; i < ring.size(); ++i) {
      order += " " + NameOf(ring[i]);
      stops.erase(stop(ring[i]));
      const QRect a(ring[i]->mapTo(w, QPoint()), ring[i]->size());
      const QRect b(ring[(i + 1) % ring.size()]->mapTo(w, QPoint()), ring[(i + 1) % ring.size()]->size());
      backwards += b.top() < a.top() - 4 && b.left() < a.right();
    }
    std::string missing;
    for (QObject* c : stops) missing += " " + c->objectName().toStdString();
    EXPECT_EQ(w->focusWidget(), first) << "Tab does not come back:" << order;
    EXPECT_EQ(missing, "") << "Tab never reaches these; the ring is" << order;
    EXPECT_EQ(std::set<QWidget*>(ring.begin(), ring.end()).size(), ring.size()) << "twice in" << order;
    EXPECT_LE(backwards, 1) << "Tab jumps back up:" << order;
  }

  // Enlarged, a chart takes most of the new room, or else the boxes grow. At that size and at the
  // window's smallest every caption has its room and every control lies inside the one holding it.
  void expectRoomAtMinimumSize(QWidget* w) {
    auto widest = [w] {
      int most = 0;
      for (const QLineEdit* box : w->findChildren<QLineEdit*>()) most = box->isVisibleTo(w) ? std::max(most, box->width()) : most;
      return most;
    };
    auto expectRoom = [&] {
      QCoreApplication::processEvents();
      for (QWidget* c : w->findChildren<QWidget*>()) {
        if (c->window() != w || !c->isVisibleTo(w) || InScrollArea(c, w)) continue;
        EXPECT_TRUE(c->parentWidget()->rect().contains(c->geometry()))
            << NameOf(c) << " lies outside " << NameOf(c->parentWidget()) << " at " << w->width() << "x" << w->height();
        EXPECT_TRUE(HasRoom(c)) << row().name << " at " << w->width() << "x" << w->height();
      }
    };
    w->resize(w->minimumSizeHint().expandedTo(w->minimumSize()));
    expectRoom();
    const int boxAtMinimum = widest();
    w->resize(w->maximumSize().boundedTo(QSize(1600, 1000)));
    expectRoom();
    int drawing = -1;  // the widest chart, picture or grid, which should take the room
    for (QWidget* c : w->findChildren<QWidget*>()) {
      if (c->inherits("merida::ChartWidget") || c->inherits("merida::GridWidget") || c->inherits("merida::SegmentPicture")) {
        drawing = std::max(drawing, c->width());
      }
    }
    EXPECT_TRUE(w->width() < 1600 || drawing < 0 || drawing > 1000) << row().name << " keeps its drawing small";
    if (drawing < 0 && w->width() == 1600 && boxAtMinimum > 0) {
      EXPECT_GT(widest(), boxAtMinimum + 100) << row().name << " keeps its boxes narrow";
    }
    w->resize(w->minimumSizeHint().expandedTo(w->minimumSize()));
    QCoreApplication::processEvents();
  }

  void screenshot(QWidget* w, bool japanese) {
    const QString dir = qEnvironmentVariable("MERIDA_SCREENSHOT_DIR");
    if (dir.isEmpty()) return;
    QDir().mkpath(dir);
    const QPalette light = QApplication::palette();
    if (row().show) row().show(*this, w);
    for (const char* theme : {"", "-dark"}) {
      if (*theme) QApplication::setPalette(DarkPalette());
      QCoreApplication::processEvents();
      // On a real display the screen's copy holds what OpenGL drew (the 3-D surface).
      const bool screen = QGuiApplication::platformName() == "xcb";
      (screen ? w->screen()->grabWindow(w->winId()) : w->grab()).save(QStringLiteral("%1/%2-%3%4.png").arg(dir, row().name, japanese ? "Japanese" : "English", theme));
    }
    QApplication::setPalette(light);
  }

  QTranslator catalogue_;
  QString context_;
  std::vector<FormCaption> form_;
};

TEST_P(EveryWindow, CaptionsTabReturnEscapeRoomAndLanguageSwitch) {
  const WindowRow& r = row();
  const bool japanese = std::get<1>(GetParam());
  writeFile("MERIDA.DEF", japanese ? "Japanese\r\n" : "English\r\n");
  start();
  QWidget* w = open(QString::fromLatin1(r.name));
  expectCaptions(w, japanese);
  expectTabRing(w);

  if (r.enterIn) {
    if (r.prepare) r.prepare(*this, w);
    EXPECT_FALSE(r.done(*this, w)) << "the result is there before Return";
    QWidget* target = *r.enterIn ? child<QWidget>(w, r.enterIn) : w->focusWidget();
    ASSERT_NE(target, nullptr);
    QTest::keyClick(target, Qt::Key_Return);
    WaitForJobs();
    EXPECT_TRUE(r.done(*this, w)) << "Return in " << r.enterIn << " did not act";
    if (!w->isVisible()) w = open(QString::fromLatin1(r.name));
  }
  screenshot(w, japanese);
  expectRoomAtMinimumSize(w);

  // The switch renews the main and Help windows; others keep their captions until reopened.
  const QStringList before = captions(w);
  QWidget* help = open(QStringLiteral("HelpWindow"));
  AnswerNextBox(QMessageBox::Yes);
  click(help, "Command4");
  if (context_ == "merida::MainWindow" || context_ == "merida::HelpWindow") {
    expectCaptions(w, !japanese);
  } else {
    EXPECT_EQ(captions(w), before);
  }

  QTest::keyClick(w->focusWidget() ? w->focusWidget() : w, Qt::Key_Escape);
  EXPECT_EQ(w->isVisible(), w == &main()) << "Escape";
  w = open(QString::fromLatin1(r.name));
  expectCaptions(w, !japanese);
}

INSTANTIATE_TEST_SUITE_P(Windows, EveryWindow, ::testing::Combine(::testing::ValuesIn(kWindows), ::testing::Bool()),
                         [](const auto& p) {
                           return std::string(std::get<0>(p.param).name) +
                                  (std::get<1>(p.param) ? "_Japanese" : "_English");
                         });

}  // namespace
}  // namespace merida::test
