// merida-cli graph: the Graph window's plots on standard output.
#pragma once

#include <string>
#include <vector>

#include "cli/cli.h"

namespace merida::cli {

// graph --min A --max B --num N [--polar] [--param F2] FORMULA: one "X Y" line per point.
int RunGraph(Context& ctx, const std::vector<std::string>& args);

}  // namespace merida::cli
