#pragma once

// A throw-away folder tree standing in for "/" or a data folder: empty, or a private copy of one
// of the machine fixture trees (copies of the files the readers use) that a test may change.

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace quelmo::test {

inline QString machine(const QString& name) {
    return QStringLiteral(QUELMO_FIXTURES_DIR "/machines/") + name;
}

class FixtureTree {
public:
    FixtureTree() = default;
    explicit FixtureTree(const QString& machineName) {
        const QDir source(machine(machineName));
        QDirIterator files(source.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString from = files.next();
            const QString to = dir_.filePath(source.relativeFilePath(from));
            QDir().mkpath(QFileInfo(to).path());
            QFile::copy(from, to);
        }
    }

    QString root() const { return dir_.path(); }
    QString path(const QString& relative) const { return dir_.filePath(relative); }
    // Rewrites the file in place (same inode), as the kernel would update an attribute.
    void write(const QString& relative, const QByteArray& contents) const {
        QDir().mkpath(QFileInfo(path(relative)).path());
        QFile file(path(relative));
        if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            file.write(contents);
    }
    void remove(const QString& relative) const { QDir(path(relative)).removeRecursively(); }

private:
    QTemporaryDir dir_;
};

} // namespace quelmo::test
