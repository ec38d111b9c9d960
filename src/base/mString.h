// The process-wide choice of converter: the TovalStrings library when it could
// be loaded at start, the built-in cStrings otherwise (and for good after the
// library's first failure).
#pragma once

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

}  // namespace toval
