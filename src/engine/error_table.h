// The numbered user-error messages (Japanese in both display languages).
#pragma once

#include <string>

namespace merida {

// The message of an error number, or nullptr for a number the table does not hold.
const char* ErrorMessage(int code);

}  // namespace merida
