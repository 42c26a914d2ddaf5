// Controls built from a template, their notifications, data exchange and the layout.
#include <QKeyEvent>
#include <QWidget>

#include "platform/window/scripted_desktop.h"
#include "qt_environment.h"
#include "sample_pages.h"

namespace window_test {
namespace {

using namespace vrc::window;

class Controls : public ::testing::Test {
 protected:
  void SetUp() override {
    m_previous = set_desktop(std::make_unique<ScriptedDesktop>());
    m_scripted = static_cast<ScriptedDesktop*>(&desktop());
    m_container = std::make_unique<QWidget>();
    ASSERT_TRUE(m_page.create(m_container.get(), nullptr));
  }
  void TearDown() override {
    m_page.destroy();
    set_desktop(std::move(m_previous));
  }

  std::unique_ptr<Desktop> m_previous;
  ScriptedDesktop* m_scripted = nullptr;
  std::unique_ptr<QWidget> m_container;
  SamplePage m_page{kAcquisitionDialog};
};

TEST_F(Controls, EveryTemplateRowBecomesAControlFoundById) {
  EXPECT_EQ(m_page.control<ComboBox>(100)->kind(), ControlKind::Combo);
  EXPECT_EQ(m_page.control<Edit>(102)->kind(), ControlKind::Edit);
  EXPECT_EQ(m_page.control<Button>(104)->kind(), ControlKind::Check);
  EXPECT_EQ(m_page.control<Button>(107)->kind(), ControlKind::Radio);
  EXPECT_EQ(m_page.control<Button>(109)->text(), "Expose");
  EXPECT_EQ(m_page.child(999), nullptr);
  EXPECT_EQ(m_page.child(IDC_STATIC), nullptr);
  int groups = 0;
  for (const auto& control : m_page.controls()) groups += control->kind() == ControlKind::GroupBox;
  EXPECT_EQ(groups, 3);
  EXPECT_EQ(m_page.control<Control>(100)->parent_window(), &m_page);
}

TEST_F(Controls, ComboKeepsItemDataAndNotifiesOnlyUserSelections) {
  ComboBox& combo = *m_page.control<ComboBox>(100);
  EXPECT_EQ(combo.count(), 3);
  EXPECT_EQ(combo.item_data(2), 0xC002041Cu);
  EXPECT_EQ(combo.item_data(3), 0xFFFFFFFFu);
  combo.set_current(0);
  EXPECT_TRUE(m_page.commands.empty());
  combo.select_as_user(2);
  ASSERT_EQ(m_page.commands.size(), 1u);
  EXPECT_EQ(m_page.commands[0].id, 100);
  EXPECT_EQ(m_page.commands[0].code, CBN_SELCHANGE);
  EXPECT_EQ(combo.text(), "Internal Timer");
  combo.set_current(7);
  EXPECT_EQ(combo.current(), -1);
  EXPECT_EQ(combo.insert_string(1, "Opto 1b"), 1);
  EXPECT_EQ(combo.current(), -1);  // inserting selects nothing
  combo.reset_content();
  EXPECT_EQ(combo.count(), 0);
}

TEST_F(Controls, EditReportsChangeAndFocusLoss) {
  Edit& edit = *m_page.control<Edit>(102);
  edit.set_text("12");
  EXPECT_TRUE(m_page.commands.empty());
  edit.type_as_user("13");
  ASSERT_EQ(m_page.commands.size(), 2u);
  EXPECT_EQ(m_page.commands[0].code, EN_CHANGE);
  EXPECT_EQ(m_page.commands[1].code, EN_KILLFOCUS);
  EXPECT_EQ(edit.text(), "13");
}

TEST_F(Controls, ButtonsClickOnlyWhenEnabled) {
  Button& chain = *m_page.control<Button>(104);
  const bool before = chain.checked();
  chain.click_as_user();
  EXPECT_NE(chain.checked(), before);
  ASSERT_EQ(m_page.commands.size(), 1u);
  EXPECT_EQ(m_page.commands[0].code, BN_CLICKED);
  chain.enable(false);
  EXPECT_FALSE(chain.enabled());
  chain.click_as_user();
  EXPECT_EQ(m_page.commands.size(), 1u);
  chain.show(SW_HIDE);
  EXPECT_FALSE(chain.visible());
}

TEST_F(Controls, RadioButtonsOfAGroupExcludeEachOther) {
  Button& first = *m_page.control<Button>(106);
  Button& second = *m_page.control<Button>(107);
  first.click_as_user();
  second.click_as_user();
  EXPECT_FALSE(first.checked());
  EXPECT_TRUE(second.checked());
}

TEST_F(Controls, ScrollBarAndMultiLineEditOnTheOtherPage) {
  QWidget container;
  SamplePage registers{kRegisterDialog};
  ASSERT_TRUE(registers.create(&container, nullptr));
  ScrollBar& bar = *registers.control<ScrollBar>(204);
  bar.set_position(300);
  EXPECT_EQ(bar.position(), 255);  // held to its range
  bar.scroll_as_user(40);
  ASSERT_EQ(registers.scrolls.size(), 1u);
  EXPECT_EQ(registers.scrolls[0], std::make_pair(204, 40));
  MultiLineEdit& result = *registers.control<MultiLineEdit>(203);
  result.set_text("0001020304\r\n0506");
  EXPECT_EQ(result.text(), "0001020304\r\n0506");
  EXPECT_EQ(registers.control<StaticText>(200)->text(), "Read from Camera (hex values)");
  registers.destroy();
}

TEST_F(Controls, UpdateDataPushesMembersAndPullsThemBack) {
  // on_init_dialog pushed the initial members.
  EXPECT_EQ(m_page.control<ComboBox>(100)->current(), 1);
  EXPECT_EQ(m_page.control<Edit>(102)->text(), "-5");
  EXPECT_EQ(m_page.control<Edit>(103)->text(), "4000000000");
  EXPECT_TRUE(m_page.control<Button>(104)->checked());
  EXPECT_EQ(m_page.control<StaticText>(105)->text(), " Slave ");
  EXPECT_TRUE(m_page.control<Button>(108)->checked());

  m_page.control<ComboBox>(100)->set_current(2);
  m_page.control<Edit>(102)->set_text(" +17 ");
  m_page.control<Edit>(103)->set_text("4294967295");
  m_page.control<Button>(104)->set_checked(false);
  m_page.control<Button>(106)->set_checked(true);
  ASSERT_TRUE(m_page.update_data(true));
  EXPECT_EQ(m_page.source_index, 2);
  EXPECT_EQ(m_page.delay, 17);
  EXPECT_EQ(m_page.timer, 4294967295u);
  EXPECT_EQ(m_page.chain, 0);
  EXPECT_EQ(m_page.field, 0);

  m_page.field = -1;
  m_page.update_data(false);
  for (int id : {106, 107, 108}) EXPECT_FALSE(m_page.control<Button>(id)->checked());
}

struct BadNumber {
  int id;
  const char* text;
  const char* message;
};

class BadNumberExchange : public Controls, public ::testing::WithParamInterface<BadNumber> {};

TEST_P(BadNumberExchange, StopsTheExchangeAndTellsTheUser) {
  const BadNumber& bad = GetParam();
  m_page.control<Edit>(bad.id)->set_text(bad.text);
  EXPECT_FALSE(m_page.update_data(true));
  EXPECT_EQ(m_page.delay, -5);
  EXPECT_EQ(m_page.timer, 4000000000u);
  ASSERT_EQ(m_scripted->boxes().size(), 1u);
  EXPECT_EQ(m_scripted->boxes()[0].text, bad.message);
}

INSTANTIATE_TEST_SUITE_P(Texts, BadNumberExchange,
                         ::testing::Values(BadNumber{102, "12a", "Please enter an integer."},
                                           BadNumber{102, "", "Please enter an integer."},
                                           BadNumber{102, "2147483648", "Please enter an integer."},
                                           BadNumber{103, "-1", "Please enter a positive integer."},
                                           BadNumber{103, "4294967296", "Please enter a positive integer."}));

TEST_F(Controls, LabelsSitLeftOfTheirControls) {
  m_container->resize(700, 400);
  m_container->show();
  QApplication::processEvents();
  QWidget* edit = m_page.control<Edit>(102)->widget();
  // The label "Delay" is the widget just left of the edit in its row.
  QWidget* label = nullptr;
  for (QWidget* sibling : edit->parentWidget()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
    if (sibling != edit && std::abs(sibling->geometry().center().y() - edit->geometry().center().y()) < 6 &&
        sibling->geometry().right() < edit->geometry().left())
      label = sibling;
  ASSERT_NE(label, nullptr);
  EXPECT_GE(edit->width(), 40);
  m_container->hide();
}

TEST_F(Controls, EnterAndEscapeGoToThePageFirst) {
  QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
  QApplication::sendEvent(m_page.widget(), &escape);
  QKeyEvent enter(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
  QApplication::sendEvent(m_page.widget(), &enter);
  EXPECT_EQ(m_page.keys, (std::vector<int>{27, 13}));
  EXPECT_TRUE(enter.isAccepted());
}

}  // namespace
}  // namespace window_test
