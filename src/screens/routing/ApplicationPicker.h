// The sheet that offers the installed applications, for those that a rule is about. They are looked for in the
// background, anew for every sheet. Threads: main thread only.
#pragma once

#include "platform/Dispatch.h"
#include "platform/InstalledApplications.h"
#include "screens/theme/Theme.h"
#include "support/Weak.h"

#include <QDialog>

#include <functional>
#include <string>
#include <vector>

class QLabel;
class QListView;
class QPushButton;
class QStackedWidget;

namespace fernwick {

class ApplicationListModel;
class SearchRow;

class ApplicationPicker final : public QDialog {
public:
    static constexpr int kWidth = 400;
    static constexpr int kHeight = 480;

    using Chosen = std::function<void(const std::vector<platform::InstalledApplication>&)>;

    // `chosen` is called with the applications that the user took, in the list's order, at least one.
    // `applications` and `dispatch` outlive everything on screen.
    ApplicationPicker(const Theme& theme, platform::Dispatch& dispatch,
                      platform::InstalledApplications& applications, Chosen chosen, QWidget* parent);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* buildList();
    QWidget* buildButtons();
    void load(platform::Dispatch& dispatch, platform::InstalledApplications& applications);
    void search(const std::string& searchText);
    void refresh();
    void take();

    const Theme& theme_;
    Chosen chosen_;
    ApplicationListModel* model_;
    QListView* list_ = nullptr;
    QStackedWidget* pages_ = nullptr; // the list, or why there is none
    QLabel* message_ = nullptr;
    QPushButton* ok_ = nullptr;
    bool loaded_ = false;
    support::WeakSource<ApplicationPicker> self_{*this};
};

} // namespace fernwick
