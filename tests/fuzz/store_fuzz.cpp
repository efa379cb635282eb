// Fuzz target: the store loader. What loads, saves and loads again must save the same text;
// each loaded function is then called once.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "fuzz_host.h"
#include "main/calculator.h"

namespace {

struct Loaded {
  std::string text;
  int functions = 0;
  size_t kept = 0;
};

Loaded LoadAndSave(merida::Engine& engine, std::string_view store) {
  engine.LoadStoreText(store);
  return {engine.StoreText(), engine.userFunctionCount(), engine.keptLineCount()};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  using namespace merida;
  std::string_view input(reinterpret_cast<const char*>(data), size);
  fuzz::BoundedHost host;
  Engine first(host);
  Loaded once = LoadAndSave(first, input);
  Engine second(host);
  Loaded twice = LoadAndSave(second, once.text);
  if (once.text != twice.text || once.functions != twice.functions || once.kept != twice.kept) std::abort();
  if (once.functions + static_cast<int>(once.kept) > 0 && once.text.empty()) std::abort();

  host.engine = &first;
  for (int k = 1; k <= first.userFunctionCount() && k <= 8; ++k) {
    const FunctionHeader& f = first.FunctionTable[k];
    std::string call = f.Name + "(";
    for (int j = 1; j <= f.ParamCount; ++j) call += j > 1 ? ",1" : "1";
    host.prompts = 0;
    host.events = 0;
    Calc(first, call + ")");
    if (first.busy()) std::abort();
  }
  return 0;
}
