#include "skins/BaseSkins_p.h"

namespace kivui::skins::detail {

namespace {

// The older look: light grey surfaces, white fields, dark text, blue selection.
constexpr char kV5Sheet[] = R"css(
QPushButton {
  color: #1a1a1a;
  background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 #fcfcfc, stop:1 #e0e0e0);
  border: 1px solid #8e8e8e; border-radius: 3px; padding: 3px 10px; min-height: 16px;
}
QPushButton:hover { border-color: #5a8fd0; }
QPushButton:pressed, QPushButton:checked { background: #cfcfcf; }
QPushButton:default { border: 1px solid #2f6fc0; }
QPushButton:disabled { color: #a3a3a3; border-color: #c2c2c2; background: #ececec; }
QLineEdit, QPlainTextEdit, QTextEdit {
  color: #111111; background: #ffffff; border: 1px solid #a0a0a0; border-radius: 0px;
  selection-background-color: #3a78c9; selection-color: #ffffff;
}
QLineEdit { padding: 1px 3px; }
QLineEdit:focus, QPlainTextEdit:focus, QTextEdit:focus { border: 1px solid #3a78c9; }
QLineEdit:disabled, QPlainTextEdit:disabled, QTextEdit:disabled { color: #8a8a8a; background: #f2f2f2; }
QHeaderView::section {
  color: #1a1a1a; background: #e4e4e4; border: none;
  border-right: 1px solid #b8b8b8; border-bottom: 1px solid #b8b8b8; padding: 2px 4px;
}
QTreeView, QListView, QTableView { background: #ffffff; alternate-background-color: #f3f6fa; border: 1px solid #a0a0a0; }
QToolTip { color: #000000; background: #ffffe1; border: 1px solid #767676; }
QDialog { background: #e8e8e8; }
)css";

// The newer look: dark grey surfaces, darker fields, light text, brighter blue accents.
constexpr char kV7Sheet[] = R"css(
QPushButton {
  color: #e8e8e8;
  background: qlineargradient(x1:0, y1:0, x2:0, y2:1, stop:0 #5e5e5e, stop:1 #4c4c4c);
  border: 1px solid #2a2a2a; border-radius: 4px; padding: 3px 10px; min-height: 16px;
}
QPushButton:hover { border-color: #4aa3ff; }
QPushButton:pressed, QPushButton:checked { background: #3a3a3a; }
QPushButton:default { border: 1px solid #4aa3ff; }
QPushButton:disabled { color: #7c7c7c; border-color: #3a3a3a; background: #474747; }
QLineEdit, QPlainTextEdit, QTextEdit {
  color: #f0f0f0; background: #262626; border: 1px solid #1a1a1a; border-radius: 2px;
  selection-background-color: #2d7fd8; selection-color: #ffffff;
}
QLineEdit { padding: 1px 3px; }
QLineEdit:focus, QPlainTextEdit:focus, QTextEdit:focus { border: 1px solid #4aa3ff; }
QLineEdit:disabled, QPlainTextEdit:disabled, QTextEdit:disabled { color: #808080; background: #353535; }
QHeaderView::section {
  color: #dcdcdc; background: #4a4a4a; border: none;
  border-right: 1px solid #2e2e2e; border-bottom: 1px solid #2e2e2e; padding: 2px 4px;
}
QTreeView, QListView, QTableView { background: #2e2e2e; alternate-background-color: #353535; border: 1px solid #1e1e1e; }
QToolTip { color: #f0f0f0; background: #262626; border: 1px solid #5a5a5a; }
QDialog { background: #3d3d3d; }
)css";

} // namespace

std::string BaseSkinDescription(core::SkinVersion version)
{
    return version >= core::SkinVersion::kV7 ? kV7Sheet : kV5Sheet;
}

QPalette BasePalette(core::SkinVersion version)
{
    QPalette p;
    auto set = [&p](QPalette::ColorRole role, char const *normal, char const *disabled) {
        p.setColor(QPalette::Active, role, QColor(normal));
        p.setColor(QPalette::Inactive, role, QColor(normal));
        p.setColor(QPalette::Disabled, role, QColor(disabled));
    };
    if (version >= core::SkinVersion::kV7) {
        set(QPalette::Window, "#3d3d3d", "#3d3d3d");
        set(QPalette::WindowText, "#e4e4e4", "#7c7c7c");
        set(QPalette::Base, "#262626", "#353535");
        set(QPalette::AlternateBase, "#353535", "#353535");
        set(QPalette::Text, "#f0f0f0", "#808080");
        set(QPalette::Button, "#535353", "#474747");
        set(QPalette::ButtonText, "#e8e8e8", "#7c7c7c");
        set(QPalette::BrightText, "#ffffff", "#ffffff");
        set(QPalette::Highlight, "#2d7fd8", "#505050");
        set(QPalette::HighlightedText, "#ffffff", "#9a9a9a");
        set(QPalette::Link, "#6ab4ff", "#7c7c7c");
        set(QPalette::LinkVisited, "#b48cff", "#7c7c7c");
        set(QPalette::ToolTipBase, "#262626", "#262626");
        set(QPalette::ToolTipText, "#f0f0f0", "#f0f0f0");
        set(QPalette::PlaceholderText, "#8c8c8c", "#6c6c6c");
        set(QPalette::Light, "#6a6a6a", "#5a5a5a");
        set(QPalette::Midlight, "#555555", "#4a4a4a");
        set(QPalette::Mid, "#2e2e2e", "#2e2e2e");
        set(QPalette::Dark, "#1e1e1e", "#1e1e1e");
        set(QPalette::Shadow, "#0a0a0a", "#0a0a0a");
    } else {
        set(QPalette::Window, "#e8e8e8", "#e8e8e8");
        set(QPalette::WindowText, "#1a1a1a", "#9a9a9a");
        set(QPalette::Base, "#ffffff", "#f2f2f2");
        set(QPalette::AlternateBase, "#f3f6fa", "#f3f6fa");
        set(QPalette::Text, "#111111", "#8a8a8a");
        set(QPalette::Button, "#eeeeee", "#ececec");
        set(QPalette::ButtonText, "#1a1a1a", "#a3a3a3");
        set(QPalette::BrightText, "#ffffff", "#ffffff");
        set(QPalette::Highlight, "#3a78c9", "#c8c8c8");
        set(QPalette::HighlightedText, "#ffffff", "#7a7a7a");
        set(QPalette::Link, "#1456b8", "#9a9a9a");
        set(QPalette::LinkVisited, "#6a2fb0", "#9a9a9a");
        set(QPalette::ToolTipBase, "#ffffe1", "#ffffe1");
        set(QPalette::ToolTipText, "#000000", "#000000");
        set(QPalette::PlaceholderText, "#8a8a8a", "#b0b0b0");
        set(QPalette::Light, "#ffffff", "#ffffff");
        set(QPalette::Midlight, "#f4f4f4", "#f4f4f4");
        set(QPalette::Mid, "#b4b4b4", "#c4c4c4");
        set(QPalette::Dark, "#8e8e8e", "#a8a8a8");
        set(QPalette::Shadow, "#505050", "#707070");
    }
    return p;
}

int BaseFontPixelSize(core::SkinVersion)
{
    return 12;
}

} // namespace kivui::skins::detail
