#include "screens/settings/BackupListView.h"

#include "screens/routing/EditorFrame.h"
#include "screens/routing/RowGround.h"
#include "screens/settings/BackupRowActions.h"
#include "screens/settings/RowList.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QListView>
#include <QLocale>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QVBoxLayout>

#include <algorithm>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace fernwick {

namespace {

constexpr int kIconSize = 18;
constexpr int kLineGap = 2;
constexpr int kInset = 16;     // from the list's edge to what a row shows
constexpr int kMostRows = 6;   // that are seen whole
constexpr int kActionSets = 8; // one more than can be seen a part of, and one in hand

class BackupRowDelegate final : public QStyledItemDelegate {
public:
    BackupRowDelegate(const Theme& theme, const BackupListModel& model, int actionsWidth, QObject* parent)
        : QStyledItemDelegate(parent),
          theme_(theme),
          model_(model),
          actionsWidth_(actionsWidth),
          nameFont_(theme.font(13)),
          factsFont_(theme.font(11)) {}

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& /*option*/,
                                 const QModelIndex& /*index*/) const override {
        return {1, 2 * kRowPadding + QFontMetrics(nameFont_).height() + kLineGap +
                       QFontMetrics(factsFont_).height()};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        painter->save();
        const Palette& colors = theme_.colors();
        const QRect content = paintRowGround(*painter, option, colors);
        const auto place = [&](const QRect& where) {
            return QStyle::visualRect(option.direction, content, where);
        };
        const BackupRow& row = model_.row(index.row());
        const QRect icon(content.left(), content.top(), kIconSize, content.height());
        theme_.icons().paint(*painter, Icon::document, colors.secondary, place(icon), kIconSize);
        const int left = icon.right() + 1 + grid::kSmall + 2;
        const int room = content.right() + 1 - actionsWidth_ - grid::kSmall - left;
        const auto draw = [&](const QString& text, int top, Qt::TextElideMode elide) {
            const QFontMetrics metrics = painter->fontMetrics();
            const int width = std::min(metrics.horizontalAdvance(text) + 1, room);
            drawLine(*painter, place(QRect(left, top, width, metrics.height())), text, Qt::LayoutDirectionAuto,
                     elide);
            return top + metrics.height();
        };
        painter->setFont(nameFont_);
        painter->setPen(colors.text);
        const int below = draw(row.name, content.top(), Qt::ElideMiddle); // the end of a name tells it apart
        painter->setFont(factsFont_);
        painter->setPen(colors.secondary);
        draw(row.facts, below + kLineGap, Qt::ElideRight);
        painter->restore();
    }

private:
    const Theme& theme_;
    const BackupListModel& model_;
    int actionsWidth_;
    QFont nameFont_;
    QFont factsFont_;
};

} // namespace

