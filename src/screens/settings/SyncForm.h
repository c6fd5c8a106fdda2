// What the cards of the page of exports, backups and the cloud have in common: rows one below the other, and
// an alert at the end of what they start. Threads: main thread only.
#pragma once

#include "screens/settings/HeldButton.h"
#include "screens/settings/SyncPageContext.h"

#include <QString>
#include <QWidget>

#include <functional>

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace fernwick {

class Switch;

// How something went, for the person who asked for it.
struct SyncAlert {
    QString alertTitle;
    QString alertMessage;
    bool succeeded = true;
};

// What a card works with.
struct SyncParts {
    const SyncPageContext& context; // of the page, and as old as the cards
    SyncManager& sync;
    std::function<void(SyncAlert)> alert; // does nothing when the page is gone
};

class SyncForm : public QWidget {
protected:
    SyncForm(SyncParts parts, QWidget* parent);

    [[nodiscard]] const SyncParts& parts() const { return parts_; }
    [[nodiscard]] const Theme& theme() const { return parts_.context.theme; }
    [[nodiscard]] SyncManager& sync() const { return parts_.sync; }

    // Add something at the end; the form becomes its parent.
    void addRow(QWidget* row);
    void addDivider();

    // Add widgets at the end: one below the other and close together, or side by side at the near side.
    void addGroup(const QWidgetList& lines);
    void addButtons(const QWidgetList& buttons);

    // Make children of the form that are yet to be added: a switch and a button that call back when the user
    // uses them, a row for a switch, and a line or more of secondary text.
    [[nodiscard]] Switch* newSwitch(const char* objectName, std::function<void(bool)> thrown);
    [[nodiscard]] QWidget* newSwitchRow(const QString& label, Switch* control);
    [[nodiscard]] QLabel* newText(const QString& text);
    [[nodiscard]] QPushButton* newButton(const QString& text, const char* objectName,
                                         std::function<void()> clicked);

    // Calls `through`, and alerts with the title for how it went and the message.
    [[nodiscard]] SyncCompletion told(std::function<void()> through, QString onSuccess,
                                      QString onFailure) const;

private:
    SyncParts parts_;
    QVBoxLayout* rows_;
};

} // namespace fernwick
