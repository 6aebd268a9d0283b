#pragma once

#include <sys/resource.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace orvo::test {

/// How a run of the program ended.
struct Outcome {
    int status = -1;        ///< 128 and the signal's number where one ended it
    std::string out, error; ///< what it said on its two streams
};

/// Runs `orvosky` with these words in a folder, and waits for its end. A variable of the environment that is given as
/// empty is taken out. `fileLimit` bounds what the program may write to one file, in bytes.
Outcome runProgram(const std::filesystem::path& folder, std::vector<std::string> words,
                   const std::map<std::string, std::string>& environment = {}, rlim_t fileLimit = RLIM_INFINITY);

} // namespace orvo::test
