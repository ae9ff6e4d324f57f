#pragma once

// A throw-away folder tree standing in for "/" or a data folder.

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace quelmo::test {

class FixtureTree {
public:
    QString root() const { return dir_.path(); }
    QString path(const QString& relative) const { return dir_.filePath(relative); }

    void write(const QString& relative, const QByteArray& content) const {
        const QString file = path(relative);
        QDir().mkpath(QFileInfo(file).path());
        QFile out(file);
        if (out.open(QIODevice::WriteOnly | QIODevice::Truncate))
            out.write(content);
    }
    void remove(const QString& relative) const { QFile::remove(path(relative)); }

private:
    QTemporaryDir dir_;
};

} // namespace quelmo::test
