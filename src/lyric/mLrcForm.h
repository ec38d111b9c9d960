// The LRC forms found in the wild, beside the line records the program writes
// itself. Files from other players and from the web stamp times as
// [mm:ss.xx], [mm:ss:xx], [mm:ss,xx], [h:mm:ss.xx] or [mm:ss], with blanks
// inside the brackets, several stamps before one text, word times as <time> or
// as [time] between the words, and a header [offset:ms]. The record reader
// (cLyricLine::setLoad) would read several of these wrongly, so a line that
// starts with such a stamp is read here instead; a line the program writes as a
// record ([ms] or []) never is, and an LRC line the program writes
// ([mm:ss.cc]text) reads here exactly as the record reader reads it.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "lyric/cLyricLine.h"

namespace toval {

// The milliseconds of the text between the brackets of an LRC time stamp, or
// false when it is not one. Blanks are ignored; m:s, m:s.f, m:s,f, m:s:f
// (hundredths behind a colon, not hours) and h:m:s.f; one fraction digit is
// tenths, two are hundredths, three milliseconds, more are cut to three.
bool ParseLrcStamp(std::u16string_view stamp, int32_t& ms);

// Reads `piece` when it starts (after blanks) with an LRC time stamp and
// appends its lines to `out`: one line, or one per stamp when several stamps
// share timed words (the word times of each repeat move with its line time).
// Returns false, appending nothing, for any other piece.
bool ReadLrcLine(std::u16string_view piece, std::vector<std::shared_ptr<cLyricLine>>& out);

// A text line in which a time stamp stands behind right-to-left text: the form
// in which the program writes a right-to-left line as LRC. Reads it as one line
// with the stamp's time and the text around it.
bool ReadRightToLeftLrcLine(std::u16string_view piece, std::shared_ptr<cLyricLine>& out);

// "[offset:+500]" (any case, blanks allowed): the milliseconds by which the
// file's times come early (positive) or late.
bool ReadOffsetTag(std::u16string_view piece, int32_t& offset);

// Moves every time of the line, and of its words, by `delta` ms, held inside
// the 32-bit range (the no-time mark stays as it is).
void ShiftLineTimes(cLyricLine& line, int64_t delta);

}  // namespace toval
