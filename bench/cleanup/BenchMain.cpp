// Entry point of the cleanup benchmarks: the Qt application object the readers expect (socket
// notifiers, settings), then every registered benchmark.

#include <QCoreApplication>
#include <benchmark/benchmark.h>

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("quelmo-bench"));
    QCoreApplication::setApplicationName(QStringLiteral("quelmo-bench"));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