BackupListView::BackupListView(const Theme& theme, Callbacks callbacks, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      callbacks_(std::move(callbacks)),
      model_(new BackupListModel(this)),
      list_(makeRowList(QStringLiteral("backupList"), QStringLiteral("Backup History"), this)),
      frame_(new EditorFrame(theme, list_, this)),
      strip_(new QWidget(frame_)) {
    for (int set = 0; set < kActionSets; ++set) {
        actions_.push_back(
            new BackupRowActions(theme,
                                 {[this](const support::Uuid& id) { ask(callbacks_.restore, id); },
                                  [this](const support::Uuid& id) { ask(callbacks_.remove, id); }},
                                 strip_));
    }
    list_->setModel(model_);
    list_->setItemDelegate(new BackupRowDelegate(theme, *model_, actions_.front()->sizeHint().width(), this));
    list_->installEventFilter(this);
    list_->viewport()->installEventFilter(this);
    strip_->installEventFilter(this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(frame_);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(list_->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { placeActions(); });
    connect(list_->verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { placeActions(); });
}

BackupListView::~BackupListView() = default;

std::vector<BackupRow> BackupListView::rowsOf(const std::vector<BackupEntry>& entries) {
    std::unordered_map<std::string_view, support::Uuid> known;
    for (int number = 0; number < model_->rowCount(); ++number) {
        known.emplace(model_->row(number).url, model_->row(number).id);
    }
    std::vector<BackupRow> rows;
    rows.reserve(entries.size());
    for (const auto& entry : entries) {
        QString facts = QString::fromStdString(dates_.text(entry.date));
        if (entry.fileSize > 0) {
            facts += QStringLiteral(" \u00b7 ") +
                     QLocale().formattedDataSize(entry.fileSize, 1, QLocale::DataSizeSIFormat);
        }
        const auto before = known.find(entry.url);
        rows.push_back({before != known.end() ? before->second : entry.id, entry.url, displayLine(entry.name()),
                        std::move(facts)});
    }
    return rows;
}

void BackupListView::showEntries(const std::vector<BackupEntry>& entries) {
    if (entries == entries_) {
        return; // the same listing
    }
    const QModelIndex current = list_->currentIndex();
    const auto chosen = current.isValid() ? std::optional(model_->row(current.row()).id) : std::nullopt;
    auto rows = rowsOf(entries);
    entries_ = entries;
    model_->setRows(std::move(rows));
    if (const int row = chosen ? model_->rowOf(*chosen) : -1; row >= 0 && row != list_->currentIndex().row()) {
        list_->setCurrentIndex(model_->index(row, 0));
    }
    fitHeight();
    placeActions();
}

void BackupListView::fitHeight() {
    const int count = model_->rowCount();
    const int row = count > 0 ? list_->sizeHintForRow(0) : 0;
    // Half a row tells that there are more.
    const int room = count > kMostRows ? kMostRows * row - row / 2 : count * row;
    const QMargins inset = frame_->layout()->contentsMargins();
    setFixedHeight(room + inset.top() + inset.bottom());
}

void BackupListView::placeActions() {
    const QRect room = list_->viewport()->rect();
    QRect strip(0, 0, actions_.front()->sizeHint().width(), room.height());
    strip.moveRight(room.right() - kInset);
    strip = QStyle::visualRect(layoutDirection(), room, strip);
    strip_->setGeometry(strip.translated(list_->viewport()->mapTo(frame_, QPoint())));
    strip_->raise();
    const int first = list_->indexAt(QPoint(room.center().x(), 0)).row();
    for (int set = 0; set < kActionSets; ++set) {
        // Of the rows that can be seen the one that this set is for; a row has the same set for as long as it
        // can be seen.
        const int number = first < 0 ? -1 : first + ((set - first) % kActionSets + kActionSets) % kActionSets;
        auto& actions = *actions_[static_cast<std::size_t>(set)];
        const bool there = number >= 0 && number < model_->rowCount();
        const QRect row = there ? list_->visualRect(model_->index(number, 0)) : QRect();
        const bool seen = there && row.intersects(room);
        if (actions.hasKeyboard() && (!seen || actions.id() != model_->row(number).id)) {
            list_->setFocus(Qt::OtherFocusReason); // a key must not reach another file than it was meant for
        }
        actions.setVisible(seen);
        if (seen) {
            actions.showRow(model_->row(number));
            actions.setReachable(number == list_->currentIndex().row());
            const int height = actions.sizeHint().height();
            actions.setGeometry(0, row.top() + (row.height() - height) / 2, strip.width(), height);
        }
    }
}

void BackupListView::ask(const std::function<void(const BackupEntry&)>& what, const support::Uuid& id) {
    if (const int row = model_->rowOf(id); row >= 0) {
        list_->setCurrentIndex(model_->index(row, 0));
        what(BackupEntry(entries_[static_cast<std::size_t>(row)])); // a copy: the folder may be listed anew
    }
}

void BackupListView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeActions();
}

bool BackupListView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == strip_ && event->type() == QEvent::Wheel) {
        QCoreApplication::sendEvent(list_->viewport(), event); // as anywhere else in the row
        return true;
    }
    if (watched == strip_ && event->type() == QEvent::MouseButtonPress) {
        const int y = static_cast<QMouseEvent*>(event)->position().toPoint().y();
        list_->setCurrentIndex(list_->indexAt(QPoint(list_->viewport()->width() / 2, y)));
        list_->setFocus(Qt::MouseFocusReason);
        return true;
    }
    if (watched == list_->viewport() && event->type() == QEvent::Resize) {
        placeActions();
    }
    if (watched == list_ && event->type() == QEvent::FocusIn && !list_->selectionModel()->hasSelection()) {
        list_->setCurrentIndex(model_->index(0, 0)); // so that there are buttons to go on to
    }
    if (watched == list_ && event->type() == QEvent::KeyPress && list_->currentIndex().isValid()) {
        const auto* pressed = static_cast<QKeyEvent*>(event);
        const bool wantsDelete = pressed->key() == Qt::Key_Delete || pressed->key() == Qt::Key_Backspace;
        if (wantsDelete && (pressed->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier) {
            ask(callbacks_.remove, model_->row(list_->currentIndex().row()).id);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace fernwick
