#include "screens/theme/ChoiceMenu.h"

#include <QScopedValueRollback>
#include <QWheelEvent>

namespace fernwick {

namespace {

constexpr int kIconSize = 16;
constexpr int kMostVisible = 16;

} // namespace

ChoiceMenu::ChoiceMenu(const Theme& theme, std::function<void(int)> chosen, QWidget* parent)
    : QComboBox(parent), theme_(theme), chosen_(std::move(chosen)) {
    setFont(theme.font(13));
    setIconSize(QSize(kIconSize, kIconSize));
    setFocusPolicy(Qt::StrongFocus);
    setMaxVisibleItems(kMostVisible);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    // Assistive technology changes the index without activating; the user may activate what is shown already.
    const auto tell = [this](int choice) {
        if (!showing_ && choice >= 0) {
            chosen_(choice);
        }
    };
    connect(this, &QComboBox::currentIndexChanged, this, tell);
    connect(this, &QComboBox::activated, this, tell);
}

void ChoiceMenu::addChoice(Icon icon, const QString& text) {
    const QScopedValueRollback guard(showing_, true);
    addItem(themedIcon(theme_, icon, &Palette::secondary), text);
}

void ChoiceMenu::addChoice(const QString& text) {
    const QScopedValueRollback guard(showing_, true);
    addItem(text);
}

void ChoiceMenu::showChoice(int choice) {
    const QScopedValueRollback guard(showing_, true);
    setCurrentIndex(choice);
}

void ChoiceMenu::clearChoices() {
    const QScopedValueRollback guard(showing_, true);
    clear();
}

void ChoiceMenu::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace fernwick
