// calc, rec, list and del: the main window and the Function List from the command line.
#include <cstdio>
#include <iostream>

#include "cli/cli.h"
#include "engine/number_text.h"
#include "main/calculator.h"
#include "main/settings.h"

namespace merida::cli {

int RunCalc(Context& ctx, const std::vector<std::string>& args) {
  static const char* usage = "calc [--var NAME=VALUE]... FORMULA";
  std::string formula;
  bool haveFormula = false;
  for (size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--var") {
      if (i + 1 >= args.size()) return Usage(usage);
      const std::string& binding = args[++i];
      size_t eq = binding.find('=');
      if (eq == std::string::npos || eq == 0) return Usage(usage);
      ctx.host.vars[binding.substr(0, eq)] = binding.substr(eq + 1);
    } else if (!haveFormula) {
      formula = args[i];
      haveFormula = true;
    } else {
      return Usage(usage);
    }
  }
  if (!haveFormula) return Usage(usage);
  auto answer = Calc(ctx.engine, formula);
  if (answer) std::cout << *answer << '\n';
  return Finish(ctx, answer.has_value());
}

namespace {

// Prints why MERIDA.DAT was not written and returns the exit status.
int NotWritten(const FileResult& r) {
  std::cerr << "merida-cli: MERIDA.DAT not written: " << r.error << std::endl;
  return kFailed;
}

}  // namespace

// rec and del read, change and write the store under its lock, so that programs running at
// once act one after another: each checks its change against what the one before it saved.
int RunRec(Context& ctx, const std::vector<std::string>& args) {
  if (args.size() != 1) return Usage("rec FORMULA");
  StoreSession store(ctx.dir);
  if (FileResult r = store.reload(ctx.engine); !r) return NotWritten(r);
  if (!ctx.engine.RegisterFormula(args[0])) return Finish(ctx, false);
  if (FileResult r = store.save(ctx.engine); !r) return NotWritten(r);
  return kOk;
}

int RunList(Context& ctx, const std::vector<std::string>& args) {
  if (!args.empty()) return Usage("list");
  for (int k = 1; k <= ctx.engine.userFunctionCount(); ++k) std::cout << ctx.engine.FunctionListLine(k) << '\n';
  return kOk;
}

int RunDel(Context& ctx, const std::vector<std::string>& args) {
  if (args.size() != 1 || !IsNumeric(args[0])) return Usage("del N");
  StoreSession store(ctx.dir, false);
  if (FileResult r = store.reload(ctx.engine); !r) return NotWritten(r);
  const int count = ctx.engine.userFunctionCount();
  auto k = ToInt16(ReadLenient(args[0]));
  if (!k || !ctx.engine.DeleteFunction(*k)) {
    std::cerr << "merida-cli: del: there is no function " << args[0]
              << (count == 0 ? std::string(" (no functions are registered)")
                             : " (the functions are numbered 1 to " + std::to_string(count) + ")")
              << std::endl;
    return kFailed;
  }
  if (FileResult r = store.save(ctx.engine); !r) return NotWritten(r);
  return kOk;
}

}  // namespace merida::cli
