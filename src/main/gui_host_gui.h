// The engine's host in the desktop program: input boxes, the Error Message window, fault boxes.
#pragma once

#include <QMessageBox>
#include <QPointer>
#include <QWidget>
#include <functional>
#include <memory>

#include "engine/host.h"
#include "main/error_window.h"

namespace merida {

// The fault box, not yet shown: the fault's description in the display language (through the
// installed catalogue) in a box wide enough for its title.
std::unique_ptr<QMessageBox> MakeFaultBox(QWidget* parent, const std::string& description);

class GuiHost : public EngineHost {
 public:
  // Answers an input box: the reply text, or nullopt for Cancel.
  using AnswerFunction = std::function<std::optional<std::string>(const std::string& prompt)>;
  using FaultFunction = std::function<void(const std::string& description)>;

  GuiHost();
  ~GuiHost() override;
  GuiHost(const GuiHost&) = delete;
  GuiHost& operator=(const GuiHost&) = delete;

  // The window that input boxes, fault boxes and the Error Message window belong to.
  void setWindow(QWidget* window);
  // Replaces the input box (tests answer through this); an empty function restores the box.
  void setAnswerFunction(AnswerFunction answer) { answer_ = std::move(answer); }
  // Whether the display language is English: the Error Message window then adds the English
  // rendering of its Japanese message.
  void setEnglish(std::function<bool()> english) { english_ = std::move(english); }
  // Replaces the fault message box; an empty function restores it.
  void setFaultFunction(FaultFunction fault) { fault_ = std::move(fault); }
  // The Error Message window, or nullptr before the first error.
  ErrorWindow* errorWindow() const { return errors_.data(); }

  std::optional<std::string> askValue(const std::string& prompt) override;
  void showError(int code, const std::string& message) override;
  void showFault(const std::string& description) override;

 private:
  QPointer<QWidget> window_;
  QPointer<ErrorWindow> errors_;
  AnswerFunction answer_;
  FaultFunction fault_;
  std::function<bool()> english_;
};

}  // namespace merida
