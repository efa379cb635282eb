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

int RunRec(Context& ctx, const std::vector<std::string>& args) {
  if (args.size() != 1) return Usage("rec FORMULA");
  if (!ctx.engine.RegisterFormula(args[0])) return Finish(ctx, false);
  if (!SaveUserFunctions(ctx.engine, ctx.dir)) {
    std::cerr << "merida-cli: cannot write MERIDA.DAT" << std::endl;
    return kFailed;
  }
  return kOk;
}

int RunList(Context& ctx, const std::vector<std::string>& args) {
  if (!args.empty()) return Usage("list");
  for (int k = 1; k <= ctx.engine.userFunctionCount(); ++k) std::cout << ctx.engine.FunctionListLine(k) << '\n';
  return kOk;
}

int RunDel(Context& ctx, const std::vector<std::string>& args) {
  if (args.size() != 1 || !IsNumeric(args[0])) return Usage("del N");
  auto k = ToInt16(ReadLenient(args[0]));
  if (!k || !ctx.engine.DeleteFunction(*k)) return kFailed;  // no such line: nothing to delete
  if (!SaveUserFunctions(ctx.engine, ctx.dir)) {
    std::cerr << "merida-cli: cannot write MERIDA.DAT" << std::endl;
    return kFailed;
  }
  return kOk;
}

}  // namespace merida::cli
