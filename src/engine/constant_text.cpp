// Constant texts (input boxes, limits): numbers, PI, E, + - * / ^ and parentheses.
#include <string>
#include <vector>

#include "engine/evaluator.h"
#include "engine/number_text.h"

namespace merida {

double Engine::EvaluateConstantText(std::string_view text) {
  struct Tok {
    char op;  // 0 for a number
    double value;
  };
  std::vector<Tok> tokens;
  std::string s;
  for (char ch : text) {
    if (ch != ' ' && ch != '\t') s += ch;  // blanks separate nothing, as in a number text
  }
  if (!s.empty() && s[0] == '-') s.insert(0, 1, '0');
  else if (!s.empty() && s[0] == '+') s.erase(0, 1);

  auto isOp = [](char ch) { return ch == '+' || ch == '-' || ch == '*' || ch == '/' || ch == '^' || ch == '(' || ch == ')'; };
  size_t i = 0;
  while (i < s.size()) {
    char ch = s[i];
    if (isOp(ch)) {
      // "(-x" means "(0-x"
      if ((ch == '-' || ch == '+') && !tokens.empty() && tokens.back().op == '(') tokens.push_back({0, 0});
      tokens.push_back({ch, 0});
      ++i;
      continue;
    }
    size_t j = i;
    while (j < s.size() && !isOp(s[j])) {
      // keep a signed exponent inside its number: 1E-5
      if ((s[j] == 'E' || s[j] == 'e') && j + 1 < s.size() && (s[j + 1] == '-' || s[j + 1] == '+') && j > i &&
          IsNumeric(std::string_view(s).substr(i, j - i))) {
        j += 2;
        continue;
      }
      ++j;
    }
    std::string_view word = std::string_view(s).substr(i, j - i);
    double v = word == "PI" ? kPiValue : word == "E" ? kEValue : ReadLenient(word);
    tokens.push_back({0, v});
    i = j;
  }
  if (tokens.size() > static_cast<size_t>(kMaxTokens)) {
    Fail(10);
    return 0;
  }
  auto precedence = [](char op) { return op == '^' ? 1 : (op == '*' || op == '/') ? 2 : 3; };
  std::vector<Tok> out, ops;
  for (const Tok& t : tokens) {
    if (t.op == 0) {
      out.push_back(t);
    } else if (t.op == '(') {
      ops.push_back(t);
    } else if (t.op == ')') {
      while (!ops.empty() && ops.back().op != '(') out.push_back(ops.back()), ops.pop_back();
      if (ops.empty()) {
        Fail(23);
        return 0;
      }
      ops.pop_back();
    } else {
      while (!ops.empty() && ops.back().op != '(' && precedence(ops.back().op) <= precedence(t.op)) {
        out.push_back(ops.back()), ops.pop_back();
      }
      ops.push_back(t);
    }
  }
  while (!ops.empty()) {
    if (ops.back().op == '(') {
      Fail(23);
      return 0;
    }
    out.push_back(ops.back()), ops.pop_back();
  }
  if (out.empty()) return 0;  // an empty box reads as 0
  std::vector<double> stack;
  for (const Tok& t : out) {
    if (t.op == 0) {
      stack.push_back(t.value);
      continue;
    }
    if (stack.size() < 2) {
      Fail(22);
      return 0;
    }
    double b = stack.back();
    stack.pop_back();
    double a = stack.back();
    Builtin fn = t.op == '+' ? Builtin::kAdd : t.op == '-' ? Builtin::kSub : t.op == '*' ? Builtin::kMul
                 : t.op == '/' ? Builtin::kDiv : Builtin::kPow;
    Applied r = ApplyBuiltin(fn, a, b);
    if (r.status == kFault) {
      ReportFault(r.fault);
      return 0;
    }
    if (r.status) {
      Fail(r.status);
      return 0;
    }
    stack.back() = r.value;
  }
  if (stack.size() != 1) {
    Fail(22);
    return 0;
  }
  return stack.back();
}

}  // namespace merida
