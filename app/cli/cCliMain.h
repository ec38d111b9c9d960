// toval-lyric: the lyric lookup, the lyric file forms and the lyric service
// from a shell, without the desktop program. Run() is the whole tool; main()
// only hands it the command line and the two output streams.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

#include "cCliArgs.h"

namespace toval {

// Exit codes a script can rely on.
enum CliExit : int {
    kExitOk = 0,        // done: lyric printed, file written, lyric accepted
    kExitNotFound = 1,  // no lyric for the track
    kExitUsage = 2,     // the command line is wrong
    kExitFile = 3,      // a file could not be read or written
    kExitService = 4,   // the service failed, timed out or refused the lyric
};

class cCliMain {
  public:
    cCliMain(std::ostream& out, std::ostream& err) : out_(out), err_(err) {}

    // args: the command line without the program name.
    int Run(const std::vector<std::string>& args);

    static const char* Usage();

  private:
    int Dispatch(const cCliArgs& a);
    int Lookup(const cCliArgs& a);
    int Print(const cCliArgs& a);
    int Convert(const cCliArgs& a);
    int Send(const cCliArgs& a);

    // The whole file as text; false (with a message) when it cannot be read.
    bool ReadLyricFile(const std::string& path, std::u16string& text);
    // False, with the reason on the error stream, when the text has no line.
    bool HoldsLyric(const std::string& path, const std::u16string& text);
    // The text in the chosen form.
    std::u16string Render(const std::u16string& lyric, const cCliArgs& a);
    int Fail(int code, const std::string& message);

    std::ostream& out_;
    std::ostream& err_;
};

}  // namespace toval
