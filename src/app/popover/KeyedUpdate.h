#pragma once

#include <QAbstractItemModel>
#include <QList>
#include <QSet>
#include <QVariant>
#include <type_traits>

namespace quelmo {

// How the popover's list models take a new list of rows. Rows are known by a key (the
// pid): rows whose key is gone are removed, new keys are inserted where they belong, rows that
// stay are moved to their new place and told as changed only in the roles whose value changed.
// So a row keeps its identity (its persistent index, its delegate, its transitions) from one
// update to the next, and a view redraws only what changed. A model that uses it befriends it,
// which lets it tell the model's views of each step.
struct KeyedUpdate {
    // Brings `rows` (the model's) to `fresh`. `keyOf(row)` gives a row's key, `valueOf(row, role)`
    // what the model shows of it in `role`; `roles` are the roles compared.
    template <typename Model, typename Row, typename KeyOf, typename ValueOf>
    static void apply(Model& model, QList<Row>& rows, const QList<Row>& fresh, KeyOf keyOf,
                      ValueOf valueOf, const QList<int>& roles) {
        using Key = std::decay_t<std::invoke_result_t<KeyOf, const Row&>>;
        QSet<Key> wanted;
        for (const Row& row : fresh)
            wanted.insert(keyOf(row));
        for (int i = static_cast<int>(rows.size()) - 1; i >= 0; --i) {
            if (wanted.contains(keyOf(rows.at(i))))
                continue;
            model.beginRemoveRows({}, i, i);
            rows.removeAt(i);
            model.endRemoveRows();
        }

        for (int i = 0; i < fresh.size(); ++i) {
            const Row& row = fresh.at(i);
            // Rows before i are in place; a key given twice gets a second row.
            int at = -1;
            for (int j = i; j < rows.size() && at < 0; ++j)
                if (keyOf(rows.at(j)) == keyOf(row))
                    at = j;
            if (at < 0) {
                model.beginInsertRows({}, i, i);
                rows.insert(i, row);
                model.endInsertRows();
                continue;
            }
            if (at != i) {
                model.beginMoveRows({}, at, at, {}, i);
                rows.move(at, i);
                model.endMoveRows();
            }
            QList<int> changed;
            for (const int role : roles)
                if (valueOf(rows.at(i), role) != valueOf(row, role))
                    changed.append(role);
            // Also what no role shows (a process's start time) is taken.
            rows[i] = row;
            if (!changed.isEmpty())
                emit model.dataChanged(model.index(i), model.index(i), changed);
        }
    }

    // Brings `rows` to `fresh` place by place, for lists whose rows have no identity worth
    // keeping on screen (nothing moves or fades in): the row at each place takes the fresh row
    // there and is told as changed in the roles whose value changed; only the rows beyond the
    // shorter list are removed or inserted. So a list of the same length keeps all its
    // delegates, and nothing is made or thrown away from one update to the next.
    template <typename Model, typename Row, typename ValueOf>
    static void applyInPlace(Model& model, QList<Row>& rows, const QList<Row>& fresh,
                             ValueOf valueOf, const QList<int>& roles) {
        if (rows.size() > fresh.size()) {
            model.beginRemoveRows({}, static_cast<int>(fresh.size()),
                                  static_cast<int>(rows.size()) - 1);
            rows.resize(fresh.size());
            model.endRemoveRows();
        }
        for (int i = 0; i < rows.size(); ++i) {
            QList<int> changed;
            for (const int role : roles)
                if (valueOf(rows.at(i), role) != valueOf(fresh.at(i), role))
                    changed.append(role);
            rows[i] = fresh.at(i);
            if (!changed.isEmpty())
                emit model.dataChanged(model.index(i), model.index(i), changed);
        }
        if (rows.size() < fresh.size()) {
            model.beginInsertRows({}, static_cast<int>(rows.size()),
                                  static_cast<int>(fresh.size()) - 1);
            rows.append(fresh.mid(rows.size()));
            model.endInsertRows();
        }
    }
};

} // namespace quelmo
