// The stored focus history as the settings hand it back: a map whose values an edit or a
// disk fault can turn into any type. Qt's own stream decoding sits below QSettings and is
// not ours to fuzz (it trusts the lengths it reads); what we decode is the value it yields.
//
// Input layout, repeated until the bytes run out: one byte of key length (0-31), the key's
// bytes, one byte choosing the value's type, then that value's bytes.
#include "core/cleanup/FocusTracker.h"

#include <QDateTime>
#include <QVariantList>
#include <QVariantMap>
#include <cmath>
#include <cstdlib>
#include <cstring>

using namespace quelmo;

namespace {

class Reader {
public:
    Reader(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}

    bool empty() const { return left_ == 0; }

    std::uint8_t byte() {
        if (left_ == 0)
            return 0;
        --left_;
        return *data_++;
    }

    QByteArray take(std::size_t wanted) {
        const std::size_t n = std::min(wanted, left_);
        QByteArray out(reinterpret_cast<const char*>(data_), static_cast<qsizetype>(n));
        data_ += n;
        left_ -= n;
        return out;
    }

    template <typename T> T number() {
        T value{};
        const QByteArray raw = take(sizeof(T));
        std::memcpy(&value, raw.constData(), static_cast<std::size_t>(raw.size()));
        return value;
    }

private:
    const std::uint8_t* data_;
    std::size_t left_;
};

QVariant value(Reader& in) {
    switch (in.byte() % 9) {
    case 0:
        return in.number<double>();
    case 1:
        return in.number<float>();
    case 2:
        return in.number<qint64>();
    case 3:
        return in.number<quint64>();
    case 4:
        return QString::fromUtf8(in.take(in.byte() % 16));
    case 5:
        return in.byte() % 2 == 0;
    case 6:
        return QVariantList{in.number<double>()};
    case 7:
        return QDateTime::fromSecsSinceEpoch(in.number<qint32>());
    default:
        return QVariant();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Reader in(data, size);
    QVariantMap map;
    while (!in.empty()) {
        const QString key = QString::fromUtf8(in.take(in.byte() % 32));
        map.insert(key, value(in));
    }
    if (const auto history = FocusTracker::decodeHistory(map)) {
        if (history->size() != map.size())
            std::abort();
        for (const double seconds : *history)
            if (!std::isfinite(seconds))
                std::abort();
    }
    return 0;
}
