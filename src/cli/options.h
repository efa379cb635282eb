// The tool commands' arguments: "--name VALUE" options, "--flag" switches, one FORMULA.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace merida::cli {

struct Options {
  std::map<std::string, std::string> values;  // by option name, "--min" -> "0"
  std::set<std::string> flags;                // switches given
  std::optional<std::string> formula;

  bool has(const std::string& name) const { return values.count(name) > 0; }
  const std::string& operator[](const std::string& name) const { return values.at(name); }
  bool flag(const std::string& name) const { return flags.count(name) > 0; }
};

// nullopt on an unknown option, a repeated one, an option without its value, a second
// formula, or a missing required option or formula. A formula may start with "-", never "--".
std::optional<Options> ParseOptions(const std::vector<std::string>& args, const std::set<std::string>& valued,
                                    const std::set<std::string>& switches, const std::set<std::string>& required,
                                    bool formulaRequired = true);

// A box the window rewrote, as scripts see it: "Text3: 8" on standard error.
void ReportBox(const char* control, const std::string& text);

}  // namespace merida::cli
