// Rec of the main window and the Function List window: listing, select, delete, save.
#include <QListWidget>
#include <sys/stat.h>

#include <filesystem>
#include <tuple>

#include "gui_fixture.h"

namespace merida::test {
namespace {

class FunctionList : public GuiTest {
 protected:
  // Opens the list from the main window's List button.
  QWidget* openList() {
    press(3);
    QWidget* list = window(QStringLiteral("FunctionListWindow"));
    EXPECT_NE(list, nullptr);
    return list;
  }
  QStringList lines(QWidget* list) {
    QStringList out;
    auto* box = child<QListWidget>(list, "List1");
    for (int i = 0; box && i < box->count(); ++i) out << box->item(i)->text();
    return out;
  }
  void choose(QWidget* list, int row) { child<QListWidget>(list, "List1")->setCurrentRow(row); }
};

TEST_F(FunctionList, RecRegistersAndTheListShowsTheAutomaticName) {
  start();
  rec("sq(x)=x*x");
  rec("x^2+y");
  EXPECT_EQ(errorText(), QString());
  EXPECT_EQ(calc("sq(3)+1"), "10");
  EXPECT_EQ(lines(openList()), (QStringList{"sq(x)=x*x", "f_1(x,y)=x^2+y"}));
}

TEST_F(FunctionList, RefusedRecShowsTheErrorAndRegistersNothing) {
  for (auto [first, formula, message] : {std::tuple{"", "h(x)=x+y", "式の変数が余分です"},
                                         std::tuple{"sq(x)=x*x", "sq(t)=t", "このユーザ関数は既に登録されています"}}) {
    start();
    const int before = *first ? 1 : 0;
    if (before) rec(first);
    rec(QString::fromUtf8(formula));
    EXPECT_EQ(errorText().toStdString(), message);
    EXPECT_EQ(engine().userFunctionCount(), before);
    EXPECT_EQ(lines(openList()).size(), before);
  }
}

TEST_F(FunctionList, SelectCopiesTheLineIntoTheFormulaBoxAndCloses) {
  start();
  rec("sq(x)=x*x");
  rec("f(x,y)=x+perm(x,y)");
  QWidget* list = openList();
  EXPECT_EQ(lines(list), (QStringList{"sq(x)=x*x", "f(x,y)=x+perm(x,y)"}));
  choose(list, 1);
  click(list, "Command3");
  EXPECT_EQ(main().formulaText(), "f(x,y)=x+perm(x,y)");
  EXPECT_EQ(window(QStringLiteral("FunctionListWindow")), nullptr);
}

TEST_F(FunctionList, SelectWithoutAChoiceDoesNothing) {
  start();
  rec("sq(x)=x*x");
  main().setFormulaText("kept");
  QWidget* list = openList();
  click(list, "Command3");
  EXPECT_EQ(main().formulaText(), "kept");
  EXPECT_NE(window(QStringLiteral("FunctionListWindow")), nullptr);
}

TEST_F(FunctionList, ALineTheParameterBoxRefusesGoesToTheFormulaBox) {
  start();
  rec("sq(x)=x*x");
  state().GraphMode = 3;
  int asked = 0;
  QWidget* list = openList();
  static_cast<FunctionListWindow*>(list)->setParameterTarget([&](const QString&) { return ++asked, false; });
  choose(list, 0);
  click(list, "Command3");
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(main().formulaText(), "sq(x)=x*x");
}

TEST_F(FunctionList, DeletingTheFirstOfThreeLeavesTwo) {
  start();
  rec("a1(x)=x+1");
  rec("a2(x)=x+2");
  rec("a3(x)=x+3");
  QWidget* list = openList();
  choose(list, 0);
  click(list, "Command2");
  EXPECT_EQ(lines(list), (QStringList{"a2(x)=x+2", "a3(x)=x+3"}));
  EXPECT_EQ(engine().userFunctionCount(), 2);
  EXPECT_EQ(engine().FunctionListLine(1), "a2(x)=x+2");

  // Del again without a new choice deletes nothing.
  click(list, "Command2");
  EXPECT_EQ(engine().userFunctionCount(), 2);

  EXPECT_EQ(calc("a3(1)"), "4");
  // a1 is no function name any more: the word is an operand out of place.
  EXPECT_EQ(calc("a1(1)"), "");
  EXPECT_EQ(errorText(), "文法エラーです");
}

TEST_F(FunctionList, SaveWritesTheStoreAndTheNextStartReadsIt) {
  start();
  rec("sq(x)=x*x");
  rec("f(x,y)=x+perm(x,y)");
  rec("x^2+y");
  QWidget* list = openList();
  click(list, "Command4");
  EXPECT_EQ(readFile("MERIDA.DAT"), "sq(x)=x*x\r\nf(x@y)=x+perm(x@y)\r\nf_1(x@y)=x^2+y\r\n");

  start();
  EXPECT_EQ(engine().userFunctionCount(), 3);
  EXPECT_EQ(lines(openList()), (QStringList{"sq(x)=x*x", "f(x,y)=x+perm(x,y)", "f_1(x,y)=x^2+y"}));
  EXPECT_EQ(calc("f(5,2)"), "25");
}

TEST_F(FunctionList, NothingIsSavedWithoutTheListsRec) {
  start();
  rec("sq(x)=x*x");
  EXPECT_EQ(readFile("MERIDA.DAT"), "");
  start();
  EXPECT_EQ(engine().userFunctionCount(), 0);
}

// A save that must not happen says why in a box and leaves the file and the list as they were:
// a read-only store, and a name another program saved there meanwhile (error 7).
TEST_F(FunctionList, RefusedSavesSayWhyAndChangeNothing) {
  struct Row {
    const char* stored;
    bool readOnly;
    const char* otherProgram;  // written to the file after the start
    const char* box;
    const char* error;
  };
  const Row rows[] = {
      {"a(x)=x\r\n", true, nullptr, "MERIDA.DAT was not written: the file is read-only", ""},
      {"a(x)=x\r\n", false, "a(x)=x\r\nsq(x)=x+1\r\n",
       "MERIDA.DAT was not written: another program saved a function of the same name there",
       "このユーザ関数は既に登録されています"},
  };
  for (const Row& r : rows) {
    std::filesystem::remove("MERIDA.DAT");
    writeFile("MERIDA.DAT", r.stored);
    if (r.readOnly) ::chmod("MERIDA.DAT", 0444);
    start();
    rec("sq(x)=x*x");
    if (r.otherProgram) writeFile("MERIDA.DAT", r.otherProgram);
    const std::string before = readFile("MERIDA.DAT");
    QString text;
    OnNextModal<QMessageBox>([&](QMessageBox* box) {
      text = box->text();
      box->accept();
    });
    QWidget* list = openList();
    click(list, "Command4");
    EXPECT_EQ(text.toStdString(), r.box);
    EXPECT_EQ(errorText().toStdString(), r.error);
    EXPECT_EQ(readFile("MERIDA.DAT"), before);
    EXPECT_EQ(lines(list), (QStringList{"a(x)=x", "sq(x)=x*x"}));
    if (*r.error) acknowledgeError();
  }
}

TEST_F(FunctionList, OpeningTwiceKeepsOneWindow) {
  start();
  QWidget* first = openList();
  QWidget* second = openList();
  EXPECT_EQ(first, second);
  click(first, "Command1");
  EXPECT_EQ(window(QStringLiteral("FunctionListWindow")), nullptr);
}

}  // namespace
}  // namespace merida::test
