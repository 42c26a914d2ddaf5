// The property sheet: pages added, created when first shown, removed and re-added; the Apply
// Now and Help buttons; extra buttons; the system-menu Close routed as a command.
#include <QCloseEvent>
#include <QWidget>

#include "platform/window/property_sheet.h"
#include "qt_environment.h"
#include "sample_pages.h"

namespace window_test {
namespace {

using namespace vrc::window;

class RecordingSheet : public PropertySheet {
 public:
  using PropertySheet::PropertySheet;
  std::vector<int> commands;
  std::vector<WPARAM> system_commands;
  bool hide_on_close = true;
  int initialised = 0;

 protected:
  bool on_init_dialog() override {
    ++initialised;
    return true;
  }
  void on_command(int id, uint16_t) override { commands.push_back(id); }
  void on_sys_command(WPARAM command) override {
    system_commands.push_back(command);
    if (hide_on_close) PropertySheet::on_sys_command(command);
  }
};

class Sheet : public ::testing::Test {
 protected:
  void SetUp() override {
    m_sheet.add_page(&m_first);
    m_sheet.add_page(&m_second);
  }
  SamplePage m_first{kAcquisitionDialog};
  SamplePage m_second{kRegisterDialog};
  RecordingSheet m_sheet{"Vireo Control", nullptr};
};

TEST_F(Sheet, CreatesPageWindowsWhenTheirTabsAreFirstShown) {
  EXPECT_FALSE(m_sheet.has_window());
  ASSERT_TRUE(m_sheet.create());
  EXPECT_EQ(m_sheet.initialised, 1);
  EXPECT_EQ(m_sheet.text(), "Vireo Control");
  EXPECT_TRUE(m_first.has_window());
  EXPECT_FALSE(m_second.has_window());
  EXPECT_EQ(m_sheet.active_page(), &m_first);
  ASSERT_TRUE(m_sheet.set_active_page(1));
  EXPECT_TRUE(m_second.has_window());
  EXPECT_EQ(m_sheet.active_index(), 1);
  EXPECT_FALSE(m_sheet.set_active_page(2));
  EXPECT_EQ(m_sheet.tab_captions(), (std::vector<std::string>{"Acq Trig", "Register"}));
  EXPECT_NE(m_sheet.child(ID_TAB_CONTROL), nullptr);
}

TEST_F(Sheet, RemovingAPageDestroysItsWindowAndKeepsThePage) {
  m_sheet.create();
  m_sheet.set_active_page(1);
  m_second.control<Edit>(201)->set_text("abc");
  m_sheet.remove_page(&m_second);
  EXPECT_FALSE(m_second.has_window());
  EXPECT_EQ(m_sheet.page_index(&m_second), -1);
  EXPECT_EQ(m_sheet.page_count(), 1);
  m_sheet.add_page(&m_second);
  m_sheet.add_page(&m_second);  // a page is in a sheet once
  EXPECT_EQ(m_sheet.page_count(), 2);
  m_sheet.set_active_page(1);
  EXPECT_EQ(m_second.control<Edit>(201)->text(), "");  // a fresh window
}

TEST_F(Sheet, RemovingTheActivePageActivatesAnotherWithItsWindow) {
  SamplePage third{kRegisterDialog};
  m_sheet.add_page(&third);
  m_sheet.create();
  m_sheet.set_active_page(1);
  m_sheet.remove_page(&m_second);
  EXPECT_FALSE(m_second.has_window());
  ASSERT_EQ(m_sheet.active_page(), &third);
  EXPECT_TRUE(third.has_window());
}

TEST_F(Sheet, APageDestroyedFirstLeavesTheSheet) {
  auto extra = std::make_unique<SamplePage>(kRegisterDialog);
  m_sheet.add_page(extra.get());
  m_sheet.create();
  m_sheet.set_active_page(2);
  extra.reset();
  EXPECT_EQ(m_sheet.page_count(), 2);
  EXPECT_EQ(m_sheet.tab_captions().size(), 2u);
}

TEST_F(Sheet, ApplyNowStartsDisabledAndButtonsSendCommands) {
  m_sheet.create();
  auto* apply = dynamic_cast<Button*>(m_sheet.child(ID_APPLY_NOW));
  auto* help = dynamic_cast<Button*>(m_sheet.child(ID_HELP));
  ASSERT_NE(apply, nullptr);
  ASSERT_NE(help, nullptr);
  EXPECT_EQ(apply->text(), "Apply Now");
  EXPECT_FALSE(apply->enabled());
  apply->click_as_user();
  EXPECT_TRUE(m_sheet.commands.empty());
  apply->enable(true);
  apply->click_as_user();
  help->click_as_user();
  Button* live = m_sheet.add_button(17001, "Live", 0, 0);
  ASSERT_NE(live, nullptr);
  live->click_as_user();
  EXPECT_EQ(m_sheet.commands, (std::vector<int>{ID_APPLY_NOW, ID_HELP, 17001}));
  EXPECT_EQ(m_sheet.child(17001), live);
}

TEST_F(Sheet, CloseFromTheWindowManagerIsASystemCommand) {
  m_sheet.create();
  m_sheet.show(SW_SHOW);
  EXPECT_TRUE(m_sheet.visible());
  m_sheet.hide_on_close = false;
  m_sheet.widget()->close();
  EXPECT_EQ(m_sheet.system_commands, (std::vector<WPARAM>{SC_CLOSE}));
  EXPECT_TRUE(m_sheet.visible());  // the close itself changes nothing
  m_sheet.hide_on_close = true;
  m_sheet.widget()->close();
  EXPECT_FALSE(m_sheet.visible());  // the default handling hides
  EXPECT_TRUE(m_sheet.has_window());
}

TEST_F(Sheet, SheetOverAParentWindowStaysItsOwnWindow) {
  RecordingWindow parent;
  RecordingSheet child_sheet("Child", &parent);
  EXPECT_EQ(child_sheet.parent_window(), &parent);
  ASSERT_TRUE(child_sheet.create());
  EXPECT_TRUE(child_sheet.widget()->isWindow());
}

}  // namespace
}  // namespace window_test
