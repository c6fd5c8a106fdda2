// One row of the list of rules: whether it is on, what it does, and for which hosts.
// Threads: main thread only.
#pragma once

#include "routing/AppRule.h"
#include "screens/routing/RoutingTexts.h"
#include "screens/routing/RowListModel.h"
#include "screens/theme/Theme.h"

#include <QStyledItemDelegate>

#include <string>

namespace fernwick {

// What the row shows of a rule.
struct RuleRow {
    support::Uuid id;
    std::string name;
    NamedHosts hosts;
    RuleAction action = RuleAction::direct;
    bool isEnabled = true;

    bool operator==(const RuleRow&) const = default;

    explicit RuleRow(const AppRule& rule);
    [[nodiscard]] QString title() const;
    [[nodiscard]] QString spoken() const;
};

using RuleListModel = RowListModel<RuleRow>;

class RuleRowDelegate final : public QStyledItemDelegate {
public:
    RuleRowDelegate(const Theme& theme, const RuleListModel& model, QObject* parent);

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void paintMark(QPainter& painter, const QRect& area, const RuleRow& row) const;

    const Theme& theme_;
    const RuleListModel& model_;
    QFont nameFont_;
    QFont hostsFont_;
    QFont capsuleFont_;
};

} // namespace fernwick
