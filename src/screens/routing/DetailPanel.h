// A read-only panel beside a list: a header with a name, a line under it and a button to edit, and sections
// that scroll; or an empty state. Threads: main thread only.
#pragma once

#include "screens/routing/DetailSection.h"
#include "screens/theme/Icons.h"

#include <QStackedWidget>

#include <string_view>

class QHBoxLayout;
class QPushButton;
class QScrollArea;
class QVBoxLayout;

namespace fernwick {

class Capsule;
class ProxyRuleEmptyState;

class DetailPanel : public QStackedWidget {
public:
    static constexpr int kMinimumWidth = 280;

protected:
    DetailPanel(const Theme& theme, const QString& objectName, QWidget* parent);

    void showEmpty(Icon icon, const QString& title, const QString& subtitle);

    // Starts the content anew: no sections, this name. `sameRecord` leaves the scroll position where it is.
    void beginContent(std::string_view name, const QString& editName, bool sameRecord);
    DetailSection& addSection(const QString& title);

    // A label of the header, which stays empty and out of sight until it has text.
    QLabel* addHeaderLine();
    // A capsule of the header, out of sight until it is shown.
    Capsule* addHeaderCapsule();

    [[nodiscard]] QPushButton& editButton() { return *edit_; }
    [[nodiscard]] const Theme& theme() const { return theme_; }

private:
    QWidget* buildHeader();
    QWidget* buildPage();

    const Theme& theme_;
    ProxyRuleEmptyState* empty_;
    QWidget* page_ = nullptr;
    QLabel* name_ = nullptr;
    QVBoxLayout* headerLines_ = nullptr;
    QHBoxLayout* headerRow_ = nullptr;
    QPushButton* edit_ = nullptr;
    QScrollArea* scroll_ = nullptr;
    QVBoxLayout* sections_ = nullptr;
};

} // namespace fernwick
