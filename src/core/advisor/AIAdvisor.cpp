#include "advisor/AIAdvisor.h"

namespace quelmo {

AIAdvisor::AIAdvisor(QObject* parent) : QObject(parent) {}

AIAdvisor::Status AIAdvisor::status() const { return {false, QStringLiteral("Unavailable")}; }

} // namespace quelmo
