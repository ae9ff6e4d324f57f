#pragma once

#include <QString>
#include <QtGlobal>

namespace quelmo {

// Facts about this machine and session that the rules read.
class SystemInfo {
public:
    virtual ~SystemInfo() = default;
    virtual QString userName() = 0;
    virtual qint64 ownPid() = 0;
    virtual bool thermalNominal() = 0;
};

} // namespace quelmo
