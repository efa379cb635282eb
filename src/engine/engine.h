// The formula engine: compiler, evaluator, integrals and sums, user functions.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/host.h"
#include "engine/job.h"
#include "engine/number_text.h"

namespace merida {

constexpr int kMaxTokens = 100;     // tokens of one formula, cells of one program, stack depth
constexpr int kMaxWorkSlot = 50;    // the highest work slot: at most 49 user functions
// Sums compile one slot above the work slot, and a sum inside a called function one above
// that: slots beyond 50 serve nesting, up to a depth that is error 10 (too long).
constexpr int kSlotCount = kMaxWorkSlot + 16;
constexpr int kMaxIntegrals = 10;   // integ and sgm entries of one formula
constexpr int kMaxParameters = 10;
constexpr int kMaxFormulaLength = 4096;  // characters of a formula text or a store line

// Token kinds; a registered user function with k parameters has kind k + 4.
enum TokenKind : int16_t {
  kParenKind = 0,
  kUnaryKind = 1,
  kBinaryKind = 2,
  kOperandKind = 3,
  kCommaKind = 4,
};

// A free variable's token: an operand that is neither a constant nor a number.
bool IsVariableText(std::string_view t);

struct TokenList {
  std::vector<std::string> Text{""};  // tokens occupy 1..Count
  std::vector<int16_t> Kind{0};
  std::vector<int16_t> Precedence{0};
  int16_t Count = 0;

  void clear();
  void push(std::string text, int16_t kind, int16_t precedence);
  // The token texts joined in order: the body as it can be compiled again.
  std::string joined() const;
};

struct FunctionHeader {
  std::string Name;
  int16_t ParamCount = 0;
  std::vector<std::string> Param{""};  // parameters are Param[1..ParamCount]
};

struct IntegralEntry {
  std::string Integrand, LowerText, UpperText, FourthText;
  int16_t State = -1;  // -1 to be computed, 1 computed
  double Value = 0;
};

struct ProgramCell {
  std::string Value;  // token text; an operand's text becomes a number's text when bound
  int16_t Kind = 0;
  int16_t Precedence = 0;
  int16_t Link = 0;
};

// The compiled postfix program, cells 1..100. Every change gets a new identity so that
// restoring an unchanged copy and evaluating an unchanged program cost nothing.
class Program {
 public:
  const ProgramCell& cell(int i) const { return cells_[i]; }
  uint64_t identity() const { return identity_; }

 private:
  friend class Engine;
  friend struct Evaluator;
  std::array<ProgramCell, kMaxTokens + 1> cells_;
  uint64_t identity_ = 0;
};

// A tool window's own copy of a compiled program and its length.
struct SavedProgram {
  Program program;
  int16_t n = 0;
};

// One line of a store file as the loader meets it.
struct StoreLine {
  std::string_view text;
  bool tooLong = false;  // longer than kMaxStoreLine: passed over unread
};
constexpr size_t kMaxStoreLine = 16384;
// Lines that cannot be registered but are kept to be written back: beyond these a store is
// not one this program wrote, and is loaded without them.
constexpr size_t kMaxKeptLines = 256;

// What a store load could not register.
struct StoreLoadReport {
  uint64_t failed = 0;   // lines that could not be registered; the first is shown
  uint64_t dropped = 0;  // of them, lines not kept either: saving would lose them
};

// A merge of this program's functions into the store another program saved.
struct StoreMerge {
  std::string text;  // what to save
  int conflict = 0;  // the error a function added here meets there (7 or 9); 0 when none
};

struct CompiledCode;  // the evaluator's flat form of a program
struct LeanInstr;     // a step of its lean form
using RegisterRunner = double (*)(const LeanInstr* steps, double* reg);

class Engine {
 public:
  explicit Engine(EngineHost& host);
  ~Engine();
  Engine(const Engine&) = delete;
  Engine& operator=(const Engine&) = delete;

