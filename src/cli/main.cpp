// merida-cli: the engine and the tools' logic from the command line.
#include <cstring>
#include <iostream>

#include "cli/cli.h"
#include "main/settings.h"

namespace merida::cli {
int RunCalc(Context&, const std::vector<std::string>&);
int RunRec(Context&, const std::vector<std::string>&);
int RunList(Context&, const std::vector<std::string>&);
int RunDel(Context&, const std::vector<std::string>&);
int RunGraph(Context&, const std::vector<std::string>&);
int RunSolve(Context&, const std::vector<std::string>&);
int RunSimult(Context&, const std::vector<std::string>&);
int RunDet(Context&, const std::vector<std::string>&);
int RunInverse(Context&, const std::vector<std::string>&);
int RunPfactor(Context&, const std::vector<std::string>&);
int RunPrimes(Context&, const std::vector<std::string>&);
int RunGcm(Context&, const std::vector<std::string>&);
int RunInteg(Context&, const std::vector<std::string>&);
int RunDinteg(Context&, const std::vector<std::string>&);
int RunDelay(Context&, const std::vector<std::string>&);
int RunRoots(Context&, const std::vector<std::string>&);
int RunInter(Context&, const std::vector<std::string>&);
int RunExpand(Context&, const std::vector<std::string>&);
int RunArrange(Context&, const std::vector<std::string>&);
int RunSeek(Context&, const std::vector<std::string>&);
int RunFactor(Context&, const std::vector<std::string>&);
int RunWave(Context&, const std::vector<std::string>&);
int RunLoad(Context&, const std::vector<std::string>&);
int RunDisplay(Context&, const std::vector<std::string>&);
int RunFft(Context&, const std::vector<std::string>&);
int RunDiff(Context&, const std::vector<std::string>&);
int RunOde(Context&, const std::vector<std::string>&);
int RunContour(Context&, const std::vector<std::string>&);
int RunStat(Context&, const std::vector<std::string>&);
int RunTest(Context&, const std::vector<std::string>&);

constexpr CommandEntry kCommands[] = {
    {"calc", "calc [--var NAME=VALUE]... FORMULA", RunCalc},
    {"rec", "rec FORMULA", RunRec},
    {"list", "list", RunList},
    {"del", "del N", RunDel},
    {"graph", "graph --min A --max B --num N [--polar] [--param F2] FORMULA", RunGraph},
    {"solve", "solve ROW... (each ROW \"a1 ... an c\", n rows, n <= 10)", RunSolve},
    {"simult", "simult ROW... (each ROW \"a1 ... an c\", n rows, n <= 10)", RunSimult},
    {"det", "det ROW... (each ROW \"a1 ... an\", n rows, n <= 10)", RunDet},
    {"inverse", "inverse ROW... (each ROW \"a1 ... an\", n rows, n <= 10)", RunInverse},
    {"pfactor", "pfactor N", RunPfactor},
    {"primes", "primes N", RunPrimes},
    {"gcm", "gcm A B", RunGcm},
    {"integ", "integ --min A --max B --num N FORMULA", RunInteg},
    {"roots", "roots --min A --max B --num N [--judge J] [--integer] FORMULA", RunRoots},
    {"inter", "inter --second G --min A --max B --num N [--judge J] FORMULA", RunInter},
    {"expand", "expand FORMULA", RunExpand},
    {"arrange", "arrange FORMULA", RunArrange},
    {"seek", "seek [--integer] [--tolerance T] [--judge J] FORMULA", RunSeek},
    {"factor", "factor [--coeff] [--integer] [--tolerance T] [--root V]... FORMULA", RunFactor},
    {"wave", "wave [--mrd] --from T0 --to T1 [--name FILE] FORMULA", RunWave},
    {"load", "load [--rows] FILE", RunLoad},
    {"display", "display FILE", RunDisplay},
    {"fft",
     "fft [--wave FILE | --mrd FILE] [--average | --continue] --from T0 --to T1 --num N\n"
     "      --show fourier|imaginary|power|corr [--matrix FILE] [FORMULA]",
     RunFft},
    {"delay", "delay --steps N --init V1,V2,...,VK FORMULA", RunDelay},
    {"dinteg", "dinteg --min A --max B --num N --min2 C --max2 D --num2 M FORMULA", RunDinteg},
    {"diff", "diff [--order 2] --width H --min A --max B FORMULA", RunDiff},
    {"ode",
     "ode [--order 2] [--rk] [--plane] --var Y --width H --min A --max B --init Y0 [--slope P0] FORMULA\n"
     "  merida-cli ode --simult [--plane] --var Y --var2 Z --second G --width H --min A --max B --init Y0 "
     "--slope Z0 FORMULA",
     RunOde},
    {"contour",
     "contour --x A,B,N --y C,D,M [--levels K0,K1,D] FORMULA\n"
     "  merida-cli contour --x A,B,N --y C,D,M --draw plot|cube|hide [--levels K0,K1,D] "
     "[--color red|green|skyblue|yellow|multi] [--angles A,B] --out FILE.png|FILE.svg FORMULA",
     RunContour},
    {"stat", "stat freq|ave|regres|multreg [--column K] [--chart] FILE", RunStat},
    {"test",
     "test t|f|chi [--level 5|1] [--pop \"MEAN SD COUNT\"] [--sample \"MEAN SD COUNT\"] [--record FILE --column J] "
     "[--exact]",
     RunTest},
};
}  // namespace merida::cli

int main(int argc, char** argv) {
  using namespace merida;
  using namespace merida::cli;
  std::ios::sync_with_stdio(false);
  // --lang en adds the English of each Japanese error message; --lang ja (the default) does not.
  bool english = false;
  if (argc >= 2 && std::strcmp(argv[1], "--lang") == 0) {
    if (argc < 3 || (std::strcmp(argv[2], "en") != 0 && std::strcmp(argv[2], "ja") != 0)) {
      std::cerr << "usage: merida-cli [--lang en|ja] COMMAND [ARGS]\n";
      return kUsage;
    }
    english = std::strcmp(argv[2], "en") == 0;
    argv[2] = argv[0];
    argv += 2;
    argc -= 2;
  }
  if (argc < 2) {
    std::cerr << "usage: merida-cli [--lang en|ja] COMMAND [ARGS]\ncommands:\n";
    for (const auto& c : kCommands) std::cerr << "  merida-cli " << c.usage << '\n';
    return kUsage;
  }
  const CommandEntry* command = nullptr;
  for (const auto& c : kCommands) {
    if (std::strcmp(c.name, argv[1]) == 0) command = &c;
  }
  if (!command) {
    std::cerr << "merida-cli: unknown command '" << argv[1] << "'\n";
    return kUsage;
  }
  CliHost host;
  host.english = english;
  Engine engine(host);
  AppState state;
  std::error_code ec;
  std::filesystem::path dir = std::filesystem::current_path(ec);
  if (ec) dir = ".";
  state.DisplayLanguage = ReadDisplayLanguage(dir, kEnglish);
  const std::string notice = StoreLoadNotice(LoadUserFunctions(engine, dir));
  if (!notice.empty()) std::cerr << "merida-cli: " << notice << '\n';
  host.sawError = false;  // a bad store line was reported; it does not fail the command
  Context ctx{engine, state, host, dir};
  std::vector<std::string> args(argv + 2, argv + argc);
  int status = command->run(ctx, args);
  std::cout.flush();
  return status;
}
