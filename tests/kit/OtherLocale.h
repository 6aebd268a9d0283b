#pragma once

#include "kit/Places.h"

#include <clocale>
#include <cstdlib>
#include <string>

namespace orvo::test {

/// The process's locale is another one while this lives: "de_DE", with a decimal comma, or "tr_TR", whose small i and
/// large I are not one letter.
class OtherLocale {
public:
    explicit OtherLocale(const std::string& name = "de_DE") : before_(std::setlocale(LC_ALL, nullptr)) {
#ifdef _WIN32
        found_ = std::setlocale(LC_ALL, name == "de_DE" ? "German_Germany.1252" : name.c_str());
#else
        // Made with the tests: few machines have these.
        setenv("LOCPATH", buildTree("tests/locales").c_str(), 1);
        found_ = std::setlocale(LC_ALL, (name + ".UTF-8").c_str());
        unsetenv("LOCPATH");
        if (!found_) found_ = std::setlocale(LC_ALL, (name + ".UTF-8").c_str());
#endif
    }
    ~OtherLocale() { std::setlocale(LC_ALL, before_.c_str()); }
    OtherLocale(const OtherLocale&) = delete;
    OtherLocale& operator=(const OtherLocale&) = delete;
    /// Whether there is such a locale here; else nothing is changed.
    bool found() const { return found_; }

private:
    std::string before_;
    bool found_ = false;
};

} // namespace orvo::test
