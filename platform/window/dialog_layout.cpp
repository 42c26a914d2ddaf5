// Automatic layout of a dialog template: a grid of group boxes, each a two-column form.
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QWidget>
#include <map>
#include <string>

#include "platform/window/picture.h"
#include "platform/window/property_page.h"
#include "platform/window/qt_ownership.h"

namespace vrc::window {
namespace {

// One group box (or the group-less area) being filled.
struct GroupArea {
  QWidget* widget = nullptr;
  QGridLayout* grid = nullptr;
  int next_row = 0;
  QHBoxLayout* button_row = nullptr;  // open while consecutive buttons arrive
  QWidget* pending_label = nullptr;   // a label waiting for the control it names
};

std::unique_ptr<Control> make_control(const ControlTemplate& row, Window* owner, QWidget* parent) {
  switch (row.kind) {
    case ControlKind::Combo: return std::make_unique<ComboBox>(row.id, owner, parent);
    case ControlKind::Edit: return std::make_unique<Edit>(row.id, owner, parent);
    case ControlKind::MultiLineEdit: return std::make_unique<MultiLineEdit>(row.id, owner, parent);
    case ControlKind::ScrollBar: return std::make_unique<ScrollBar>(row.id, owner, parent);
    case ControlKind::Picture: return std::make_unique<Picture>(row.id, owner, parent);
    case ControlKind::Check:
    case ControlKind::Radio:
    case ControlKind::Button: return std::make_unique<Button>(row.kind, row.id, row.caption, owner, parent);
    case ControlKind::Label:
    case ControlKind::Static:
    case ControlKind::GroupBox: return std::make_unique<StaticText>(row.kind, row.id, row.caption, owner, parent);
  }
  return nullptr;
}

class Builder {
 public:
  Builder(const DialogTemplate& dialog, Window* owner, QWidget* root)
      : m_dialog(dialog), m_owner(owner), m_root(root), m_page_grid(make_child<QGridLayout>(root)) {}

  std::vector<std::unique_ptr<Control>> build() {
    for (const ControlTemplate& row : m_dialog.controls) {
      if (row.kind == ControlKind::GroupBox) {
        area_for(row.caption, row.id);
        continue;
      }
      place(row, area_for(row.group, IDC_STATIC));
    }
    m_page_grid->setRowStretch(m_page_grid->rowCount(), 1);
    return std::move(m_controls);
  }

 private:
  GroupArea& area_for(const std::string& caption, int id) {
    auto found = m_areas.find(caption);
    if (found != m_areas.end()) return found->second;
    GroupArea area;
    if (caption.empty()) {
      area.widget = make_child<QWidget>(m_root);
    } else {
      m_controls.push_back(std::make_unique<StaticText>(ControlKind::GroupBox, id, caption, m_owner, m_root));
      area.widget = m_controls.back()->widget();
    }
    area.grid = make_child<QGridLayout>(area.widget);
    area.grid->setColumnStretch(1, 1);
    const int columns = std::max(1, m_dialog.columns);
    m_page_grid->addWidget(area.widget, m_cells / columns, m_cells % columns, Qt::AlignTop);
    ++m_cells;
    return m_areas.emplace(caption, area).first->second;
  }

  void place(const ControlTemplate& row, GroupArea& area) {
    std::unique_ptr<Control> control = make_control(row, m_owner, area.widget);
    QWidget* widget = control->widget();
    m_controls.push_back(std::move(control));
    if (row.kind == ControlKind::Label) {
      area.button_row = nullptr;
      area.pending_label = widget;
      return;
    }
    if (area.pending_label) {
      area.grid->addWidget(area.pending_label, area.next_row, 0);
      area.grid->addWidget(widget, area.next_row++, 1);
      area.pending_label = nullptr;
      area.button_row = nullptr;
      return;
    }
    if (row.kind == ControlKind::Button) {
      if (!area.button_row) {
        area.button_row = make_child<QHBoxLayout>();
        area.grid->addLayout(area.button_row, area.next_row++, 0, 1, 2);
      }
      area.button_row->addWidget(widget);
      return;
    }
    area.button_row = nullptr;
    area.grid->addWidget(widget, area.next_row++, 0, 1, 2);
  }

  const DialogTemplate& m_dialog;
  Window* m_owner;
  QWidget* m_root;
  QGridLayout* m_page_grid;
  std::map<std::string, GroupArea> m_areas;
  int m_cells = 0;
  std::vector<std::unique_ptr<Control>> m_controls;
};

}  // namespace

std::vector<std::unique_ptr<Control>> build_dialog(const DialogTemplate& dialog, Window* owner, QWidget* root) {
  return Builder(dialog, owner, root).build();
}

}  // namespace vrc::window
