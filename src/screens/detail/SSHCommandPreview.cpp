#include "screens/detail/SSHCommandPreview.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"
#include "screens/theme/StylePaint.h"
#include "tunnel/SshCommand.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QScrollBar>
#include <QTextEdit>
#include <QToolButton>

#include <algorithm>
#include <cmath>

namespace fernwick {

namespace {

constexpr qsizetype kLongest = 8192;
constexpr int kHighest = 180;
constexpr double kTextMargin = 6.0;
constexpr double kBorderOpacity = 0.25;

} // namespace

SSHCommandPreview::SSHCommandPreview(const Theme& theme, platform::Pasteboard& pasteboard,
                                     platform::Dispatch& dispatch, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      pasteboard_(pasteboard),
      dispatch_(dispatch),
      text_(new QTextEdit(this)),
      button_(makeIconButton(theme, Icon::document, QStringLiteral("Copy"), QStringLiteral("copyCommandButton"),
                             this)),
      self_(*this) {
    setObjectName(QStringLiteral("sshCommandPreview"));
    text_->setObjectName(QStringLiteral("sshCommandText"));
    text_->setAccessibleName(QStringLiteral("SSH Command Preview"));
    text_->setFont(theme.monospaced(11));
    text_->setReadOnly(true);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text_->setTabChangesFocus(true);
    text_->setFrameShape(QFrame::NoFrame);
    text_->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    text_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    text_->document()->setDocumentMargin(kTextMargin);
    text_->viewport()->setAutoFillBackground(false);
    text_->installEventFilter(this);
    connect(button_, &QToolButton::clicked, this, [this] { copy(); });
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(grid::kTight, grid::kTight, grid::kTight, grid::kTight);
    layout->setSpacing(grid::kTight);
    layout->addWidget(text_, 1);
    layout->addWidget(button_, 0, Qt::AlignTop);
}

void SSHCommandPreview::showTunnel(const Tunnel& tunnel) {
    std::string command = buildPreviewCommand(tunnel);
    if (command == command_) {
        return;
    }
    command_ = std::move(command);
    text_->setPlainText(displayLine(command_, kLongest));
    fit();
}

void SSHCommandPreview::fit() {
    text_->document()->setTextWidth(text_->viewport()->width());
    const int lines = static_cast<int>(std::ceil(text_->document()->size().height()));
    text_->setFixedHeight(std::min(std::max(lines, grid::kToolButtonSize), kHighest));
}

void SSHCommandPreview::copy() {
    pasteboard_.setString(command_);
    setCopied(true);
    dispatch_.mainAfter(kCopiedDelay, [weak = self_.weak()] {
        if (auto* self = weak.get()) {
            self->setCopied(false);
        }
    });
}

void SSHCommandPreview::setCopied(bool copied) {
    copied_ = copied;
    button_->setIcon(copied ? themedIcon(theme_, Icon::check, &Palette::green)
                            : themedIcon(theme_, Icon::document, &Palette::secondary));
    button_->setToolTip(copied ? QStringLiteral("Copied") : QStringLiteral("Copy"));
    button_->setAccessibleDescription(copied ? QStringLiteral("Copied") : QString());
}

bool SSHCommandPreview::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize) {
        fit();
    }
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        update();
    }
    return QWidget::eventFilter(watched, event);
}

void SSHCommandPreview::paintEvent(QPaintEvent* /*event*/) {
    const Palette& colors = theme_.colors();
    QPainter painter(this);
    stylepaint::roundedBox(painter, QRectF(rect()), colors.field, withOpacity(colors.gray, kBorderOpacity),
                           grid::kControlRadius);
    if (text_->hasFocus()) {
        stylepaint::focusRing(painter, QRectF(rect()), colors.accent, grid::kControlRadius);
    }
}

} // namespace fernwick
