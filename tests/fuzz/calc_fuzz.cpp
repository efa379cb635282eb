// Fuzz target: the Calc path with registered functions. Every line but the last is
// registered (Rec), or "#D k" deletes the k-th function; the last line is computed.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "engine/number_text.h"
#include "fuzz_host.h"
#include "main/calculator.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace merida;
  std::string_view input(reinterpret_cast<const char*>(data), size);
  fuzz::BoundedHost host;
  Engine engine(host);
  host.engine = &engine;
  size_t pos = 0;
  for (;;) {
    size_t end = input.find('\n', pos);
    std::string_view line = input.substr(pos, end == std::string_view::npos ? std::string_view::npos : end - pos);
    if (end == std::string_view::npos) {
      auto answer = Calc(engine, line);
      // An answer is a number text, never "inf" or "nan", and the engine is idle again.
      if (answer && !IsNumeric(*answer)) std::abort();
      if (engine.busy()) std::abort();
      break;
    }
    pos = end + 1;
    if (line.substr(0, 3) == "#D ") {
      if (auto k = ToInt16(ReadLenient(line.substr(3)))) engine.DeleteFunction(*k);
    } else {
      int before = engine.userFunctionCount();
      bool registered = engine.RegisterFormula(line);
      if (engine.userFunctionCount() != before + (registered ? 1 : 0)) std::abort();
    }
    host.prompts = 0;
    host.events = 0;
  }
  return 0;
}
