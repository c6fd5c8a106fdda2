#include "screens/detail/SSHCommandPreview.h"

#include "screens/theme/DisplayText.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"
#include "screens/theme/StylePaint.h"
#include "tunnel/SshCommand.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QTextDocument>
#include <QTextEdit>
#include <QToolButton>

#include <algorithm>
#include <cmath>
#include <memory>

namespace fernwick {

namespace {

constexpr qsizetype kLongest = 8192;
constexpr int kHighest = 180;
constexpr int kNarrowest = 120;
constexpr double kTextMargin = 6.0;
constexpr double kBorderOpacity = 0.25;

// Text that can be selected, as high as its lines are at the width that it is given.
class WrappedText final : public QTextEdit {
public:
    WrappedText(const QFont& font, QWidget* parent) : QTextEdit(parent) {
        setReadOnly(true);
        setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        setTabChangesFocus(true);
        setFrameShape(QFrame::NoFrame);
        setFont(font);
        setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        document()->setDocumentMargin(kTextMargin);
        viewport()->setAutoFillBackground(false);
        QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
        policy.setHeightForWidth(true);
        setSizePolicy(policy);
    }

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override {
        const std::unique_ptr<QTextDocument> measured(document()->clone());
        measured->setTextWidth(width);
        const int height = static_cast<int>(std::ceil(measured->size().height()));
        return std::clamp(height, grid::kToolButtonSize, kHighest);
    }
    [[nodiscard]] QSize sizeHint() const override { return {kNarrowest, grid::kToolButtonSize}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }
};

} // namespace

SSHCommandPreview::SSHCommandPreview(const Theme& theme, platform::Pasteboard& pasteboard,
                                     platform::Dispatch& dispatch, QWidget* parent)
    : QWidget(parent),
      theme_(theme),
      pasteboard_(pasteboard),
      dispatch_(dispatch),
      text_(new WrappedText(theme.monospaced(11), this)),
      button_(makeIconButton(theme, Icon::document, QStringLiteral("Copy"), QStringLiteral("copyCommandButton"),
                             this)),
      self_(*this) {
    setObjectName(QStringLiteral("sshCommandPreview"));
    text_->setObjectName(QStringLiteral("sshCommandText"));
    text_->setAccessibleName(QStringLiteral("SSH Command Preview"));
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
    text_->updateGeometry();
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
