#pragma once

#include "base/Messages.h"
#include "base/Units.h"
#include "commands/Host.h"
#include "files/Workspace.h"
#include "kit/MessageSink.h"
#include "kit/TemporaryFolder.h"
#include "scene/Scene.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>

/// The running host with a new scene, the usual units, and a project folder of its own that is removed at the end.
class CommandFixture : public testing::Test {
protected:
    CommandFixture() {
        std::filesystem::create_directories(project / "scenes");
        static const bool started = (host::Host::instance().start({project, {}, {}}), true);
        (void)started;
        renew();
        host::Host::instance().workspace().open(project);
    }
    ~CommandFixture() override { renew(); }

    host::mel::Value run(const std::string& mel) { return host::Host::instance().interpreter().execute(mel); }
    std::string text(const std::string& mel) { return run(mel).toString(); }
    double number(const std::string& mel) { return run(mel).toFloat(); }
    bool holds(const std::string& mel) { return run(mel).toBool(); }
    host::mel::FloatArray numbers(const std::string& mel) { return run(mel).toFloatArray(); }
    host::mel::StringArray texts(const std::string& mel) { return run(mel).toStringArray(); }
    /// What the script fails with; "no error" when it does not.
    std::string failure(const std::string& mel) {
        try {
            run(mel);
            return "no error";
        } catch (const host::mel::Error& e) {
            return e.what();
        }
    }
    /// The path of a file of the project, as scripts write it.
    std::string path(const std::string& name) const { return (project / name).generic_string(); }
    std::string quoted(const std::string& name) const { return '"' + path(name) + '"'; }
    void write(const std::string& name, const std::string& content) const {
        orvo::test::write(project / name, content);
    }
    std::string read(const std::string& name) const { return project.read(name); }

    orvo::test::TemporaryFolder project;
    std::string warnings;

private:
    static void renew() {
        host::Host::instance().scene().reset();
        host::setLinearUnit(host::LinearUnit::Centimetre);
        host::setAngularUnit(host::AngularUnit::Degree);
        host::setTimeUnit(host::filmUnit);
    }
    orvo::test::MessageSink sink_{[this](host::Severity severity, std::string_view text) {
        if (severity == host::Severity::Warning) warnings += std::string(text) + '\n';
    }};
};
