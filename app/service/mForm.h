// Form values as a request carries them: "key=value&key=value", URL-encoded
// ("+" is a blank, "%XX" a byte). Reading is strict: a "%" that is not
// followed by two hex digits makes the whole form malformed, so a broken
// client gets a clear refusal instead of a half-read lyric.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace toval::service {

using cForm = std::vector<std::pair<std::string, std::string>>;

// Decodes one key or value; false on a broken escape.
bool DecodeFormText(std::string_view text, std::string& out);

// Reads a whole form into `form` (keys and values decoded, in their order).
// A piece without "=" is a key with an empty value; empty pieces are skipped.
// False when an escape is broken or there are more than maxFields pieces.
bool ParseForm(std::string_view text, cForm& form, size_t maxFields = 64);

// The first value of `key`, or nullptr when the form has none.
const std::string* FormValue(const cForm& form, std::string_view key);

// The value of `key` as a 32-bit decimal ("-" allowed); false when missing,
// not a plain decimal or out of range.
bool FormNumber(const cForm& form, std::string_view key, int32_t& value);

}  // namespace toval::service
