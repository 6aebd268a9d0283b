#pragma once

#include "kit/OtherLocale.h"
#include "kit/Places.h"
#include "kit/TemporaryFolder.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

/// A folder for a test's files, gone after the test.
class CloudFiles : public testing::Test {
protected:
    /// Of a text file, whose line ends are the system's.
    static std::string contents(const std::filesystem::path& file) {
        std::ostringstream text;
        text << std::ifstream(file).rdbuf();
        return text.str();
    }
    static std::string golden(const char* name) {
        return contents(std::filesystem::path(orvo::test::testData()) / "clouds" / name);
    }
    std::string path(const char* name) const { return (folder_ / name).string(); }
    std::string write(const char* name, const std::string& text) const { return folder_.write(name, text).string(); }

    orvo::test::TemporaryFolder folder_;
};

/// The text with the first `from` changed to `to`; a text without it is a fault of the test.
inline std::string changed(std::string text, const std::string& from, const std::string& to) {
    const auto at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    if (at != std::string::npos) text.replace(at, from.size(), to);
    return text;
}

/// The text with the first value of an attribute changed.
inline std::string withValue(std::string text, const std::string& attribute, const std::string& value) {
    const std::string head = '\t' + attribute + " = \"";
    const auto at = text.find(head);
    EXPECT_NE(at, std::string::npos) << attribute;
    if (at == std::string::npos) return text;
    const auto start = at + head.size();
    return text.replace(start, text.find('"', start) - start, value);
}

/// The text without the first line of an attribute.
inline std::string withoutAttribute(std::string text, const std::string& attribute) {
    const auto at = text.find('\t' + attribute + " = ");
    EXPECT_NE(at, std::string::npos) << attribute;
    if (at == std::string::npos) return text;
    return text.erase(at, text.find('\n', at) - at);
}
