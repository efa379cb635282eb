// Applying a job's changes to the shared values, one value at a time.
#include "main/app_state.h"

#include <cstring>

namespace merida {
namespace {

bool SameTable(const RecordFunctionTable& a, const RecordFunctionTable& b) {
  return a.count == b.count && a.dimension == b.dimension && a.kind == b.kind && a.sampleRate == b.sampleRate &&
         std::memcmp(&a.rangeStart, &b.rangeStart, sizeof a.rangeStart) == 0 &&
         std::memcmp(&a.rangeEnd, &b.rangeEnd, sizeof a.rangeEnd) == 0 &&
         std::memcmp(a.values.data(), b.values.data(), sizeof a.values) == 0;
}

template <class T>
void Changed(T& shared, const T& before, const T& after) {
  if (std::memcmp(&before, &after, sizeof(T)) != 0) shared = after;
}

}  // namespace

void ApplyChanges(AppState& shared, const AppState& before, const AppState& after) {
  Changed(shared.DisplayLanguage, before.DisplayLanguage, after.DisplayLanguage);
  Changed(shared.GraphMode, before.GraphMode, after.GraphMode);
  Changed(shared.DivisionCount, before.DivisionCount, after.DivisionCount);
  Changed(shared.ActiveParameterBox, before.ActiveParameterBox, after.ActiveParameterBox);
  Changed(shared.DiffMode, before.DiffMode, after.DiffMode);
  Changed(shared.ColorMode, before.ColorMode, after.ColorMode);
  Changed(shared.Colors, before.Colors, after.Colors);
  Changed(shared.ViewAngleX, before.ViewAngleX, after.ViewAngleX);
  Changed(shared.ViewAngleY, before.ViewAngleY, after.ViewAngleY);
  Changed(shared.MemoryValue, before.MemoryValue, after.MemoryValue);
  Changed(shared.MatrixWindowMode, before.MatrixWindowMode, after.MatrixWindowMode);
  // The table moves as a whole: rows of two runs never mix.
  if (!SameTable(before.Records, after.Records)) shared.Records = after.Records;
}

}  // namespace merida
