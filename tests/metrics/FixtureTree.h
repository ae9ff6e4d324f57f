#pragma once

// Machine fixture trees (copies of the files the readers use) and writable copies of them.

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

namespace quelmo::test {

inline QString machine(const QString& name) {
    return QStringLiteral(QUELMO_FIXTURES_DIR "/machines/") + name;
}

// A private copy of a fixture tree that a test may change while readers hold files open.
class FixtureCopy {
public:
    explicit FixtureCopy(const QString& name) {
        const QDir source(machine(name));
        QDirIterator files(source.path(), QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            const QString from = files.next();
            const QString to = dir_.filePath(source.relativeFilePath(from));
            QDir().mkpath(QFileInfo(to).path());
            QFile::copy(from, to);
        }
    }
    QString root() const { return dir_.path(); }
    // Rewrites the file in place (same inode), as the kernel would update an attribute.
    void write(const QString& relative, const QByteArray& contents) const {
        QDir().mkpath(QFileInfo(dir_.filePath(relative)).path());
        QFile file(dir_.filePath(relative));
        if (file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            file.write(contents);
    }
    void remove(const QString& relative) const {
        QDir(dir_.filePath(relative)).removeRecursively();
    }

private:
    QTemporaryDir dir_;
};

} // namespace quelmo::test
