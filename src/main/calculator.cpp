// Calc: the compile sequence, integrals and sums folded once, one evaluation.
#include "main/calculator.h"

#include "engine/number_text.h"

namespace merida {

std::optional<std::string> Calc(Engine& engine, std::string_view formulaBoxText) {
  engine.BeginRun(-1, formulaBoxText);
  engine.SplitFormula();  // a header is allowed but ignored: no ParseHeader here
  if (engine.ExpandIntegrals() < 0 || engine.failed()) return std::nullopt;
  if (engine.ExpandSigmas() < 0 || engine.failed()) return std::nullopt;
  engine.TokenizeBody();
  if (engine.failed()) return std::nullopt;
  int16_t n = engine.CompilePostfix(engine.CurrentSlot);
  if (engine.failed()) return std::nullopt;
  n = engine.ComputeIntegrals(n);
  if (n < 0 || engine.failed()) return std::nullopt;
  engine.CurrentSlot += 1;
  n = engine.ComputeSigmas(n);
  engine.CurrentSlot -= 1;
  if (n < 0 || engine.failed()) return std::nullopt;
  double v = engine.EvaluateProgram(n);
  if (engine.failed()) return std::nullopt;
  return PlainText(v);
}

}  // namespace merida
