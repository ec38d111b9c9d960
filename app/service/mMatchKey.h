// The key under which a track's artist or title is matched: the text without
// blanks, in lower case, with accents taken off the Latin, Greek and Cyrillic
// letters ("Ann É" and "anne" match; "Sigur Rós" and "sigurros" match).
#pragma once

#include <string>
#include <string_view>

namespace toval::service {

// UTF-8 in, UTF-8 out. Never fails: a broken sequence reads as Latin-1, as the
// program's own UTF-8 reading does.
std::string MatchKey(std::string_view utf8);

}  // namespace toval::service
