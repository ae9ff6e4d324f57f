#pragma once

// Readable texts in test failure messages.

#include <QString>
#include <ostream>

inline void PrintTo(const QString& text, std::ostream* os) {
    *os << '"' << text.toStdString() << '"';
}
