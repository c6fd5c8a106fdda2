#include "screens/theme/Style.h"

#include "screens/theme/ButtonRole.h"
#include "screens/theme/Grid.h"
#include "screens/theme/Parts.h"
#include "screens/theme/StylePaint.h"
#include "screens/theme/Theme.h"

#include <QAbstractSpinBox>
#include <QComboBox>
#include <QMenu>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSlider>
#include <QStyleOption>

#include <algorithm>

namespace fernwick {

namespace {

constexpr int kScrollBarExtent = 10;
constexpr int kShortestHandle = 28;
constexpr int kIndicatorSize = 16;
constexpr int kMenuItemHeight = 26;
constexpr int kMenuMargin = 5;
constexpr int kButtonPadding = 14;
constexpr int kFieldPadding = 6;
constexpr int kSliderHandle = 18;
constexpr int kToolTipWakeUp = 600; // milliseconds

QRegion roundedRegion(const QRect& area, int radius) {
    const int side = 2 * radius;
    QRegion region(area.adjusted(radius, 0, -radius, 0));
    region += area.adjusted(0, radius, 0, -radius);
    for (const QPoint corner :
         {area.topLeft(), area.topRight() - QPoint(side - 1, 0), area.bottomLeft() - QPoint(0, side - 1),
          area.bottomRight() - QPoint(side - 1, side - 1)}) {
        region += QRegion(QRect(corner, QSize(side, side)), QRegion::Ellipse);
    }
    return region;
}

} // namespace

Style::Style(const Theme& theme) : QProxyStyle(QStringLiteral("Fusion")), theme_(theme) {}

void Style::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                          const QWidget* widget) const {
    const Palette& colors = theme_.colors();
    switch (element) {
    case PE_PanelLineEdit:
        if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
            !frame || frame->lineWidth > 0) {
            stylepaint::textField(*painter, *option, colors);
        }
        return;
    case PE_FrameLineEdit:
    case PE_PanelMenuBar:
    case PE_PanelStatusBar:
    case PE_FrameStatusBarItem:
    case PE_PanelScrollAreaCorner:
        return;
    case PE_FrameFocusRect:
        stylepaint::focusRing(*painter, QRectF(option->rect), colors.accent, grid::kTight);
        return;
    case PE_IndicatorCheckBox:
        stylepaint::checkBox(*painter, *option, theme_);
        return;
    case PE_IndicatorRadioButton:
        stylepaint::radioButton(*painter, *option, colors);
        return;
    case PE_PanelButtonTool:
        stylepaint::toolButtonGround(*painter, *option, colors);
        return;
    case PE_PanelMenu:
    case PE_FrameMenu:
        stylepaint::menuPanel(*painter, *option, colors);
        return;
    case PE_PanelTipLabel:
        stylepaint::roundedBox(*painter, QRectF(option->rect), colors.popup, colors.border, 0);
        return;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

bool Style::drawBareMenuPart(ControlElement element, const QStyleOption& option, QPainter& painter) const {
    switch (element) {
    case CE_MenuEmptyArea:
    case CE_MenuHMargin:
    case CE_MenuVMargin:
        return true;
    case CE_MenuBarEmptyArea:
        painter.fillRect(option.rect, theme_.colors().window);
        return true;
    default:
        return false;
    }
}

void Style::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                        const QWidget* widget) const {
    const Palette& colors = theme_.colors();
    if (drawBareMenuPart(element, *option, *painter)) {
        return;
    }
    switch (element) {
    case CE_PushButtonBevel:
        stylepaint::buttonGround(*painter, *option, buttonRole(widget), colors);
        return;
    case CE_PushButtonLabel:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option)) {
            stylepaint::buttonLabel(*painter, *button, buttonRole(widget), colors);
        }
        return;
    case CE_MenuItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
            item != nullptr && item->menuItemType != QStyleOptionMenuItem::SubMenu) {
            QStyleOptionMenuItem inset = *item;
            if (qobject_cast<const QComboBox*>(widget) != nullptr) { // its list has no margin of its own
                inset.rect.adjust(kMenuMargin, 0, -kMenuMargin, 0);
            }
            stylepaint::menuItem(*painter, inset, theme_);
            return;
        }
        break;
    case CE_ComboBoxLabel:
        if (const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option)) {
            stylepaint::comboBoxLabel(*painter, *box, colors);
        }
        return;
    case CE_ShapedFrame:
        if (const auto* edit = qobject_cast<const QPlainTextEdit*>(widget); edit != nullptr) {
            if (edit->frameShape() == QFrame::NoFrame) {
                return;
            }
            stylepaint::textField(*painter, *option, colors);
            return;
        }
        break;
    case CE_MenuBarItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
            stylepaint::menuBarItem(*painter, *item, colors);
        }
        return;
    case CE_Splitter:
        painter->fillRect(option->rect, colors.separator);
        return;
    default:
        break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void Style::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                               const QWidget* widget) const {
    if (control == CC_ScrollBar) {
        if (const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option)) {
            const QRect handle = subControlRect(CC_ScrollBar, option, SC_ScrollBarSlider, widget);
            stylepaint::scrollBar(*painter, *slider, QRectF(handle), theme_.colors());
            return;
        }
    }
    if (control == CC_ComboBox) {
        if (const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option)) {
            stylepaint::comboBox(*painter, *box, theme_);
            return;
        }
    }
    if (const auto* box = qstyleoption_cast<const QStyleOptionSpinBox*>(option); box && control == CC_SpinBox) {
        stylepaint::spinBox(*painter, *box, subControlRect(control, option, SC_SpinBoxUp, widget),
                            subControlRect(control, option, SC_SpinBoxDown, widget), theme_);
        return;
    }
    if (control == CC_Slider) {
        if (const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option)) {
            const QRect handle = subControlRect(CC_Slider, option, SC_SliderHandle, widget);
            stylepaint::slider(*painter, *slider, QRectF(handle), theme_.colors());
            return;
        }
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QRect Style::subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const {
    if (element == SE_LineEditContents) {
        const bool inSpinBox = widget != nullptr && qobject_cast<QAbstractSpinBox*>(widget->parentWidget());
        const int padding = inSpinBox ? kFieldPadding / 2 : kFieldPadding; // the box has some already
        return option->rect.adjusted(padding, 1, -padding, -1);
    }
    return QProxyStyle::subElementRect(element, option, widget);
}

