// The sheet that makes or edits a rule: which applications and addresses, towards which hosts and ports, go
// which way. It works on a private copy that is stored by Save alone. Threads: main thread only.
#pragma once

#include "screens/routing/RoutingContext.h"
#include "screens/routing/RuleDraft.h"

#include <QDialog>

#include <optional>
#include <vector>

class QScrollArea;

namespace fernwick {

class AddEntryPopover;
class EntryChips;
class FormSection;
class PlusButton;

class RuleEditView final : public QDialog {
public:
    static constexpr int kWidth = 540;
    static constexpr int kHeight = 660;

    // Edits the rule, or a new one. Everything that the context refers to outlives the sheet. It is to be
    // opened with open(), and goes when it is closed.
    RuleEditView(RoutingContext& context, TunnelNames tunnels, std::optional<AppRule> rule, QWidget* parent);

    // What is in the form now.
    [[nodiscard]] const RuleDraft& draft() const { return draft_; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QWidget* buildHeader();
    QWidget* buildForm(TunnelNames tunnels);
    QWidget* buildButtons();
    FormSection* addSection(const QString& title, Icon icon);
    void fillApplications(FormSection& section);
    void fillHosts(FormSection& section);
    void fillPorts(FormSection& section);

    void openPopover();
    void closePopover();
    void chooseApplications();
    void addEntries(std::vector<AppEntry> entries);
    void removeEntry(const support::Uuid& id);
    void save();

    RoutingContext context_;
    RuleDraft draft_;
    QScrollArea* form_ = nullptr;
    EntryChips* chips_ = nullptr;
    PlusButton* plus_ = nullptr;
    QWidget* cover_ = nullptr; // over the form while the popover is open: a click there closes it
    AddEntryPopover* popover_ = nullptr;
};

} // namespace fernwick
