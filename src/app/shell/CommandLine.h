#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace quelmo {

// What the program prints and the status it ends with when the command line asks for something
// other than starting: the help, the version, or a command line it does not understand.
struct CommandLineAnswer {
    int exitCode = 0;
    QString standardOutput;
    QString standardError;
};

// Status for a command line that is not understood, as for other command-line programs.
inline constexpr int usageErrorStatus = 2;

// Reads the arguments (the program's name first): --help (-h) and --version (-v) are answered,
// anything else is a usage error. No answer means the program should start. The usage line of
// the help names the program as the running application object was started.
std::optional<CommandLineAnswer> answerCommandLine(const QStringList& arguments);

} // namespace quelmo
