#include "app/shell/CommandLine.h"

#include "app/shell/ApplicationId.h"

#include <gtest/gtest.h>

using namespace quelmo;

namespace {

std::optional<CommandLineAnswer> answer(QStringList arguments) {
    arguments.prepend(QStringLiteral("quelmo"));
    return answerCommandLine(arguments);
}

TEST(CommandLineTest, NoArgumentsStartTheProgram) {
    EXPECT_FALSE(answer({}));
}

TEST(CommandLineTest, HelpListsBothOptionsAndNothingOfQtsOwn) {
    for (const QString& option : {QStringLiteral("--help"), QStringLiteral("-h")}) {
        const std::optional<CommandLineAnswer> help = answer({option});
        ASSERT_TRUE(help) << option.toStdString();
        EXPECT_EQ(help->exitCode, 0);
        EXPECT_TRUE(help->standardError.isEmpty());
        const QString text = help->standardOutput;
        EXPECT_TRUE(text.contains(QStringLiteral("-h, --help"))) << text.toStdString();
        EXPECT_TRUE(text.contains(QStringLiteral("-v, --version"))) << text.toStdString();
        EXPECT_TRUE(text.contains(QStringLiteral("tidies up unused apps")));
        EXPECT_FALSE(text.contains(QStringLiteral("--help-all")));
    }
}

TEST(CommandLineTest, VersionPrintsTheNameAndTheBuildsVersion) {
    const QString expected = QStringLiteral("quelmo %1\n").arg(applicationVersion);
    for (const QString& option : {QStringLiteral("--version"), QStringLiteral("-v")}) {
        const std::optional<CommandLineAnswer> version = answer({option});
        ASSERT_TRUE(version);
        EXPECT_EQ(version->exitCode, 0);
        EXPECT_EQ(version->standardOutput, expected);
    }
}

// Qt's own options (-platform, --help-all) are not taken either: the program always uses X11.
TEST(CommandLineTest, AnythingElseIsAUsageErrorThatSaysWhatWasWrongAndWhereHelpIs) {
    const std::vector<std::pair<QStringList, QString>> cases = {
        {{"--bogus"}, "Unknown option 'bogus'."},
        {{"-x"}, "Unknown option 'x'."},
        {{"--help-all"}, "Unknown option 'help-all'."},
        {{"-platform", "xcb"}, "Unknown option 'platform'."},
        {{"--version=2"}, "Unexpected value after '--version'."},
        {{"report.txt"}, "Unexpected argument 'report.txt'."},
        {{"--help", "--bogus"}, "Unknown option 'bogus'."},
    };
    for (const auto& [arguments, problem] : cases) {
        const std::optional<CommandLineAnswer> error = answer(arguments);
        ASSERT_TRUE(error) << arguments.join(' ').toStdString();
        EXPECT_EQ(error->exitCode, 2);
        EXPECT_TRUE(error->standardOutput.isEmpty());
        EXPECT_EQ(
            error->standardError,
            QStringLiteral("quelmo: %1\nTry 'quelmo --help' for more information.\n").arg(problem))
            << arguments.join(' ').toStdString();
    }
}

} // namespace
