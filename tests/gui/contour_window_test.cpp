// The Contour, Contour Map and Axis Angle windows through their buttons: the grid, the drawings
// as shapes and as pixels, the angles, stopping, saving, and the Japanese captions.
#include <QCheckBox>
#include <QImage>
#include <QRadioButton>
#include <set>

#include "contour/contour_plot.h"
#include "contour/contour_window.h"
#include "graph/color_window.h"
#include "gui_fixture.h"

namespace merida::test {
namespace {

class ContourWindowTest : public GuiTest {
 protected:
  ContourWindow* open(const QString& formula) {
    main().setFormulaText(formula);
    press(11);
    return qobject_cast<ContourWindow*>(window(QStringLiteral("ContourWindow")));
  }
  // The drawn scene's contour segments (the blue lines).
  static size_t blueLines(const MapScene& s) {
    size_t n = 0;
    for (const MapItem& item : s.items) n += item.kind == MapItem::kLine && !item.ink && item.color == kContourBlue;
    return n;
  }
  // The pixel under a map point of the widget's image.
  static QColor pixelAt(const QImage& image, const MapScene& s, MapPoint p) {
    const QSizeF size = image.deviceIndependentSize();
    const double x = (p.x - s.left) / (s.right - s.left) * size.width();
    const double y = (p.y - s.top) / (s.bottom - s.top) * size.height();
    return image.pixelColor(QPoint(static_cast<int>(x * image.devicePixelRatio()), static_cast<int>(y * image.devicePixelRatio())));
  }
  std::vector<Segment> lines(const char* formula, GridBoxes boxes, Levels levels) {
    GridResult r = EvaluateGrid(engine(), formula, boxes, false);
    std::vector<Segment> out;
    ContourLines(r.grid, levels, nullptr, out);
    return out;
  }
};

TEST_F(ContourWindowTest, CalcThenEachDrawingButton) {
  start();
  state().Colors.Red = 1;  // opening resets the scheme, the colour mode and the angles
  state().Colors.Green = -1;
  state().ColorMode = 1;
  state().ViewAngleX = 50;
  ContourWindow* w = open("x^2+y^2");
  ASSERT_NE(w, nullptr);
  EXPECT_EQ(state().Colors.Green, 1);
  EXPECT_EQ(state().Colors.Red, -1);
  EXPECT_EQ(state().ColorMode, -1);
  EXPECT_EQ(state().ViewAngleX, 20);
  EXPECT_EQ(state().ViewAngleY, 30);
  EXPECT_FALSE(w->Check1->isChecked());
  EXPECT_FALSE(w->Check2->isChecked());

  // No grid yet: the drawing buttons do nothing.
  test::ClickAndWait(w->Command3);
  EXPECT_EQ(w->mapWindow(), nullptr);

  w->Text3->setText("150");
  test::ClickAndWait(w->Command1);
  EXPECT_EQ(w->Text3->text(), "100");
  EXPECT_EQ(w->Label5->text(), "0 ～ 8");
  w->Text3->setText("20");
  test::ClickAndWait(w->Command1);
  EXPECT_EQ(w->Label5->text(), "0 ～ 8");

  // Plot: the four circles, segment for segment.
  test::ClickAndWait(w->Command3);
  ContourMapWindow* map = w->mapWindow();
  ASSERT_NE(map, nullptr);
  EXPECT_TRUE(map->isVisible());
  const GridBoxes boxes{"-2", "2", "20", "-2", "2", "20"};
  const size_t circles = lines("x^2+y^2", boxes, {1, 4, 1}).size();
  EXPECT_GT(circles, 100u);
  EXPECT_EQ(blueLines(map->Picture1->scene()), circles);
  // Levels 0.5 to 2.5 are 0 to 2.
  w->Text7->setText("0.5");
  w->Text8->setText("2.5");
  test::ClickAndWait(w->Command3);
  EXPECT_EQ(blueLines(map->Picture1->scene()), lines("x^2+y^2", boxes, {0, 2, 1}).size());
  // A lowest level not below the highest keeps the last drawing.
  w->Text8->setText("0");
  test::ClickAndWait(w->Command3);
  EXPECT_EQ(blueLines(map->Picture1->scene()), lines("x^2+y^2", boxes, {0, 2, 1}).size());

  // Cube: 21 rows and 21 columns; with the Color check, the filled surface instead.
  test::ClickAndWait(w->Command4);
  EXPECT_EQ(map->Picture1->scene().count(MapItem::kPolyline), 42u);
  EXPECT_EQ(map->Picture1->scene().count(MapItem::kPolygon), 0u);
  QTest::mouseClick(w->Check1, Qt::LeftButton, {}, QPoint(8, w->Check1->height() / 2));
  EXPECT_EQ(state().ColorMode, 1);
  test::ClickAndWait(w->Command4);
  EXPECT_EQ(map->Picture1->scene().count(MapItem::kPolygon), 400u);
  EXPECT_EQ(map->Picture1->scene().count(MapItem::kPolyline), 0u);
  // Plot in colour mode fills the plan under the lines.
  w->Text8->setText("4");
  test::ClickAndWait(w->Command3);
  EXPECT_EQ(map->Picture1->scene().count(MapItem::kPolygon), 400u);
  EXPECT_EQ(blueLines(map->Picture1->scene()), lines("x^2+y^2", boxes, {0, 4, 1}).size());
}

TEST_F(ContourWindowTest, HideWithMultiColorPaintsEachCellInItsBand) {
  start();
  // A plane seen from the front: no cell covers another, and the 16 cell means -3..3 of -4..4
  // fall into all seven bands.
  ContourWindow* w = open("x+y");
  ASSERT_NE(w, nullptr);
  w->Text3->setText("4");
  w->Text6->setText("4");
  test::ClickAndWait(w->Command1);
  test::ClickAndWait(w->Command6);
  auto* colors = w->findChild<ColorWindow*>();
  ASSERT_NE(colors, nullptr);
  EXPECT_TRUE(colors->Option1->isChecked());  // Green
  QTest::mouseClick(colors->Option5, Qt::LeftButton, {}, QPoint(8, colors->Option5->height() / 2));
  EXPECT_EQ(state().Colors.MultiColor, 1);

  test::ClickAndWait(w->Command5);
  ContourMapWindow* map = w->mapWindow();
  ASSERT_NE(map, nullptr);
  const MapScene& s = map->Picture1->scene();
  ASSERT_EQ(s.count(MapItem::kPolygon), 16u);
  const std::set<QRgb> bands{qRgb(0, 0, 255), qRgb(0, 255, 255), qRgb(0, 255, 0),    qRgb(255, 0, 255),
                             qRgb(255, 0, 0), qRgb(255, 255, 0), qRgb(255, 255, 255)};
  std::set<QRgb> drawn, painted;
  map->resize(500, 560);
  const QImage image = map->Picture1->image();
  const double zAxis = (s.left + s.right) / 2;
  for (const MapItem& item : s.items) {
    if (item.kind != MapItem::kPolygon) continue;
    drawn.insert(qRgb(item.color.r, item.color.g, item.color.b));
    const MapPoint* c = s.pointsOf(item);
    const MapPoint centre{(c[0].x + c[1].x + c[2].x + c[3].x) / 4, (c[0].y + c[1].y + c[2].y + c[3].y) / 4};
    if (std::abs(centre.x - zAxis) < 0.15) continue;  // the z axis and its labels run over these
    const QRgb seen = pixelAt(image, s, centre).rgb();
    EXPECT_EQ(seen, qRgb(item.color.r, item.color.g, item.color.b)) << (&item - s.items.data());
    painted.insert(seen);
  }
  EXPECT_EQ(drawn, bands);
  EXPECT_GE(painted.size(), 5u);  // the cells on the diagonal lie behind the z axis
}

TEST_F(ContourWindowTest, WrongVariableShowsErrorThirtyTwoAndDrawsNothing) {
  start();
  ContourWindow* w = open("x*t");
  ASSERT_NE(w, nullptr);
  test::ClickAndWait(w->Command1);
  EXPECT_EQ(errorText(), "等高線の変数名はｘとｙだけです");
  acknowledgeError();
  EXPECT_EQ(w->Label5->text(), "");
  EXPECT_FALSE(w->hasGrid());
  test::ClickAndWait(w->Command5);
  EXPECT_EQ(w->mapWindow(), nullptr);
}

TEST_F(ContourWindowTest, AxisAngleDialogHoldsDecidesAndForgets) {
  start();
  ContourWindow* w = open("x*y");
  ASSERT_NE(w, nullptr);
  test::ClickAndWait(w->Command1);
  test::ClickAndWait(w->Command5);
  ContourMapWindow* map = w->mapWindow();
  ASSERT_NE(map, nullptr);
  click(map, "Command2");
  AxisAngleWindow* angle = map->angleWindow();
  ASSERT_NE(angle, nullptr);
  ASSERT_TRUE(angle->isVisible());
  EXPECT_EQ(angle->Text1->text(), "20");
  EXPECT_EQ(angle->Text2->text(), "30");

  struct Case {
    const char *a, *b, *shownA, *shownB;
  };
  for (Case c : {Case{"-10", "200", "0", "180"}, Case{"45", "60.5", "45", "60.5"}, Case{"x", "10", "45", "60.5"}}) {
    angle->Text1->setText(c.a);
    angle->Text2->setText(c.b);
    test::ClickAndWait(angle->Command1);
    EXPECT_EQ(angle->Text1->text(), c.shownA) << c.a;
    EXPECT_EQ(angle->Text2->text(), c.shownB) << c.b;
  }
  EXPECT_EQ(state().ViewAngleX, 45);
  EXPECT_EQ(state().ViewAngleY, 60.5);

  // Close without Decide: the typed angles are forgotten.
  angle->Text1->setText("5");
  angle->Text2->setText("6");
  test::ClickAndWait(angle->Command2);
  EXPECT_FALSE(angle->isVisible());
  EXPECT_EQ(state().ViewAngleX, 45);
  click(map, "Command2");
  EXPECT_EQ(angle->Text1->text(), "45");
  EXPECT_EQ(angle->Text2->text(), "60.5");

  // The next Hide uses the accepted angles.
  test::ClickAndWait(w->Command5);
  const GridResult r = EvaluateGrid(engine(), "x*y", OpeningGridBoxes(), false);
  Projection p(r.grid, {45, 60.5});
  const MapScene& s = map->Picture1->scene();
  const MapItem* last = nullptr;
  for (const MapItem& item : s.items) {
    if (item.kind == MapItem::kPolygon) last = &item;
  }
  ASSERT_NE(last, nullptr);
  EXPECT_DOUBLE_EQ(s.pointsOf(*last)[0].x, p.at(1, 0).x);
  EXPECT_DOUBLE_EQ(s.pointsOf(*last)[0].y, p.at(1, 0).y);

  // Closing the map closes the dialog.
  angle->show();
  click(map, "Command1");
  EXPECT_FALSE(map->isVisible());
  EXPECT_FALSE(angle->isVisible());
}

TEST_F(ContourWindowTest, CloseStopsARunningDrawing) {
  start();
  ContourWindow* w = open("sin(x)*cos(y)");
  ASSERT_NE(w, nullptr);
  for (QLineEdit* box : {w->Text3, w->Text6}) box->setText("100");
  test::ClickAndWait(w->Command1);
  ASSERT_TRUE(w->hasGrid());
  // Close is pressed while the surface is being filled: the map stays cleared.
  QTest::mouseClick(w->Command5, Qt::LeftButton);
  EXPECT_TRUE(w->running());
  QTest::mouseClick(w->Command2, Qt::LeftButton);
  EXPECT_FALSE(w->isVisible());
  EXPECT_FALSE(w->running());
  ASSERT_NE(w->mapWindow(), nullptr);
  EXPECT_FALSE(w->mapWindow()->isVisible());
  EXPECT_EQ(w->mapWindow()->Picture1->scene().count(MapItem::kPolygon), 0u);
  EXPECT_EQ(engine().StopRequested, 1);
  EXPECT_EQ(engine().BindToX, -1);
}

TEST_F(ContourWindowTest, PrintCheckAndSavedImagesKeepWhatIsShown) {
  start();
  ContourWindow* w = open("x^2+y^2");
  ASSERT_NE(w, nullptr);
  test::ClickAndWait(w->Command1);
  test::ClickAndWait(w->Command3);
  ContourMapWindow* map = w->mapWindow();
  ASSERT_NE(map, nullptr);
  EXPECT_FALSE(map->Picture1->printMode());
  QTest::mouseClick(w->Check2, Qt::LeftButton, {}, QPoint(8, w->Check2->height() / 2));
  EXPECT_TRUE(map->Picture1->printMode());
  EXPECT_EQ(map->Picture1->mapStyle().paper, QColor(Qt::white));
  EXPECT_EQ(map->Picture1->mapStyle().ink, QColor(Qt::black));

  // The drawing follows the window's size: the level-4 circle touches the frame's middle right.
  for (QSize size : {QSize(400, 420), QSize(800, 700)}) {
    map->resize(size);
    const QString file = QStringLiteral("map%1.png").arg(size.width());
    ASSERT_TRUE(map->saveImage(file));
    QImage saved(file);
    ASSERT_FALSE(saved.isNull());
    EXPECT_EQ(saved.width(), static_cast<int>(map->Picture1->width() * map->Picture1->devicePixelRatioF()));
    const MapScene& s = map->Picture1->scene();
    saved.setDevicePixelRatio(map->Picture1->devicePixelRatioF());
    int blue = 0;
    for (double dy : {-0.01, 0.0, 0.01}) {
      for (double dx : {-0.01, 0.0, 0.01}) {
        QColor c = pixelAt(saved, s, {1 + dx, 0.5 + dy});
        blue += c.blue() > 150 && c.red() < 150;
      }
    }
    EXPECT_GT(blue, 0) << size.width();
  }
  ASSERT_TRUE(map->saveImage(QStringLiteral("map.svg")));
  EXPECT_TRUE(readFile("map.svg").find("<svg") != std::string::npos);
  EXPECT_FALSE(map->saveImage(QStringLiteral("no/such/dir/map.png")));
}

TEST_F(ContourWindowTest, JapaneseCaptions) {
  writeFile("MERIDA.DEF", "Japanese\r\n");
  start();
  ContourWindow* w = open("x*y");
  ASSERT_NE(w, nullptr);
  const std::pair<QString, const char*> contour[] = {
      {w->windowTitle(), "等高線"},       {w->Command1->text(), "計算"},  {w->Command2->text(), "中止"},
      {w->Command3->text(), "作図"},      {w->Command4->text(), "立体"},  {w->Command5->text(), "隠線"},
      {w->Command6->text(), "色"},        {w->Check1->text(), "色"},      {w->Check2->text(), "印刷"},
      {w->Frame1->title(), "X軸"},        {w->Frame2->title(), "Y軸"},    {w->Frame3->title(), "作図設定"},
      {w->Frame4->title(), "最小最大"},   {w->Label1->text(), "分割"},    {w->Label3->text(), "間隔"},
  };
  for (const auto& [shown, japanese] : contour) EXPECT_EQ(shown, QString::fromUtf8(japanese));
  test::ClickAndWait(w->Command1);
  EXPECT_EQ(w->Label5->text(), "-4 ～ 4");
  test::ClickAndWait(w->Command3);
  ContourMapWindow* map = w->mapWindow();
  ASSERT_NE(map, nullptr);
  click(map, "Command2");
  AxisAngleWindow* angle = map->angleWindow();
  ASSERT_NE(angle, nullptr);
  const std::pair<QString, const char*> others[] = {
      {map->windowTitle(), "等高線図"},   {map->Command1->text(), "中止"},   {map->Command2->text(), "角度"},
      {map->Command3->text(), "印刷"},    {angle->windowTitle(), "角度"},    {angle->Frame1->title(), "角度"},
      {angle->Label1->text(), "X軸"},     {angle->Label2->text(), "Y軸"},    {angle->Label3->text(), "度"},
      {angle->Command1->text(), "決定"},  {angle->Command2->text(), "中止"},
  };
  for (const auto& [shown, japanese] : others) EXPECT_EQ(shown, QString::fromUtf8(japanese));
}

}  // namespace
}  // namespace merida::test
