#pragma once

// A throw-away folder tree standing in for "/" or a data folder.

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace quelmo::test {

struct FixtureTree {
    QTemporaryDir dir;
    QString path(const QString& relative) const { return dir.filePath(relative); }
    void write(const QString& relative, const QByteArray& content) const {
        QDir().mkpath(QFileInfo(path(relative)).path());
        QFile out(path(relative));
        if (out.open(QIODevice::WriteOnly | QIODevice::Truncate))
            out.write(content);
    }
};

} // namespace quelmo::test
