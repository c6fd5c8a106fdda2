// The tab with how a tunnel keeps its connection, and the command that it amounts to. Every change is written
// through at once. Threads: main thread only.
#pragma once

#include "screens/detail/FormPage.h"
#include "screens/detail/TunnelBinding.h"
#include "screens/main/MainWindowContext.h"

namespace fernwick {

class KeepAliveSlider;
class SSHCommandPreview;
class Switch;

class AdvancedTabView final : public FormPage {
public:
    // The binding outlives the tab.
    AdvancedTabView(const MainWindowContext& context, TunnelBinding& binding, QWidget* parent);

    // Shows the tunnel of the binding as it is now.
    void refresh();

private:
    void buildConnection();
    QWidget* buildKeepAlive();
    Switch* addSwitch(FormSection& section, const QString& label, const QString& caption, bool Tunnel::* field);

    MainWindowContext context_;
    TunnelBinding& binding_;
    KeepAliveSlider* keepAlive_ = nullptr;
    ElidedLabel* keepAliveText_ = nullptr;
    Switch* reconnect_ = nullptr;
    Switch* compression_ = nullptr;
    SSHCommandPreview* preview_ = nullptr;
};

} // namespace fernwick
