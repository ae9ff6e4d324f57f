#pragma once

#include <QQmlAbstractUrlInterceptor>
#include <QUrl>

namespace quelmo {

// Lets the popover's engine load only what ships with the program or its Qt: resources, local
// files and image providers. Any other address (http, ftp, …) becomes an empty one, so no text,
// image or view can make the popover reach out, whatever a name or a model's note contains.
class LocalResourcesOnly final : public QQmlAbstractUrlInterceptor {
public:
    QUrl intercept(const QUrl& url, DataType type) override;
};

} // namespace quelmo
