// The Contour window reads its boxes, runs the grid and the drawings, and shows what they give.
#include "contour/contour_window.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include "contour/contour_plot.h"
#include "graph/color_window.h"
#include "graph/graph_tools_gui.h"

namespace merida {
namespace {

std::string Text(const QLineEdit* box) { return box->text().toStdString(); }

QLabel* NamedLabel(const char* name) {
  auto* label = new QLabel;
  label->setObjectName(QString::fromLatin1(name));
  return label;
}

}  // namespace

ContourWindow::ContourWindow(Engine& engine, AppState& state, std::function<QString()> formula, QWidget* parent)
    : ToolWindow(engine, state, parent), formula_(std::move(formula)) {
  setObjectName("ContourWindow");
  state_.ColorMode = -1;
  state_.Colors = ColorScheme{};
  state_.ViewAngleX = ViewAngles{}.x;
  state_.ViewAngleY = ViewAngles{}.y;

  const GridBoxes grid = OpeningGridBoxes();
  const LevelBoxes levels = OpeningLevelBoxes();
  Text1 = makeBox("Text1", grid.xMin.c_str());
  Text2 = makeBox("Text2", grid.xMax.c_str());
  Text3 = makeBox("Text3", grid.xDivisions.c_str());
  Text4 = makeBox("Text4", grid.yMin.c_str());
  Text5 = makeBox("Text5", grid.yMax.c_str());
  Text6 = makeBox("Text6", grid.yDivisions.c_str());
  Text7 = makeBox("Text7", levels.lowest.c_str());
  Text8 = makeBox("Text8", levels.highest.c_str());
  Text9 = makeBox("Text9", levels.step.c_str());
  Label1 = NamedLabel("Label1");
  Label2 = NamedLabel("Label2");
  Label3 = NamedLabel("Label3");
  Label5 = NamedLabel("Label5");
  Label5->setMinimumWidth(120);
  Frame1 = makeRangeFrame("Frame1", Text1, Text2, Label1, Text3);
  Frame2 = makeRangeFrame("Frame2", Text4, Text5, Label2, Text6);
  Frame3 = makeRangeFrame("Frame3", Text7, Text8, Label3, Text9);
  Frame4 = new QGroupBox;
  Frame4->setObjectName("Frame4");
  (new QVBoxLayout(Frame4))->addWidget(Label5);

  Command1 = makeButton("Command1");
  Command3 = makeButton("Command3");
  Command4 = makeButton("Command4");
  Command5 = makeButton("Command5");
  Command6 = makeButton("Command6");
  Command2 = makeButton("Command2");
  Check1 = new QCheckBox;
  Check1->setObjectName("Check1");
  Check2 = new QCheckBox;
  Check2->setObjectName("Check2");

  auto* frames = new QVBoxLayout;
  for (QGroupBox* f : {Frame1, Frame2, Frame3, Frame4}) frames->addWidget(f);
  frames->addStretch(1);
  auto* side = new QVBoxLayout;
  for (QPushButton* b : {Command1, Command3, Command4, Command5, Command6}) side->addWidget(b);
  side->addWidget(Check1);
  side->addWidget(Check2);
  side->addStretch(1);
  side->addWidget(Command2);
  auto* layout = new QHBoxLayout(this);
  layout->addLayout(frames);
  layout->addLayout(side);

  connect(Command1, &QPushButton::clicked, this, &ContourWindow::calc);
  connect(Command2, &QPushButton::clicked, this, &QWidget::close);
  connect(Command3, &QPushButton::clicked, this, [this] { draw(Command3, MapDrawing::kPlot); });
  connect(Command4, &QPushButton::clicked, this, [this] { draw(Command4, MapDrawing::kCube); });
  connect(Command5, &QPushButton::clicked, this, [this] { draw(Command5, MapDrawing::kHide); });
  connect(Command6, &QPushButton::clicked, this, [this] { OpenColorWindow(this, engine_, state_); });
  connect(Check1, &QCheckBox::toggled, this, [this](bool on) { state_.ColorMode = on ? 1 : -1; });
  connect(Check2, &QCheckBox::toggled, this, [this](bool on) {
    if (map_) map_->setPrintSetting(on);
  });
  pressOnEnter({Text1, Text2, Text3, Text4, Text5, Text6}, Command1);
  pressOnEnter({Text7, Text8, Text9}, Command3);
  retranslate();
}

void ContourWindow::retranslate() {
  setWindowTitle(tr("Contour"));
  Command1->setText(tr("Calc"));
  Command2->setText(tr("Close"));
  Command3->setText(tr("Plot"));
  Command4->setText(tr("Cube"));
  Command5->setText(tr("Hide"));
  Command6->setText(tr("Color"));
  Check1->setText(tr("Color"));
  Check2->setText(tr("Print"));
  Frame1->setTitle(tr("X Axis"));
  Frame2->setTitle(tr("Y Axis"));
  Frame3->setTitle(tr("Plot Institute"));
  Frame4->setTitle(tr("Min Max"));
  Label1->setText(tr("Num"));
  Label2->setText(tr("Num"));
  Label3->setText(tr("Dist"));
  if (map_) map_->retranslate();
}

void ContourWindow::calc() {
  if (jobRunning()) {
    stopJob();  // the running button reads "Stop"
    return;
  }
  const QString shown = Label5->text();
  Label5->setText(QString::fromUtf8(kCalculatingText));
  const GridBoxes boxes{Text(Text1), Text(Text2), Text(Text3), Text(Text4), Text(Text5), Text(Text6)};
  auto result = std::make_shared<GridResult>();
  startJob(
      Command1,
      [result, boxes, formula = formula_().toStdString()](ToolRun& run) {
        *result = EvaluateGrid(run.engine, formula, boxes, false);
      },
      [this, result](ToolRun&) {
        GridResult& r = *result;
        if (r.xDivisionsBox) Text3->setText(QString::fromStdString(*r.xDivisionsBox));
        if (r.yDivisionsBox) Text6->setText(QString::fromStdString(*r.yDivisionsBox));
        // A grid that failed half-way is no grid: the drawings wait for the next Calc.
        if (r.end != GridEnd::kCompleted) {
          grid_.reset();
          Label5->clear();
          return;
        }
        grid_ = std::move(r.grid);
        Label5->setText(QString::fromStdString(MinMaxText(*grid_)));
      },
      [this, shown] { Label5->setText(shown); });
}

void ContourWindow::draw(QPushButton* button, MapDrawing drawing) {
  if (jobRunning()) {
    stopJob();
    return;
  }
  if (!grid_) return;
  DrawRequest request{drawing, state_.ColorMode == 1, state_.Colors, {state_.ViewAngleX, state_.ViewAngleY}, {}};
  if (drawing == MapDrawing::kPlot) {
    LevelsResult levels = ReadLevels(engine_, {Text(Text7), Text(Text8), Text(Text9)});
    if (levels.stepBox) Text9->setText(QString::fromStdString(*levels.stepBox));
    if (!levels.levels) return;
    request.levels = *levels.levels;
  }
  if (!map_) {
    map_ = new ContourMapWindow(engine_, state_, this);
    map_->setPrintSetting(Check2->isChecked());
  }
  map_->Picture1->setScene(MapScene{});
  map_->show();
  map_->raise();
  auto scene = std::make_shared<MapScene>();
  startJob(
      button, [scene, request, grid = *grid_](ToolRun& run) { BuildMap(grid, request, &run.engine, *scene); },
      [this, scene](ToolRun&) {
        // The map may have been closed meanwhile; it then shows the drawing when opened again.
        if (map_) map_->Picture1->setScene(std::move(*scene));
      });
}

void ContourWindow::closeEvent(QCloseEvent* event) {
  engine_.BindToX = -1;
  if (map_) map_->close();
  if (auto* colors = findChild<ColorWindow*>(QString(), Qt::FindDirectChildrenOnly)) colors->close();
  ToolWindow::closeEvent(event);
}

}  // namespace merida
