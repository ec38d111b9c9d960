// Audio files for the tests, made as a user's files are made: a tone from sox,
// tagged with the comments sox writes ("Artist=Ann"), the type told by the
// file's extension.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace toval::test {

// Runs a shell command quietly; its exit status.
inline int Shell(const std::string& command) {
    return std::system(("{ " + command + "; } >/dev/null 2>&1").c_str());
}

// True when sox made the file.
inline bool MakeAudio(const std::filesystem::path& path, const std::vector<std::string>& comments,
                      double seconds) {
    std::string options;
    for (const std::string& comment : comments)
        options += (options.empty() ? " --comment '" : " --add-comment '") + comment + "'";
    return Shell("sox -n" + options + " -r 8000 -c 1 '" + path.string() + "' synth " +
                 std::to_string(seconds) + " sine 440") == 0;
}

}  // namespace toval::test
