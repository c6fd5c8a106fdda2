// The sheet in which a proxy is made or changed. It works on a copy of its own; the store hears of it when the
// user saves, and not at all when the user cancels. Threads: main thread only.
#pragma once

#include "routing/ProxyRuleStore.h"
#include "screens/routing/RoutingContext.h"

#include <QDialog>

#include <optional>
#include <string>
#include <vector>

class QLabel;
class QScrollArea;
class QVBoxLayout;

namespace fernwick {

class DetailSection;
class RadioRow;
class TextField;

class ProxyEditView final : public QDialog {
public:
    static constexpr int kWidth = 480;
    static constexpr int kHeight = 580;

    // Edits a copy of the proxy, or a new one without it. Deletes itself when it is closed.
    ProxyEditView(const Theme& theme, ProxyRuleStore& store, TunnelNames tunnels,
                  std::optional<ProxyConfig> proxy, QWidget* parent);

    // The proxy as it would be saved, but for what saving itself still makes of the port and the name.
    [[nodiscard]] const ProxyConfig& proxy() const { return proxy_; }

private:
    // A field of text and what it fills in.
    struct Row {
        const char* objectName;
        QString label;
        QString placeholder;
        std::string& text;
        int width = 0; // 0 fills the row
    };

    QWidget* buildForm();
    QWidget* buildButtons();
    void addServer(QVBoxLayout& form);
    void addProtocol(QVBoxLayout& form);
    void addAuthentication(QVBoxLayout& form);
    void addOptions(QVBoxLayout& form);
    void addTunnel(QVBoxLayout& form);
    void addAdvanced(QVBoxLayout& form);
    DetailSection& addSection(QVBoxLayout& form, const QString& title);
    QWidget* makeField(const Row& row, QWidget* parent, bool masked = false);
    void portEdited();
    void showAddress();
    void showOptions();
    void save();

    const Theme& theme_;
    ProxyRuleStore& store_;
    TunnelNames tunnels_;
    bool isNew_;
    ProxyConfig proxy_;
    QString portText_;
    QLabel* heading_;
    TextField* portField_ = nullptr;
    QLabel* options_ = nullptr;
};

} // namespace fernwick
