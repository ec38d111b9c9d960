// The process-wide choice of converter: the TovalStrings library when it could
// be loaded at start, the built-in cStrings otherwise (and for good after the
// library's first failure).
#pragma once

#include <string>
#include <string_view>

#include "base/cStrings.h"
#include "base/cStringsDLL.h"
#include "platform/StringsLibrary.h"

namespace toval {

// The converter in use.
cStrings& Strings();
// True while the library is loaded and has not failed.
bool StringsDLLAvailable();
// The library adapter while it is available, else nullptr.
cStringsDLL* StringsDLL();

// Called once at start: loads the library through the platform's loader. When
// that fails, writes the reason to the error trail and keeps the built-in
// conversions; never shows anything. Returns StringsDLLAvailable().
bool tryLoadStringsDLL(StringsLibraryLoader& loader);
// Back to the built-in conversions (shutdown, tests).
void resetStringsDLL();

// The text of a text file's bytes: UTF-16 (little- or big-endian) behind its
// byte-order mark, otherwise UTF-8 with any UTF-8 mark dropped.
std::u16string TextFileTOwstring(const std::string& bytes);
// False for what is no text at all (a picture, an audio file, a UTF-16 file
// without its mark): a NUL character, or more than one control character in
// ten. Tabs, line ends and form feeds are text.
bool IsText(std::u16string_view text);

}  // namespace toval
