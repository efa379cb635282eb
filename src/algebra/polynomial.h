// The Intersection Point window's polynomial tools: Expand, Arrange, Seek and Factor.
// The formula engine only evaluates each term's coefficient; the rest works on arrays.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "engine/engine.h"

namespace merida {

constexpr int kMaxPolynomialDegree = 50;

struct Polynomial {
  std::string varName;  // the first variable met in the terms ("" when none)
  std::array<double, kMaxPolynomialDegree + 1> coef{};  // coef[i] belongs to varName^i
  int degree = 0;       // the highest power seen (its coefficient may be 0)
};

// Coefficient extraction of a body text, term by term. `varName` carries the variable across
// calls (Expand checks every bracket against the first). nullopt: the engine has shown its
// message (or faulted, or the user stopped the run).
std::optional<Polynomial> ExtractCoefficients(Engine& engine, std::string_view body, std::string& varName);

// Expand, Arrange and Factor's quotient write zero coefficients differently.
std::string ExpandText(const Polynomial& p);
std::string ArrangeText(const Polynomial& p);

// One quadratic (or linear, a = 0) factor a*x^2 + b*x + c found by Seek.
struct PolyFactor {
  double a = 0, b = 0, c = 0;
};

enum class RootKind : int16_t { kComplex = -1, kDouble = 0, kSimple = 1 };

struct PolyRoot {
  double value = 0;  // 0 for one of a complex pair
  RootKind kind = RootKind::kSimple;
};

// The factors in order found, multiplied out as text: "(x^2+x+1)*(x-1)".
std::string FactorListText(std::string_view varName, const std::vector<PolyFactor>& factors);

// Seek's list lines: "x= 2", "x= 1 重根", "x= 虚根".
std::vector<std::string> RootLines(const std::vector<PolyRoot>& roots);

// Snaps v to the nearest integer when it is within `tolerance` of it (halves to even;
// magnitudes beyond 16 bits stay as they are).
double SnapToInteger(double v, double tolerance);

// How a polynomial tool ended.
enum class PolyEnd {
  kDone,            // the boxes and list below are the result
  kSilent,          // nothing to do (a constant, a box that is not a number): nothing changes
  kError,           // the engine has shown its message; nothing changes
  kFault,           // arithmetic overflow: no message, nothing changes
  kStopped,         // the window was closed during the run
  kNoConvergence,   // Bairstow found no factor from any start: nothing changes
};

struct PolyResult {
  PolyEnd end = PolyEnd::kSilent;
  std::optional<std::string> secondFunction;  // new text of Text5
  std::optional<std::vector<std::string>> lines;  // new list, when the list is replaced
  std::vector<double> rootX;                  // the roots behind the new list (Seek)
};

// The window's polynomial state: the last extraction, the working polynomial that Factor
// divides, and the factors taken off so far. One per window, until Close.
class PolynomialTools {
 public:
  explicit PolynomialTools(Engine& engine);

  // Expand: the main formula as a product of bracketed polynomials, multiplied out.
  PolyResult expand(std::string_view formula);
  // Arrange: the terms collected by power; the working polynomial becomes this one.
  PolyResult arrange(std::string_view formula);
  // Seek: every root, real and complex. `toleranceBox` is Text7; `judge` the judge value
  // the last Go or Inter read; `roundOn` the Integer check.
  PolyResult seek(std::string_view formula, std::string_view toleranceBox, double judge, bool roundOn);
  // Factor: with `polynomialBox` (Text6) empty, every real root of the last Seek in turn;
  // with a number, the factor of that root is taken off the working polynomial.
  PolyResult factor(std::string_view polynomialBox, std::string_view toleranceBox, double judge, bool coefficientOn);
  // The engine the tools compute on from now on (a copy of the tools computes on a job's).
  void bind(Engine& engine) { engine_ = &engine; }
  // Close: the factoring starts afresh.
  void close() { workDegree_ = 0; }

  // Seek's random starts come from the clock; a test fixes them.
  void seedRandom(uint64_t seed) {
    seeded_ = true;
    random_.seed(seed);
  }
  // Bairstow's bounds: iterations from one start, and starts before Seek gives up.
  static constexpr int kIterationsPerStart = 500;
  static constexpr int kStarts = 64;

  const Polynomial& polynomial() const { return poly_; }
  int workDegree() const { return workDegree_; }
  const std::string& factorPrefix() const { return factorPrefix_; }
  double integerTolerance() const { return integerTolerance_; }

 private:
  // Extraction of the main formula's body; sets the engine flags the tools start from.
  std::optional<Polynomial> extract(std::string_view formula);
  // Divides `work` (degree m) by the factor of root v; the factor and quotient texts, or
  // nullopt with error 53 shown when the remainder exceeds the judge value.
  struct Division {
    std::string factor, quotient;
  };
  std::optional<Division> divide(std::array<double, kMaxPolynomialDegree + 1>& work, int m, double v, double judge,
                                  bool coefficientOn);

  Engine* engine_;
  Polynomial poly_;
  std::array<double, kMaxPolynomialDegree + 1> work_{};
  int workDegree_ = 0;
  std::string factorPrefix_;
  std::vector<PolyRoot> roots_;
  double integerTolerance_ = 1e-5;
  std::mt19937_64 random_;
  bool seeded_ = false;
};

}  // namespace merida
