#pragma once

#include <QObject>
#include <QStringList>
#include <QtQml/qqmlregistration.h>

namespace quelmo {

// What the user opened inside the popover: the expanded sections and the cleanup card's criteria.
// It belongs to the popover, not to its window, so it outlives a window released while closed and
// the next window opens as the last one was left.
class PopoverViewState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the popover")
    // Which collapsible sections are open: "cpu", "memory", "cleanup".
    Q_PROPERTY(QList<QString> expanded READ expanded WRITE setExpanded NOTIFY expandedChanged)
    Q_PROPERTY(bool showCriteria READ showCriteria WRITE setShowCriteria NOTIFY showCriteriaChanged)

public:
    using QObject::QObject;

    QStringList expanded() const { return expanded_; }
    void setExpanded(const QStringList& sections);
    bool showCriteria() const { return showCriteria_; }
    void setShowCriteria(bool shown);

signals:
    void expandedChanged();
    void showCriteriaChanged();

private:
    QStringList expanded_;
    bool showCriteria_ = false;
};

} // namespace quelmo