QRect Style::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl subControl,
                            const QWidget* widget) const {
    const auto* bar = control == CC_ScrollBar ? qstyleoption_cast<const QStyleOptionSlider*>(option) : nullptr;
    if (bar == nullptr) {
        return QProxyStyle::subControlRect(control, option, subControl, widget);
    }
    const bool upright = bar->orientation == Qt::Vertical;
    const int length = upright ? bar->rect.height() : bar->rect.width();
    const qint64 span = qint64{bar->maximum} - bar->minimum + bar->pageStep;
    const auto proportional = span > 0 ? static_cast<int>(qint64{length} * bar->pageStep / span) : length;
    const int handle = std::clamp(proportional, std::min(kShortestHandle, length), std::max(length, 0));
    const int start = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition, length - handle,
                                              bar->upsideDown);
    const auto stretch = [&](int from, int size) {
        return upright ? QRect(bar->rect.left(), bar->rect.top() + from, bar->rect.width(), size)
                       : QRect(bar->rect.left() + from, bar->rect.top(), size, bar->rect.height());
    };
    switch (subControl) {
    case SC_ScrollBarSlider:
        return stretch(start, handle);
    case SC_ScrollBarGroove:
        return bar->rect;
    case SC_ScrollBarSubPage:
        return stretch(0, start);
    case SC_ScrollBarAddPage:
        return stretch(start + handle, length - start - handle);
    default:
        return {};
    }
}

