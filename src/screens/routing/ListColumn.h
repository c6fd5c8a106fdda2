// The left column of a tab: a search row, a list or what stands in its place, and a footer with buttons to add
// and to remove and a count. Threads: main thread only.
#pragma once

#include "screens/routing/RoutingListView.h"
#include "screens/theme/Icons.h"

#include <QWidget>

#include <functional>

class QLabel;
class QStackedWidget;
class QToolButton;

namespace fernwick {

class ProxyRuleEmptyState;
class SearchRow;

// What a column is called and asks for.
struct ListColumnTexts {
    QString name; // of the list, aloud; widgets are named by it too, as "proxies" in "proxiesList"
    QString placeholder;
    QString addHelp;
    QString removeHelp;
};

struct ListColumnCallbacks {
    std::function<void(const QString&)> search;
    std::function<void()> add;
    std::function<void()> remove;
};

class ListColumn final : public QWidget {
public:
    static constexpr int kMinimumWidth = 300;
    static constexpr int kMaximumWidth = 380;

    ListColumn(const Theme& theme, platform::Dispatch& dispatch, const ListColumnTexts& texts,
               ListColumnCallbacks callbacks, ListGestures gestures, QWidget* parent);

    [[nodiscard]] RoutingListView& list() { return *list_; }

    // Shows the list.
    void showList();

    // Shows this in its place.
    void showEmpty(Icon icon, const QString& title, const QString& subtitle);

    void setCount(const QString& text);
    void setRemovable(bool removable);

    // Give the keyboard to the search field, or to the list.
    void focusSearch();
    void focusList();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* buildFooter(const ListColumnTexts& texts, ListColumnCallbacks callbacks);

    const Theme& theme_;
    SearchRow* search_;
    QStackedWidget* pages_;
    RoutingListView* list_;
    ProxyRuleEmptyState* empty_;
    QToolButton* remove_ = nullptr;
    QLabel* count_ = nullptr;
};

} // namespace fernwick
