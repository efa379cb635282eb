// The main window's buttons reach the tool windows, and the windows reach each other.
#include <QListWidget>

#include "gui_fixture.h"

namespace merida::test {
namespace {

class ToolWiring : public GuiTest {};

TEST_F(ToolWiring, FunctionChosenDuringAParametricSetUpGoesToTheActiveBox) {
  start();
  rec("sq(t)=t*t");
  main().setFormulaText("cos(t)");
  press(2);
  QWidget* graph = window(QStringLiteral("GraphWindow"));
  ASSERT_NE(graph, nullptr);
  click(graph, "Command4");  // Para: opens the parameter window with the formula in its first box
  QWidget* parameter = window(QStringLiteral("ParameterWindow"));
  ASSERT_NE(parameter, nullptr);
  EXPECT_EQ(state().GraphMode, 3);
  EXPECT_EQ(child<QLineEdit>(parameter, "Text1")->text(), "cos(t)");

  // The second box becomes active by typing in it; the list's choice then lands there.
  QTest::keyClicks(child<QLineEdit>(parameter, "Text2"), "s");
  click(parameter, "Command1");
  QWidget* list = window(QStringLiteral("FunctionListWindow"));
  ASSERT_NE(list, nullptr);
  auto* lines = child<QListWidget>(list, "List1");
  ASSERT_EQ(lines->count(), 1);
  lines->setCurrentRow(0);
  click(list, "Command3");
  EXPECT_EQ(child<QLineEdit>(parameter, "Text2")->text(), "sq(t)=t*t");
  EXPECT_EQ(child<QLineEdit>(parameter, "Text1")->text(), "cos(t)");
  EXPECT_EQ(main().formulaText(), "cos(t)") << "the main formula box is left alone";

  // Outside the parametric mode a choice goes to the main window.
  click(parameter, "Command3");  // Close returns the graph to the normal mode
  EXPECT_EQ(state().GraphMode, 1);
  press(3);
  list = window(QStringLiteral("FunctionListWindow"));
  ASSERT_NE(list, nullptr);
  child<QListWidget>(list, "List1")->setCurrentRow(0);
  click(list, "Command3");
  EXPECT_EQ(main().formulaText(), "sq(t)=t*t");
}

TEST_F(ToolWiring, AlgebraButtonsOpenTheirWindows) {
  start();
  struct Row {
    int command;
    const char* objectName;
  };
  for (Row r : {Row{10, "IntersectionWindow"}, Row{13, "SimultWindow"}, Row{16, "SimultWindow"}, Row{20, "PrimeWindow"}}) {
    press(r.command);
    QWidget* w = window(QString::fromLatin1(r.objectName));
    ASSERT_NE(w, nullptr) << r.command;
    EXPECT_TRUE(w->isVisible()) << r.command;
  }
}

}  // namespace
}  // namespace merida::test