QSize Style::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                              const QWidget* widget) const {
    switch (type) {
    case CT_PushButton:
        return {size.width() + 2 * kButtonPadding,
                std::max(size.height() + grid::kSmall, grid::kControlHeight)};
    case CT_LineEdit:
        return {size.width() + 2 * kFieldPadding, std::max(size.height() + grid::kSmall, grid::kControlHeight)};
    case CT_SpinBox:
        return {size.width() + 2 * grid::kLarge, std::max(size.height(), grid::kControlHeight)};
    case CT_ComboBox:
        return {size.width() + grid::kSmall + 2 * grid::kMedium + grid::kSmall, grid::kControlHeight};
    case CT_MenuBarItem:
        return {size.width() + 2 * grid::kSmall + 2, size.height() + grid::kSmall};
    case CT_MenuItem: {
        const QSize base = QProxyStyle::sizeFromContents(type, option, size, widget);
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        const bool line = item != nullptr && item->menuItemType == QStyleOptionMenuItem::Separator;
        return {base.width() + grid::kExtraLarge,
                line ? grid::kSmall + 1 : std::max(base.height(), kMenuItemHeight)};
    }
    default:
        return QProxyStyle::sizeFromContents(type, option, size, widget);
    }
}

QIcon Style::standardIcon(StandardPixmap icon, const QStyleOption* option, const QWidget* widget) const {
    // Every menu bar asks for the mark of a bar that is too narrow, and the toolkit's comes from several files.
    if (icon == SP_ToolBarHorizontalExtensionButton || icon == SP_ToolBarVerticalExtensionButton) {
        return themedIcon(theme_, Icon::chevronDown, &Palette::secondary);
    }
    return QProxyStyle::standardIcon(icon, option, widget);
}

int Style::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
    case PM_ScrollBarExtent:
        return kScrollBarExtent;
    case PM_ScrollBarSliderMin:
        return kShortestHandle;
    case PM_ScrollView_ScrollBarSpacing:
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
    case PM_MenuBarPanelWidth:
    case PM_MenuBarItemSpacing:
        return 0;
    case PM_MenuHMargin:
    case PM_MenuVMargin:
        return kMenuMargin;
    case PM_MenuPanelWidth:
    case PM_SplitterWidth:
        return 1;
    case PM_MenuBarVMargin:
        return 2;
    case PM_MenuBarHMargin:
        return grid::kTight + 2;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
        return kIndicatorSize;
    case PM_SliderThickness:
    case PM_SliderLength:
        return kSliderHandle;
    case PM_ToolTipLabelFrameWidth:
        return grid::kTight + 1;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int Style::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                     QStyleHintReturn* returned) const {
    switch (hint) {
    case SH_Menu_Mask:
        if (auto* mask = qstyleoption_cast<QStyleHintReturnMask*>(returned);
            mask != nullptr && option != nullptr) {
            mask->region = roundedRegion(option->rect, grid::kControlRadius);
            return 1;
        }
        return 0;
    case SH_UnderlineShortcut:
    case SH_ToolTip_Mask:
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
        return 0;
    case SH_ComboBox_Popup: // the list of a combo box looks like a menu
        return 1;
    case SH_Slider_AbsoluteSetButtons:
        return Qt::LeftButton;
    case SH_ToolTip_WakeUpDelay:
        return kToolTipWakeUp;
    case SH_MenuBar_MouseTracking:
    case SH_Menu_MouseTracking:
        return 1;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
}

void Style::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    if (qobject_cast<QScrollBar*>(widget) != nullptr || qobject_cast<QAbstractButton*>(widget) != nullptr ||
        qobject_cast<QComboBox*>(widget) != nullptr || qobject_cast<QSlider*>(widget) != nullptr) {
        widget->setAttribute(Qt::WA_Hover);
    }
    if (qobject_cast<QScrollBar*>(widget) != nullptr) {
        widget->setAttribute(Qt::WA_OpaquePaintEvent, false);
    }
}

} // namespace fernwick
