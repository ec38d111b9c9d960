// The error trail: one line per failure appended to Error.log in the program's
// folder, "yyyy/mm/dd hh:ss - text ; text ; ...\r\n". The stamp shows hours and
// then seconds, no minutes: that is the file's established format.
//
// Procedures report through ErrorTrail(); the program installs its log once at
// start (setErrorTrail). Until then, and in tests that install nothing, lines
// are dropped. Guarded() is the one helper that turns a failure inside a named
// procedure into a trail line plus the procedure's neutral result.
#pragma once

#include <exception>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "platform/Clock.h"

namespace toval {

class cErrorLog {
  public:
    // folder: the program folder, with its trailing separator.
    cErrorLog(std::u16string folder, Clock& clock);
    virtual ~cErrorLog() = default;

    // Appends one line. Texts are UTF-8; the first is "object.procedure".
    virtual void Write(const std::vector<std::string>& texts);

    // The line as written, CR LF included.
    static std::string FormatLine(const cDateTime& when, const std::vector<std::string>& texts);

    const std::u16string& File() const { return file_; }

  private:
    std::u16string file_;
    Clock& clock_;
};

// The log in use, or nullptr (lines are dropped). Not owned.
void setErrorTrail(cErrorLog* log);
cErrorLog* ErrorTrailLog();

// Writes one trail line; never throws.
void ErrorTrail(std::initializer_list<std::string_view> texts) noexcept;

// Runs body; if it throws, writes "procedure ; description" to the trail and
// returns neutral instead.
template <class T, class F>
T Guarded(std::string_view procedure, T neutral, F&& body) noexcept {
    try {
        return std::invoke(std::forward<F>(body));
    } catch (const std::exception& e) {
        ErrorTrail({procedure, e.what()});
    } catch (...) {
        ErrorTrail({procedure, "unknown failure"});
    }
    return neutral;
}

template <class F>
void Guarded(std::string_view procedure, F&& body) noexcept {
    try {
        std::invoke(std::forward<F>(body));
    } catch (const std::exception& e) {
        ErrorTrail({procedure, e.what()});
    } catch (...) {
        ErrorTrail({procedure, "unknown failure"});
    }
}

}  // namespace toval
