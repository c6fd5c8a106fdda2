#include "screens/settings/TagListView.h"

#include "screens/routing/EditorFrame.h"
#include "screens/routing/RowGround.h"
#include "screens/settings/RowList.h"
#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/ListKeys.h"
#include "screens/theme/Parts.h"
#include "screens/theme/TagColors.h"

#include <QKeyEvent>
#include <QListView>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace fernwick {

namespace {

constexpr int kRowHeight = 38;
constexpr int kSwatchSize = 14;
constexpr int kActionsInset = 12; // from the edge of the list
constexpr int kActionSize = 26;
constexpr int kActionsWidth = 2 * kActionSize + grid::kTight;

class TagRowDelegate final : public QStyledItemDelegate {
public:
    TagRowDelegate(const Theme& theme, const TagListModel& model, QObject* parent)
        : QStyledItemDelegate(parent), theme_(theme), model_(model), font_(theme.font(13)) {}

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& /*option*/,
                                 const QModelIndex& /*index*/) const override {
        return {1, std::max(QFontMetrics(font_).height() + 2 * kRowPadding + 2, kRowHeight)};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        painter->save();
        const Palette& colors = theme_.colors();
        QRect content = paintRowGround(*painter, option, colors);
        const bool mirrored = option.direction == Qt::RightToLeft;
        if (option.state.testFlag(QStyle::State_Selected)) {
            content.adjust(mirrored ? kActionsWidth : 0, 0, mirrored ? 0 : -kActionsWidth, 0);
        }
        const auto place = [&](const QRect& where) {
            return QStyle::visualRect(option.direction, content, where);
        };
        const TagRow& row = model_.row(index.row());
        const QRect swatch(content.left(), content.center().y() - kSwatchSize / 2 + 1, kSwatchSize,
                           kSwatchSize);
        stylepaint::roundedBox(*painter, QRectF(place(swatch)), tagColor(row.colorHex, colors), colors.border,
                               kSwatchSize / 2.0);
        const int left = swatch.right() + 1 + grid::kMedium;
        const QString title = row.title();
        const int width =
            std::min(QFontMetrics(font_).horizontalAdvance(title) + 1, content.right() + 1 - left);
        painter->setFont(font_);
        painter->setPen(colors.text);
        drawLine(*painter, place(QRect(left, content.top(), width, content.height())), title);
        painter->restore();
    }

private:
    const Theme& theme_;
    const TagListModel& model_;
    QFont font_;
};

} // namespace

QString TagRow::title() const {
    return displayLine(name);
}

TagListView::TagListView(const Theme& theme, Callbacks callbacks, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      callbacks_(std::move(callbacks)),
      model_(new TagListModel(this)),
      list_(makeRowList(QStringLiteral("tagList"), QStringLiteral("Tags"), this)),
      frame_(new EditorFrame(theme, list_, this)),
      actions_(buildActions()) {
    list_->setModel(model_);
    list_->setItemDelegate(new TagRowDelegate(theme, *model_, this));
    list_->installEventFilter(this);
    list_->viewport()->installEventFilter(this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(frame_);
    connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        placeActions();
        if (!showing_) {
            callbacks_.selected(selectedID());
        }
    });
    connect(list_, &QAbstractItemView::doubleClicked, this, [this] { ask(callbacks_.edit); });
    connect(list_->verticalScrollBar(), &QScrollBar::valueChanged, this, [this] { placeActions(); });
}

// Over the list and not in it: what stands in a row of a list is not there for assistive technology.
QWidget* TagListView::buildActions() {
    auto* actions = new QWidget(frame_);
    const auto add = [&](Icon icon, const QString& help, const char* objectName,
                         const std::function<void(const support::Uuid&)> Callbacks::* what) {
        auto* button = makeIconButton(theme_, icon, help, QString::fromLatin1(objectName), actions);
        button->setFixedSize(kActionSize, kActionSize);
        button->setIconSize(QSize(16, 16));
        connect(button, &QToolButton::clicked, this, [this, what] { ask(callbacks_.*what); });
        return button;
    };
    auto* layout = new QHBoxLayout(actions);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kTight);
    layout->addWidget(add(Icon::pencil, QStringLiteral("Edit tag"), "editTagButton", &Callbacks::edit));
    layout->addWidget(add(Icon::trash, QStringLiteral("Delete tag"), "deleteTagButton", &Callbacks::remove));
    actions->hide();
    return actions;
}

std::optional<support::Uuid> TagListView::selectedID() const {
    const auto rows = list_->selectionModel()->selectedIndexes();
    return rows.isEmpty() ? std::nullopt : std::optional(model_->row(rows.first().row()).id);
}

void TagListView::ask(const std::function<void(const support::Uuid&)>& what) {
    if (const auto id = selectedID()) {
        what(*id);
    }
}

void TagListView::showTags(const std::vector<TunnelTag>& tags, const std::optional<support::Uuid>& selected) {
    const QScopedValueRollback guard(showing_, true);
    std::vector<TagRow> rows;
    rows.reserve(tags.size());
    for (const TunnelTag& tag : tags) {
        rows.push_back({tag.id, tag.name, tag.colorHex});
    }
    model_->setRows(std::move(rows));
    const int row = selected ? model_->rowOf(*selected) : -1;
    if (row < 0) {
        list_->selectionModel()->clear();
    } else if (selectedID() != selected) {
        list_->setCurrentIndex(model_->index(row, 0));
    }
    placeActions();
}

void TagListView::placeActions() {
    const auto rows = list_->selectionModel()->selectedIndexes();
    const QRect row = rows.isEmpty() ? QRect() : list_->visualRect(rows.first());
    const QRect room = list_->viewport()->rect();
    if (rows.isEmpty() || !room.intersects(row)) {
        if (actions_->isAncestorOf(actions_->window()->focusWidget())) {
            list_->setFocus(Qt::OtherFocusReason); // the keyboard does not go with the row
        }
        actions_->hide();
        return;
    }
    QRect place(0, row.top() + (row.height() - kActionSize) / 2, kActionsWidth, kActionSize);
    place.moveRight(room.right() - kActionsInset);
    place = QStyle::visualRect(layoutDirection(), room, place);
    actions_->setGeometry(place.translated(list_->viewport()->mapTo(frame_, QPoint())));
    actions_->show();
    actions_->raise();
}

void TagListView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeActions();
}

bool TagListView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == list_->viewport() && event->type() == QEvent::Resize) {
        placeActions();
    }
    if (watched != list_ || event->type() != QEvent::KeyPress) {
        return QWidget::eventFilter(watched, event);
    }
    const auto* pressed = static_cast<QKeyEvent*>(event);
    if (chooseFirst(*list_, *pressed)) {
        return true;
    }
    if ((pressed->modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier || !selectedID()) {
        return false;
    }
    switch (pressed->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
        ask(callbacks_.edit);
        return true;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        ask(callbacks_.remove);
        return true;
    default:
        return false;
    }
}

} // namespace fernwick
