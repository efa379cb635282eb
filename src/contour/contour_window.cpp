// The Contour window reads its boxes, runs the grid and the drawings, and shows what they give.
#include "contour/contour_window.h"

#include <QCloseEvent>
#include <utility>

#include "contour/contour_plot.h"
#include "graph/color_window.h"
#include "graph/graph_tools_gui.h"

namespace merida {
namespace {

std::string Text(const QLineEdit* box) { return box->text().toStdString(); }

}  // namespace

ContourWindow::ContourWindow(Engine& engine, AppState& state, std::function<QString()> formula, QWidget* parent)
    : ToolWindow(engine, state, parent), formula_(std::move(formula)) {
  setupUi(this);
  state_.ColorMode = -1;
  state_.Colors = ColorScheme{};
  state_.ViewAngleX = ViewAngles{}.x;
  state_.ViewAngleY = ViewAngles{}.y;

  const GridBoxes grid = OpeningGridBoxes();
  const LevelBoxes levels = OpeningLevelBoxes();
  const std::pair<QLineEdit*, std::string> opening[] = {
      {Text1, grid.xMin},     {Text2, grid.xMax},      {Text3, grid.xDivisions},
      {Text4, grid.yMin},     {Text5, grid.yMax},      {Text6, grid.yDivisions},
      {Text7, levels.lowest}, {Text8, levels.highest}, {Text9, levels.step}};
  for (const auto& [box, text] : opening) box->setText(QString::fromStdString(text));

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
}

void ContourWindow::retranslate() {
  retranslateUi(this);
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
    engine_.EndSilently({});
    LevelsResult levels = ReadLevels(engine_, {Text(Text7), Text(Text8), Text(Text9)});
    if (levels.stepBox) Text9->setText(QString::fromStdString(*levels.stepBox));
    reportSilentEnd(engine_);
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
