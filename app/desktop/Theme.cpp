#include "app/desktop/Theme.h"

#include "platform/AppFolders.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QStyleOption>

#include <array>

namespace korvo {

namespace {

QPalette darkPalette()
{
    QPalette palette;
    const auto set = [&](QPalette::ColorRole role, const QColor& color, const QColor& disabled) {
        palette.setColor(role, color);
        palette.setColor(QPalette::Disabled, role, disabled);
    };
    constexpr QColor faint{0x80, 0x80, 0x80};
    set(QPalette::Window, theme::window, theme::window);
    set(QPalette::Base, theme::field, theme::window);
    set(QPalette::AlternateBase, theme::cell, theme::window);
    set(QPalette::Button, {0x3a, 0x3a, 0x3a}, {0x30, 0x30, 0x30});
    set(QPalette::ToolTipBase, theme::cell, theme::cell);
    set(QPalette::Highlight, theme::accentFill, theme::selectedCell);
    for (const auto role :
        {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText})
        set(role, theme::text, faint);
    set(QPalette::HighlightedText, Qt::white, faint);
    set(QPalette::PlaceholderText, theme::mutedText, faint);
    set(QPalette::Link, {0x7c, 0xbc, 0xff}, faint);
    set(QPalette::BrightText, Qt::white, faint);
    return palette;
}

/// The colour of what is drawn around an element where Fusion's own cannot be seen; invalid for the others.
QColor edgeOf(QStyle::PrimitiveElement element, const QStyleOption& option)
{
    switch (element) {
    case QStyle::PE_IndicatorItemViewItemDrop:
        return theme::accent;
    case QStyle::PE_IndicatorCheckBox:
    case QStyle::PE_IndicatorRadioButton:
        return option.state.testFlag(QStyle::State_Enabled) ? theme::edge : theme::selectedCell;
    case QStyle::PE_FrameMenu:
        return theme::selectedCell;
    default:
        return {};
    }
}

/// Fusion with edges that show on dark grounds, and without what does not belong there.
class DarkStyle : public QProxyStyle {
public:
    DarkStyle() : QProxyStyle("Fusion") { }

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
        const QWidget* widget) const override
    {
        QProxyStyle::drawPrimitive(element, option, painter, widget);
        const QColor color = edgeOf(element, *option);
        if (!color.isValid())
            return;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setBrush(Qt::NoBrush);
        painter->setPen(color);
        const auto edge = QRectF(option->rect).adjusted(0.5, 0.5, -0.5, -0.5);
        if (element == PE_IndicatorRadioButton)
            painter->drawEllipse(edge);
        else
            painter->drawRoundedRect(edge, 2, 2);
        painter->restore();
    }

    int pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override
    {
        return metric == PM_MenuPanelWidth ? 1 : QProxyStyle::pixelMetric(metric, option, widget);
    }

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
        QStyleHintReturn* result) const override
    {
        if (hint == SH_EtchDisabledText || hint == SH_DialogButtonBox_ButtonsHaveIcons)
            return 0;
        return QProxyStyle::styleHint(hint, option, widget, result);
    }
};

/// Where the style alone would not show enough: focus, the lines between the places, sliders.
constexpr auto sheet = R"(
QToolTip { color: #e6e6e6; background: #2c2c2c; border: 1px solid #5a5a5a; padding: 3px; }
QSplitter::handle { background: #161616; }
QSplitter::handle:horizontal { width: 1px; }
QSplitter::handle:vertical { height: 1px; }
QToolBar { border: 0; border-bottom: 1px solid #161616; spacing: 6px; padding: 4px 6px; }
QStatusBar { border-top: 1px solid #161616; }
QStatusBar::item { border: 0; }
QLineEdit:focus, QPlainTextEdit:focus, QTextEdit:focus, QSpinBox:focus, QDoubleSpinBox:focus {
    border: 1px solid #4fa3f7; }
QLineEdit, QPlainTextEdit, QTextEdit { background: #1b1b1b; border: 1px solid #4a4a4a; border-radius: 3px;
    padding: 2px 4px; selection-background-color: #1f5a99; }
QComboBox QAbstractItemView { border: 1px solid #5a5a5a; }
#sidebar::item { padding: 2px 0; }
#completion { background: #2c2c2c; border: 1px solid #5a5a5a; }
#completion::item { padding: 3px 6px; }
#completion::item:selected { color: #ffffff; background: #1f5a99; }
QTabWidget::pane { border: 0; }
QTabBar::tab { padding: 6px 14px; color: #b4b4b4; border-bottom: 2px solid transparent; background: #262626; }
QTabBar::tab:selected { color: #ffffff; border-bottom-color: #4fa3f7; }
QTabBar::tab:focus { border: 1px solid #4fa3f7; }
QScrollBar { background: #1b1b1b; border: 0; }
QScrollBar:vertical { width: 13px; }
QScrollBar:horizontal { height: 13px; }
QScrollBar::handle { background: #5c5c5c; border-radius: 4px; margin: 2px; }
QScrollBar::handle:hover { background: #7a7a7a; }
QScrollBar::handle:vertical { min-height: 36px; }
QScrollBar::handle:horizontal { min-width: 36px; }
QScrollBar::add-line, QScrollBar::sub-line { width: 0; height: 0; }
QScrollBar::add-page, QScrollBar::sub-page { background: none; }
)";

/// Not looked up in a theme, since not every desktop names one.
QIcon installedIcon()
{
    const auto folder = shareFolder() / "icons/hicolor/scalable/apps";
    const QString file = QFile::decodeName((folder / "korvo.svg").c_str());
    return QFile::exists(file) ? QIcon(file) : QIcon(); // there is none where the program is not installed
}

} // namespace

QColor labelColor(PhotoLabel label)
{
    static constexpr std::array<QColor, 8> colors{QColor(0, 0, 0, 0), {0xff, 0x6b, 0x5e}, {0xff, 0xa9, 0x40},
        {0xf5, 0xd8, 0x4a}, {0x6f, 0xd0, 0x6a}, {0x6a, 0xb4, 0xff}, {0xc7, 0x9a, 0xff}, {0xb8, 0xb8, 0xb8}};
    return colors[static_cast<std::size_t>(label)];
}

void applyTheme(QApplication& application)
{
    application.setStyle(new DarkStyle); // which takes it over
    application.setPalette(darkPalette());
    application.setStyleSheet(sheet);
    QGuiApplication::setWindowIcon(installedIcon());
}

} // namespace korvo
