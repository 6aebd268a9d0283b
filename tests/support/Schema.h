#pragma once

#include "kit/Places.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

/// Whether xmllint finds that a file follows a schema of docs/, for example "atmos.xsd".
inline testing::AssertionResult followsSchema(const std::filesystem::path& file, const std::string& schema) {
    const std::string command = "xmllint --noout --schema '" + orvo::test::sourceTree("docs/" + schema) + "' '" +
                                file.string() + "' >/dev/null 2>&1";
    if (std::system(command.c_str()) == 0) return testing::AssertionSuccess();
    return testing::AssertionFailure() << file << " does not follow docs/" << schema;
}
