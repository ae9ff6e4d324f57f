#include "app/shell/CommandLine.h"

#include "app/shell/ApplicationId.h"

#include <gtest/gtest.h>

using namespace quelmo;

namespace {

std::optional<CommandLineAnswer> answer(QStringList arguments) {
    arguments.prepend(QStringLiteral("quelmo"));
    return answerCommandLine(arguments);
}

// No arguments start the program; help lists both options and nothing of Qt's own; the version
// is the name and the build's version.
TEST(CommandLineTest, NoArgumentsStartTheProgramHelpAndVersionAnswer) {
    EXPECT_FALSE(answer({}));
    for (const char* option : {"--help", "-h", "--version", "-v"}) {
        const std::optional<CommandLineAnswer> reply = answer({QString::fromLatin1(option)});
        ASSERT_TRUE(reply) << option;
        EXPECT_EQ(reply->exitCode, 0);
        EXPECT_TRUE(reply->standardError.isEmpty());
        const QString text = reply->standardOutput;
        if (QByteArray(option).contains('v')) {
            EXPECT_EQ(text, QStringLiteral("quelmo %1\n").arg(applicationVersion));
            continue;
        }
        for (const char* part : {"-h, --help", "-v, --version", "tidies up unused apps"})
            EXPECT_TRUE(text.contains(QLatin1String(part))) << text.toStdString();
        EXPECT_FALSE(text.contains(QStringLiteral("--help-all")));
    }
}

// Qt's own options (-platform, --help-all) are not taken either: the program always uses X11.
TEST(CommandLineTest, AnythingElseIsAUsageErrorThatSaysWhatWasWrongAndWhereHelpIs) {
    const std::vector<std::pair<QStringList, QString>> cases = {
        {{"--bogus"}, "Unknown option 'bogus'."},
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
