// One parser for every tool command, so that they all refuse the same mistakes.
#include "cli/options.h"

#include <iostream>

namespace merida::cli {

std::optional<Options> ParseOptions(const std::vector<std::string>& args, const std::set<std::string>& valued,
                                    const std::set<std::string>& switches, const std::set<std::string>& required,
                                    bool formulaRequired) {
  Options o;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    if (valued.count(a)) {
      if (o.has(a) || i + 1 >= args.size()) return std::nullopt;
      o.values[a] = args[++i];
    } else if (switches.count(a)) {
      if (!o.flags.insert(a).second) return std::nullopt;
    } else if (a.rfind("--", 0) == 0 || o.formula) {
      return std::nullopt;
    } else {
      o.formula = a;
    }
  }
  if (!o.formula && formulaRequired) return std::nullopt;
  for (const std::string& r : required) {
    if (!o.has(r)) return std::nullopt;
  }
  return o;
}

void ReportBox(const char* control, const std::string& text) { std::cerr << control << ": " << text << '\n'; }

}  // namespace merida::cli