  EngineHost& host() { return *host_; }
  void setHost(EngineHost& host) { host_ = &host; }

  // ---- State (one copy for the whole program) ----
  std::string FormulaText, HeaderText, BodyText;
  int16_t CurrentSlot = 1;
  int16_t ErrorFlag = 0;
  int16_t BindToX = -1;
  double XValue = 0;
  int16_t IntegralBinding = -1;
  int16_t StopRequested = 0;
  int16_t UnboundPolicy = -1;
  std::array<TokenList, kSlotCount> TokenTable;
  std::array<FunctionHeader, kSlotCount> FunctionTable;
  std::array<IntegralEntry, kMaxIntegrals + 1> IntegralTable;
  int16_t IntegralCount = 0;
  merida::Program Program;
  // Set by an arithmetic fault (overflow); cleared by BeginRun.
  bool FaultFlag = false;
  // Set when the user cancelled an input box; cleared by BeginRun.
  bool CancelFlag = false;

  // ---- Compilation ----
  void ResetEngine();
  // Step 1 of every caller: flags cleared, BindToX set, integral states reset, FormulaText set.
  void BeginRun(int16_t bindToX, std::string_view formulaBoxText);
  void SplitFormula();
  int16_t ExpandIntegrals();
  int16_t ExpandSigmas();
  void ParseHeader();
  void TokenizeBody();
  int16_t CompilePostfix(int slot);
  void CheckParameters();
  void CollectVariables();
  // True after any error, fault or cancel of the current run.
  bool failed() const { return ErrorFlag == 1 || FaultFlag || CancelFlag; }

  // ---- Integrals and sums ----
  int16_t ComputeIntegrals(int16_t n);
  int16_t ComputeSigmas(int16_t n);

  // ---- Evaluation ----
  double EvaluateProgram(int16_t n);
  double EvaluateConstantText(std::string_view text);
  void ShowError(int code);
  // ShowError and ErrorFlag = 1: the usual way a step reports an error.
  void Fail(int code);
  const std::string& currentMessage() const { return currentMessage_; }
  // Why a tool's action ended without a message, in a line of English ("the start is not below
  // the end"), and the box at fault by its control's name ("Text3") when one is: the window's
  // rules show nothing; its status line and the command line say it.
  void EndSilently(std::string why, std::string box = {}) {
    silentReason_ = std::move(why);
    silentBox_ = std::move(box);
  }
  const std::string& silentReason() const { return silentReason_; }
  const std::string& silentBox() const { return silentBox_; }

  SavedProgram SaveProgram(int16_t n) const;
  void RestoreProgram(const SavedProgram& saved);
  // Replaces every cell whose text is `name` by a number cell holding `value` (15 digits).
  void BindVariableCells(std::string_view name, double value);
  // Replaces every pair of cells (k, `name`) of the first n by one number cell holding
  // value(k) as text (the delay window's timestep(k)); returns the new length.
  int16_t FoldCellPairs(int16_t n, std::string_view name, const std::function<double(double)>& value);
  // True when the program holds sum cells that must be folded at every point.
  bool programHasSums(int16_t n) const;
  // One point of a tool window: restore, fold sums at x, evaluate at x. failed() tells errors.
  // Inline so that a tool's loop goes straight to built lean code.
  double EvaluateAt(const SavedProgram& saved, double x) {
    if (saved.program.identity_ == leanIdentity_ && Program.identity_ == leanIdentity_ && saved.n == leanN_ &&
        evalDepth_ == 0 && (BindToX == 1 || IntegralBinding == 1) && x != 0) [[likely]] {
      return EvaluateLean(x);
    }
    return EvaluateAtSlow(saved, x);
  }

  // Off: every program runs on the full stack machine, never the lean form of tool code.
  // The two must agree to the bit; tests compare them.
  void setLeanCode(bool on);
  // True when the program at depth 0 has a lean form (tests check that cases reach it).
  bool hasLeanCode() const;
  // True when that lean form keeps its values in registers (the fastest way a point runs).
  bool runsInRegisters() const;

