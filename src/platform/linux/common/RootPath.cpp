#include "platform/linux/common/RootPath.h"

namespace quelmo::linux_platform {

bool isLiveRoot(const QString& root) {
    for (const QChar c : root) {
        if (c != QLatin1Char('/'))
            return false;
    }
    return true;
}

std::string rootedPath(const QString& root, std::string_view path) {
    std::string rooted = isLiveRoot(root) ? std::string() : root.toStdString();
    while (!rooted.empty() && rooted.back() == '/')
        rooted.pop_back();
    while (!path.empty() && path.front() == '/')
        path.remove_prefix(1);
    rooted.push_back('/');
    rooted.append(path);
    return rooted;
}

std::string procPath(const QString& root, qint64 pid, std::string_view file) {
    std::string relative = "proc/" + std::to_string(pid) + '/';
    relative.append(file);
    return rootedPath(root, relative);
}

} // namespace quelmo::linux_platform
