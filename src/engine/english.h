// English renderings of the texts the program shows only in Japanese (error messages, status
// texts, conclusions, list words). They come from the catalogue translations/merida_en.ts,
// built into the library so that the command line has them too.
#pragma once

#include <string>
#include <string_view>

namespace merida {

// The English of a whole Japanese text, or "" when the catalogue has none.
std::string_view EnglishOf(std::string_view japanese);

// The text with the English of the longest catalogued Japanese part in it, in parentheses:
// "0で割ることは不可です (Division by zero is not allowed)", "x= 1 重根 (double root)". A text
// without a catalogued part comes back as it is.
std::string WithEnglish(std::string_view text);

}  // namespace merida
