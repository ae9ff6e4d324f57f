#include "platform/linux/apps/DesktopEntryIndex.h"

#include "platform/linux/common/KernelFile.h"
#include "platform/linux/common/RootPath.h"

#include <QDir>
#include <QFile>
#include <sys/stat.h>

namespace quelmo::linux_platform {
namespace {

// Keys worth keeping from each entry: the name in every language, the window class and the
// program it starts.
bool keepKey(const QString& key) {
    return key == QLatin1String("Name") || key.startsWith(QLatin1String("Name[")) ||
           key == QLatin1String("StartupWMClass") || key == QLatin1String("Exec") ||
           key == QLatin1String("TryExec");
}

QString lastDottedPart(const QString& id) {
    const qsizetype dot = id.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? id : id.sliced(dot + 1);
}

} // namespace

DesktopEntryIndex::DesktopEntryIndex(QStringList dataDirs) : dataDirs_(std::move(dataDirs)) {}

QStringList DesktopEntryIndex::sessionDataDirs(const QString& root) {
    QStringList dirs;
    QString home = qEnvironmentVariable("XDG_DATA_HOME");
    if (home.isEmpty() || !QDir::isAbsolutePath(home))
        home = QDir::homePath() + QStringLiteral("/.local/share");
    dirs << QString::fromStdString(rootedPath(root, home.toStdString()));
    QString system = qEnvironmentVariable("XDG_DATA_DIRS");
    if (system.isEmpty())
        system = QStringLiteral("/usr/local/share:/usr/share");
    for (const QString& dir : system.split(QLatin1Char(':'), Qt::SkipEmptyParts)) {
        if (QDir::isAbsolutePath(dir))
            dirs << QString::fromStdString(rootedPath(root, dir.toStdString()));
    }
    dirs.removeDuplicates();
    return dirs;
}

const InstalledApp* DesktopEntryIndex::find(const QString& id) {
    refreshIfChanged();
    const auto it = byId_.constFind(id);
    return it == byId_.constEnd() ? nullptr : &apps_[static_cast<std::size_t>(*it)];
}

const InstalledApp* DesktopEntryIndex::findByWindowClass(const QString& instance,
                                                         const QString& windowClass) {
    refreshIfChanged();
    for (const QString& name : {windowClass, instance}) {
        if (name.isEmpty())
            continue;
        const auto it = byWindowClass_.constFind(name);
        if (it != byWindowClass_.constEnd())
            return &apps_[static_cast<std::size_t>(*it)];
    }
    for (const QString& name : {windowClass, instance}) {
        if (const InstalledApp* app = matchClass(name))
            return app;
    }
    return nullptr;
}

const InstalledApp* DesktopEntryIndex::matchClass(const QString& name) {
    if (name.isEmpty())
        return nullptr;
    const QString lower = name.toLower();
    const auto exact = byLowerId_.constFind(lower);
    if (exact != byLowerId_.constEnd())
        return &apps_[static_cast<std::size_t>(*exact)];
    const auto part = byLowerLastPart_.constFind(lower);
    if (part != byLowerLastPart_.constEnd() && part->size() == 1)
        return &apps_[static_cast<std::size_t>(part->front())];
    return nullptr;
}

DesktopEntryIndex::FolderStamp DesktopEntryIndex::stampOf(const QString& path) {
    FolderStamp stamp;
    stamp.path = path;
    struct stat info {};
    if (::stat(QFile::encodeName(path).constData(), &info) == 0 && S_ISDIR(info.st_mode)) {
        stamp.exists = true;
        stamp.seconds = info.st_mtim.tv_sec;
        stamp.nanoseconds = info.st_mtim.tv_nsec;
    }
    return stamp;
}

void DesktopEntryIndex::refreshIfChanged() {
    bool changed = !built_;
    for (std::size_t i = 0; !changed && i < stamps_.size(); ++i) {
        const FolderStamp now = stampOf(stamps_[i].path);
        changed = now.exists != stamps_[i].exists || now.seconds != stamps_[i].seconds ||
                  now.nanoseconds != stamps_[i].nanoseconds;
    }
    if (changed)
        rebuild();
}

void DesktopEntryIndex::rebuild() {
    built_ = true;
    stamps_.clear();
    apps_.clear();
    byId_.clear();
    byWindowClass_.clear();
    byLowerId_.clear();
    byLowerLastPart_.clear();

    // An id seen in a folder of higher precedence hides the same id further down, even when
    // that first entry is hidden (Hidden=true means "deleted").
    QHash<QString, bool> seenIds;
    for (const QString& dataDir : dataDirs_) {
        const QString applications = dataDir + QStringLiteral("/applications");
        stamps_.push_back(stampOf(applications));
        if (stamps_.back().exists)
            scanFolder(applications, applications, 0, seenIds);
    }

    for (qsizetype i = 0; i < static_cast<qsizetype>(apps_.size()); ++i) {
        const InstalledApp& app = apps_[static_cast<std::size_t>(i)];
        byId_.insert(app.id, i);
        const QString wmClass = app.entry.value(QStringLiteral("StartupWMClass"));
        if (!wmClass.isEmpty() && !byWindowClass_.contains(wmClass))
            byWindowClass_.insert(wmClass, i);
        const QString lowerId = app.id.toLower();
        if (!byLowerId_.contains(lowerId))
            byLowerId_.insert(lowerId, i);
        byLowerLastPart_[lastDottedPart(lowerId)].append(i);
    }
}

void DesktopEntryIndex::scanFolder(const QString& applicationsDir, const QString& folder, int depth,
                                   QHash<QString, bool>& seenIds) {
    // Sub-folders are rare and shallow; the limit only guards against symlink loops.
    constexpr int maxDepth = 6;
    const QDir dir(folder);
    const QFileInfoList items = dir.entryInfoList(
        QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::Readable, QDir::Name);
    for (const QFileInfo& item : items) {
        if (item.isDir()) {
            if (depth >= maxDepth)
                continue;
            stamps_.push_back(stampOf(item.filePath()));
            scanFolder(applicationsDir, item.filePath(), depth + 1, seenIds);
            continue;
        }
        if (!item.fileName().endsWith(QLatin1String(".desktop")))
            continue;
        QString id = item.filePath().sliced(applicationsDir.size() + 1);
        id.chop(8); // ".desktop"
        id.replace(QLatin1Char('/'), QLatin1Char('-'));
        if (id.isEmpty() || seenIds.contains(id))
            continue;
        seenIds.insert(id, true);

        const auto text = readSmallFile(item.filePath().toStdString(), 1 << 20);
        if (!text)
            continue;
        const auto entry = parseDesktopEntry(QByteArray::fromStdString(*text));
        if (!entry || entry->isTrue(QStringLiteral("Hidden")) ||
            entry->value(QStringLiteral("Type")) != QLatin1String("Application"))
            continue;
        InstalledApp app;
        app.id = id;
        for (auto it = entry->values.constBegin(); it != entry->values.constEnd(); ++it) {
            if (keepKey(it.key()))
                app.entry.values.insert(it.key(), it.value());
        }
        apps_.push_back(std::move(app));
    }
}

} // namespace quelmo::linux_platform