  // One point of a tool run that puts numbers into cells of `saved` at every point: cell i
  // (1..saved.n) loads values[cellRegister[i]] when that is >= 0. `code` is the caller's,
  // built when first used or stale, so a point allocates nothing. Each value must be the
  // finite number its cell's 15-digit text reads back as (Round15); the result, errors and
  // faults are then those of writing the texts into the cells.
  double EvaluateBound(CompiledCode& code, const SavedProgram& saved, const int16_t* cellRegister,
                       const double* values, double x);
  // Off: tools write number texts into the cells at every point (the reference for tests).
  void setBoundCells(bool on) { boundCells_ = on; }
  bool boundCells() const { return boundCells_; }

  // True while an evaluation, integral or sum is under way (a window may be handling events
  // inside it); registering and deleting functions wait until it ends.
  bool busy() const { return busyDepth_ > 0; }

  // ---- User functions ----
  int16_t userFunctionCount() const { return static_cast<int16_t>(CurrentSlot - 1); }
  // Rec of the main window; true when the function was registered (false, silently, when busy).
  bool RegisterFormula(std::string_view formulaBoxText);
  // Line k (1-based) of the Function List window.
  std::string FunctionListLine(int k) const;
  // Deletes the k-th function (1-based); false when there is none or the engine is busy.
  bool DeleteFunction(int k);
  // The store file's text: one line per function, "@" for every comma, CR LF endings.
  std::string StoreText() const;
  // Registers every line `next` gives until it gives nullopt. A line that fails is kept as
  // written (StoreText writes it back in its place) while kMaxKeptLines allow; past that, it
  // and every line after it are dropped unread. Only the first failure is shown. A line that
  // calls a missing function registers.
  StoreLoadReport LoadStore(const std::function<std::optional<StoreLine>()>& next);
  // The same on a store text in memory.
  StoreLoadReport LoadStoreText(std::string_view text);
  // Store lines kept as written because they could not be registered.
  size_t keptLineCount() const { return keptLines_.size(); }
  // Lines of the loaded store that were dropped: saving this engine's store would lose them.
  uint64_t droppedStoreLines() const { return droppedLines_; }
  // The functions become those of `text`, loaded without messages.
  void ReplaceStore(std::string_view text);
  // A job's own engine: the functions, the store they came from and the random generator of
  // `other` (busy or not, `other` is only read).
  void CopyStateFrom(const Engine& other);
  // After a job: the random generator goes on from where the job's engine left it.
  void TakeRandomStateFrom(const Engine& other) { randomState_ = other.randomState_; }
  // The store text to save when another program may have saved since this engine last
  // loaded or saved: `current` (an engine holding the file now) without the functions deleted
  // here, then the functions added here, each checked as Rec checks it against what is
  // already there. Equals StoreText() when nobody else saved.
  StoreMerge MergedStore(const Engine& current) const;
  // After saving `text`: the functions become the saved text's (nothing is shown when a line
  // another program added cannot be registered), and it is the base of the next merge.
  void StoreSaved(std::string_view text);

  // The turns of the jobs that write the record table (not part of the state a copy takes).
  JobQueue& recordWriters() { return recordWriters_; }

  // A sum's or an integral's checkpoint: the host is asked every 64th term across all of
  // them (nested ones too), StopRequested read after every term.
  void PollStop() {
    if ((++termsSincePoll_ & 63) == 0) host_->checkpoint();
  }

