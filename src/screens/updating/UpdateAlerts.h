// The updater's words to the person, as alerts and sheets over the application's windows.
// Threads: main thread only.
#pragma once

#include "screens/theme/AlertSheet.h"
#include "updating/UpdateScreens.h"

#include <QPointer>

#include <vector>

namespace fernwick {

class UpdateAlerts final : public UpdateScreens {
public:
    // The theme outlives the alerts.
    explicit UpdateAlerts(const Theme& theme) : theme_(theme) {}
    UpdateAlerts(const UpdateAlerts&) = delete;
    UpdateAlerts& operator=(const UpdateAlerts&) = delete;

    // Takes down what still stands; a question that is open is not answered any more.
    ~UpdateAlerts() override;

    void showError(const std::string& title, const std::string& message) override;
    void showInfo(const std::string& title, const std::string& message) override;
    void ask(const UpdatePrompt& prompt, std::function<void(bool accepted)> answered) override;
    void showProgress(const UpdateProgress& progress) override;
    void closeSheets() override;

private:
    void tell(const AlertSheet::Mark& mark, const std::string& title, const std::string& message);

    // Shows an alert that has no window above it, modal for the application. It deletes itself when it is
    // closed.
    void present(AlertSheet& alert);

    // The window that has the keyboard, or is about to get it back when a question is closed; null without one.
    [[nodiscard]] QWidget* keyWindow() const;

    const Theme& theme_;
    std::vector<QPointer<QDialog>> standing_;
    QPointer<QWidget> asked_; // the window that had the keyboard when the question came
};

} // namespace fernwick
