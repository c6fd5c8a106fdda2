#include "screens/routing/ApplicationPicker.h"

#include "screens/main/SearchRow.h"
#include "screens/routing/ApplicationListModel.h"
#include "screens/routing/ApplicationRow.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"

#include <QKeyEvent>
#include <QListView>
#include <QPushButton>
#include <QStackedWidget>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kMargin = 20;

} // namespace

ApplicationPicker::ApplicationPicker(const Theme& theme, platform::Dispatch& dispatch,
                                     platform::InstalledApplications& applications, Chosen chosen,
                                     QWidget* parent)
    : QDialog(parent, Qt::Sheet),
      theme_(theme),
      chosen_(std::move(chosen)),
      model_(new ApplicationListModel(theme, this)) {
    setObjectName(QStringLiteral("applicationPicker"));
    setWindowTitle(QStringLiteral("Choose Application"));
    setAttribute(Qt::WA_DeleteOnClose);
    setFixedSize(kWidth, kHeight);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    layout->setSpacing(grid::kMedium);
    layout->addWidget(makeLabel(windowTitle(), theme.font(15, QFont::DemiBold), this));
    layout->addWidget(buildList(), 1);
    layout->addWidget(buildButtons());
    refresh();
    load(dispatch, applications);
}

QWidget* ApplicationPicker::buildList() {
    auto* card = new Card(theme_, this);
    auto* searchRow = new SearchRow(
        theme_, QStringLiteral("Search applications..."), QStringLiteral("applicationSearchField"),
        [this](const QString& text) { search(text.toStdString()); }, card);
    searchRow->focusField();
    pages_ = new QStackedWidget(card);
    list_ = new QListView(pages_);
    list_->setObjectName(QStringLiteral("applicationList"));
    list_->setAccessibleName(QStringLiteral("Applications"));
    list_->setFrameShape(QFrame::NoFrame);
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setUniformItemSizes(true);
    list_->setMouseTracking(true);
    list_->viewport()->setAutoFillBackground(false);
    list_->setItemDelegate(new ApplicationRow(theme_, list_));
    list_->setModel(model_);
    message_ = makeCaption({}, theme_.font(13), pages_);
    message_->setObjectName(QStringLiteral("applicationListMessage"));
    message_->setAlignment(Qt::AlignCenter);
    pages_->addWidget(list_);
    pages_->addWidget(message_);
    connect(list_->selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] { refresh(); });
    connect(list_, &QListView::doubleClicked, this, [this] { take(); });
    searchRow->findChild<QWidget*>(QStringLiteral("applicationSearchField"))->installEventFilter(this);
    auto* column = new QVBoxLayout(card);
    column->setContentsMargins(0, grid::kTight, 0, grid::kTight);
    column->setSpacing(grid::kTight);
    column->addWidget(searchRow);
    column->addWidget(new Divider(theme_, card));
    column->addWidget(pages_, 1);
    return card;
}

QWidget* ApplicationPicker::buildButtons() {
    auto* buttons = new QWidget(this);
    auto* cancel = makeButton(QStringLiteral("Cancel"), ButtonRole::plain,
                              QStringLiteral("cancelApplicationsButton"), buttons);
    cancel->setAutoDefault(true); // Return presses the button that has the keyboard
    ok_ = makeButton(QStringLiteral("OK"), ButtonRole::prominent, QStringLiteral("takeApplicationsButton"),
                     buttons);
    ok_->setDefault(true);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(ok_, &QPushButton::clicked, this, [this] { take(); });
    auto* layout = new QHBoxLayout(buttons);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(grid::kSmall);
    layout->addStretch();
    layout->addWidget(cancel);
    layout->addWidget(ok_);
    return buttons;
}

void ApplicationPicker::load(platform::Dispatch& dispatch, platform::InstalledApplications& applications) {
    dispatch.global(platform::Priority::userInitiated, [weak = self_.weak(), &dispatch, &applications] {
        dispatch.main([weak, list = applications.list()]() mutable {
            if (auto* picker = weak.get()) {
                picker->loaded_ = true;
                picker->model_->setApplications(std::move(list));
                picker->refresh();
            }
        });
    });
}

void ApplicationPicker::search(const std::string& searchText) {
    model_->setSearchText(searchText);
    if (!searchText.empty() && model_->rowCount() > 0) { // so that Return takes the best match
        list_->setCurrentIndex(model_->index(0));
    }
    refresh();
}

void ApplicationPicker::refresh() {
    if (!loaded_) {
        message_->setText(QStringLiteral("Loading..."));
    } else {
        message_->setText(model_->total() == 0 ? QStringLiteral("No applications found")
                                               : QStringLiteral("No results"));
    }
    pages_->setCurrentIndex(model_->rowCount() > 0 ? 0 : 1);
    if (ok_ != nullptr) {
        ok_->setEnabled(list_->selectionModel()->hasSelection());
    }
}

void ApplicationPicker::take() {
    auto indexes = list_->selectionModel()->selectedIndexes();
    if (indexes.isEmpty()) {
        return;
    }
    std::ranges::sort(indexes, {}, &QModelIndex::row);
    std::vector<platform::InstalledApplication> taken;
    for (const QModelIndex& index : indexes) {
        taken.push_back(model_->application(index.row()));
    }
    accept();
    chosen_(taken);
}

// From the search one step down leads into what it found.
bool ApplicationPicker::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Down &&
        model_->rowCount() > 0) {
        list_->setFocus(Qt::TabFocusReason);
        if (!list_->currentIndex().isValid()) {
            list_->setCurrentIndex(model_->index(0));
        }
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace fernwick
