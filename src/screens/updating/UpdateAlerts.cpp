#include "screens/updating/UpdateAlerts.h"

#include "screens/WindowPlacement.h"
#include "screens/theme/DisplayText.h"
#include "screens/updating/UpdateProgressSheet.h"

#include <QApplication>
#include <QPushButton>

#include <algorithm>
#include <utility>

namespace fernwick {

namespace {

// A window of the application that can have a sheet: on the screen, and neither a panel nor part of a tray.
bool canHaveSheet(const QWidget* window) {
    return window != nullptr && window->windowType() == Qt::Window && window->isVisible() &&
           !window->isMinimized() && !window->windowFlags().testFlag(Qt::BypassWindowManagerHint) &&
           !window->windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus);
}

// The window below all sheets and panels of one.
QWidget* lowest(QWidget* window) {
    while (window != nullptr && window->windowType() != Qt::Window && window->parentWidget() != nullptr) {
        window = window->parentWidget()->window();
    }
    return window;
}

} // namespace

UpdateAlerts::~UpdateAlerts() {
    for (const auto& dialog : standing_) {
        delete dialog.data();
    }
}

void UpdateAlerts::showError(const std::string& title, const std::string& message) {
    tell({Icon::crossCircle, &Palette::red}, title, message);
}

void UpdateAlerts::showInfo(const std::string& title, const std::string& message) {
    tell({Icon::infoCircle, &Palette::accent}, title, message);
}

void UpdateAlerts::tell(const AlertSheet::Mark& mark, const std::string& title, const std::string& message) {
    auto* alert = new AlertSheet(theme_, QStringLiteral("updateAlert"), mark, displayText(title), nullptr);
    alert->setMessage(displayText(message));
    alert
        ->addButton(QStringLiteral("OK"), ButtonRole::prominent, QStringLiteral("updateAlertButton"),
                    QDialog::Accepted)
        ->setFocus();
    present(*alert);
}

void UpdateAlerts::ask(const UpdatePrompt& prompt, std::function<void(bool accepted)> answered) {
    asked_ = keyWindow();
    auto* alert = new AlertSheet(theme_, QStringLiteral("updatePrompt"), {Icon::application, &Palette::accent},
                                 displayText(prompt.message), nullptr);
    alert->setWindowFlag(Qt::WindowStaysOnTopHint);
    alert->setMessage(displayText(prompt.informativeText));
    alert->addButton(displayText(prompt.laterButton), ButtonRole::plain, QStringLiteral("updateLaterButton"),
                     QDialog::Rejected);
    auto* accept = alert->addButton(displayText(prompt.acceptButton), ButtonRole::prominent,
                                    QStringLiteral("updateAcceptButton"), QDialog::Accepted);
    accept->setDefault(true);
    accept->setFocus();
    QObject::connect(alert, &QDialog::finished, alert,
                     [answered = std::move(answered)](int result) { answered(result == QDialog::Accepted); });
    present(*alert);
}

void UpdateAlerts::showProgress(const UpdateProgress& progress) {
    auto* window = keyWindow();
    auto* sheet = new UpdateProgressSheet(theme_, progress, window);
    if (window == nullptr) {
        present(*sheet);
        return;
    }
    sheet->setAttribute(Qt::WA_DeleteOnClose);
    sheet->open();
}

void UpdateAlerts::closeSheets() {
    std::vector<QPointer<QDialog>> dialogs; // one may take others with it
    for (auto* widget : QApplication::topLevelWidgets()) {
        dialogs.emplace_back(qobject_cast<QDialog*>(widget));
    }
    for (const auto& dialog : dialogs) {
        if (dialog != nullptr && dialog->isVisible() && dialog->parentWidget() != nullptr &&
            dialog->windowModality() == Qt::WindowModal) {
            dialog->done(QDialog::Rejected);
        }
    }
}

void UpdateAlerts::present(AlertSheet& alert) {
    std::erase_if(standing_, [](const auto& dialog) { return dialog.isNull(); });
    standing_.emplace_back(&alert);
    alert.setAttribute(Qt::WA_DeleteOnClose);
    alert.setWindowIcon(themedIcon(theme_, Icon::application, &Palette::text));
    alert.setWindowModality(Qt::ApplicationModal);
    if (const auto* window = keyWindow()) {
        alert.setScreen(window->screen());
    }
    alert.adjustSize();
    centreOnScreen(alert);
    bringToFront(alert);
}

QWidget* UpdateAlerts::keyWindow() const {
    auto* active = lowest(QApplication::activeWindow());
    if (canHaveSheet(active)) {
        return active;
    }
    // The window manager takes its time to give the keyboard on.
    if (canHaveSheet(asked_)) {
        return asked_;
    }
    const auto windows = QApplication::topLevelWidgets();
    const auto found = std::ranges::find_if(windows, canHaveSheet);
    return found != windows.end() ? *found : nullptr;
}

} // namespace fernwick
