#include "app/shell/CommandLine.h"

#include "app/shell/ApplicationId.h"

#include <QCommandLineParser>

namespace quelmo {

namespace {

CommandLineAnswer usageError(const QString& problem) {
    return {usageErrorStatus,
            {},
            QStringLiteral("quelmo: %1\nTry 'quelmo --help' for more information.\n").arg(problem)};
}

} // namespace

std::optional<CommandLineAnswer> answerCommandLine(const QStringList& arguments) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Tray utility that shows how busy the computer is and tidies up unused "
                       "apps.\n\nWithout options it starts in the desktop's tray; started again, "
                       "it opens the running one's popover."));
    // Declared by hand rather than with addHelpOption: Qt's own options (--help-all) are not
    // taken.
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Show this help and exit."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Show the version and exit."));
    parser.addOption(help);
    parser.addOption(version);
    // "-platform" is one unknown option, not eight unknown letters.
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);

    if (!parser.parse(arguments))
        return usageError(parser.errorText());
    if (!parser.positionalArguments().isEmpty())
        return usageError(
            QStringLiteral("Unexpected argument '%1'.").arg(parser.positionalArguments().first()));
    if (parser.isSet(help))
        return CommandLineAnswer{0, parser.helpText(), {}};
    if (parser.isSet(version))
        return CommandLineAnswer{
            0, QStringLiteral("quelmo %1\n").arg(QString::fromLatin1(applicationVersion)), {}};
    return std::nullopt;
}

} // namespace quelmo