 private:
  friend struct Evaluator;
  JobQueue recordWriters_;
  uint32_t termsSincePoll_ = 0;
  bool CheckName(std::string_view word);
  void CheckNameUnused(std::string_view name);
  int16_t ClassifyWord(std::string_view word) const;
  bool CheckArgumentCount(std::string_view text, int n);
  bool CheckLength(std::string_view text);
  void CheckSyntax();
  int16_t ExpandCalls(std::string_view name);
  int16_t ComputeEntries(int16_t n, bool sums);
  bool ComputeIntegralEntry(IntegralEntry& entry);
  bool ComputeSumEntry(IntegralEntry& entry);
  std::optional<double> ReadLimit(const std::string& text);
  std::optional<double> AskValue(const std::string& name);
  void ReinsertIntegralArguments(int slot);
  void ReportFault(const char* description);
  void Touch() { Program.identity_ = ++identityCounter_; }
  void SetCell(int i, std::string text, int16_t kind, int16_t precedence);
  double CallUserFunction(int slot, const double* args, int count);
  double CallStepByStep(int slot, const double* args, int count);
  CompiledCode* CallCode(int slot, bool toolMode);
  bool BuildCallCode(int slot, CompiledCode& into);
  void InvalidateCallCache();
  CompiledCode& CodeAtDepth();
  double EvaluateAtSlow(const SavedProgram& saved, double x);
  [[gnu::noinline]] double EvaluateLean(double x);
  [[gnu::noinline]] double EvaluateLeanStack(double x, double rounded);

  EngineHost* host_;
  std::string currentMessage_;
  std::string silentReason_, silentBox_;
  uint64_t identityCounter_ = 0;
  int evalDepth_ = 0;
  std::vector<std::unique_ptr<CompiledCode>> code_;  // one per evaluation depth
  // Compiled bodies by slot and mode (0 main window, 1 tool). Code is never freed or rebuilt
  // while it runs: a call that finds its code running runs a copy (one per depth), and an
  // invalidation during a run retires the cache until the run ends.
  std::vector<std::array<std::unique_ptr<CompiledCode>, 2>> callCache_;
  std::vector<std::unique_ptr<CompiledCode>> callCopies_;
  std::vector<std::array<std::unique_ptr<CompiledCode>, 2>> retiredCache_;
  uint64_t randomState_ = 0x9E3779B97F4A7C15ull;
  uint64_t functionsVersion_ = 0;  // changes whenever functions are registered or deleted
  uint64_t sumsCheckedIdentity_ = ~uint64_t{0};
  bool savedHasSums_ = false;
  // The program whose built code at depth 0 has a lean form: EvaluateAt goes straight to it.
  uint64_t leanIdentity_ = ~uint64_t{0};
  bool leanCode_ = true;
  int16_t leanN_ = 0;
  // Of the code at depth 0 while leanIdentity_ names it: read once per point, not through it.
  bool leanRounded_ = false;
  RegisterRunner leanRun_ = nullptr;
  const LeanInstr* leanSteps_ = nullptr;
  detail::Round15Guess xGuess_;  // consecutive points mostly keep to one binade
  bool boundCells_ = true;
  bool muted_ = false;  // trial compilations show no messages
  // What a word followed by "(" that names no function is: a syntax error in a new formula,
  // error 4 in a registered body (its function was deleted), a call kept by the loader.
  enum class MissingCall : uint8_t { kSyntaxError, kNotFound, kKept };
  MissingCall missingCall_ = MissingCall::kSyntaxError;
  struct KeptLine {
    int16_t after;  // the number of registered functions before it
    std::string text;
  };
  std::vector<KeptLine> keptLines_;
  uint64_t droppedLines_ = 0;
  // A loaded function's store line as written, saved back unchanged (the list shows the
  // function as the tables hold it); empty for a function registered by Rec.
  std::array<std::string, kSlotCount> storeLines_;
  std::vector<std::string> storeBase_;  // the store's lines when last loaded or saved
  int busyDepth_ = 0;
  int leanNesting_ = 0;  // bodies whose lean code is being built, one inside the other

 public:
  // Built-in functions need the generator; exposed for them only.
  double NextRandom(bool reseed);
};

}  // namespace merida
