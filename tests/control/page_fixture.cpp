// The page tests' panel over the simulated board.
#include "page_fixture.h"

namespace control_test {

using vrc::window::Button;
using vrc::window::ComboBox;
using vrc::window::Edit;

void PageFixture::SetUp() {
  ControlTest::SetUp();
  m_ctrl = std::make_unique<CVrxCtrl>(nullptr, 0x7FFF, &record_report);
  ASSERT_EQ(m_ctrl->Exec(VRC_EXEC_CREATE), VRC_OK);
}

void PageFixture::TearDown() {
  vrxsim_trace_writes(0);
  if (m_ctrl && m_ctrl->GetCameraHandle()) release();
  m_ctrl.reset();
  ControlTest::TearDown();
}

void PageFixture::configure(int board, int mode) {
  auto &configure = page<CVrxPageConfigure>(PageSlot::Configure);
  configure.control<ComboBox>(17025)->set_current(board);
  configure.control<ComboBox>(17029)->set_current(mode);
  ASSERT_EQ(configure.OnConfigure(), 0);
  settle();
}

void PageFixture::release() {
  ASSERT_EQ(page<CVrxPageConfigure>(PageSlot::Configure).OnRelease(), 0);
  settle();
}

void PageFixture::settle() { pump_for(30); }

uint32_t PageFixture::board_value(uint32_t parameter) {
  uint32_t value = 0xDEADBEEF;
  EXPECT_EQ(VRX_ParameterGet(handle(), parameter, &value), VRX_OK) << std::hex << parameter;
  return value;
}

void PageFixture::set_board_value(uint32_t parameter, uint32_t value) {
  ASSERT_EQ(VRX_ParameterSet(handle(), parameter, &value), VRX_OK) << std::hex << parameter;
}

std::vector<VRXSIM_PARAMETER_WRITE> PageFixture::traced() {
  uint32_t count = 0;
  vrxsim_traced_writes(nullptr, 0, &count);
  std::vector<VRXSIM_PARAMETER_WRITE> writes(count);
  vrxsim_traced_writes(writes.data(), count, &count);
  return writes;
}

std::vector<uint32_t> PageFixture::traced_parameters() {
  std::vector<uint32_t> parameters;
  for (const VRXSIM_PARAMETER_WRITE &write : traced()) parameters.push_back(write.parameter);
  return parameters;
}

std::string PageFixture::text(const CVrxPage &page, int id) {
  const vrc::window::Window *control = page.child(id);
  return control ? control->text() : "<no control " + std::to_string(id) + ">";
}

bool PageFixture::enabled(const CVrxPage &page, int id) {
  const vrc::window::Window *control = page.child(id);
  EXPECT_NE(control, nullptr) << id;
  return control && control->enabled();
}

int PageFixture::selection(const CVrxPage &page, int id) {
  const auto *box = page.control<ComboBox>(id);
  EXPECT_NE(box, nullptr) << id;
  return box ? box->current() : -2;
}

std::string PageFixture::selected_text(const CVrxPage &page, int id) {
  const auto *box = page.control<ComboBox>(id);
  return box && box->current() >= 0 ? box->item_text(box->current()) : "";
}

void PageFixture::select(CVrxPage &page, int id, int index) {
  auto *box = page.control<ComboBox>(id);
  ASSERT_NE(box, nullptr) << id;
  box->select_as_user(index);
}

void PageFixture::type(CVrxPage &page, int id, const std::string &text) {
  auto *edit = page.control<Edit>(id);
  ASSERT_NE(edit, nullptr) << id;
  edit->type_as_user(text);
}

void PageFixture::click(CVrxPage &page, int id) {
  auto *button = page.control<Button>(id);
  ASSERT_NE(button, nullptr) << id;
  button->click_as_user();
}

bool PageFixture::checked(const CVrxPage &page, int id) {
  const auto *button = page.control<Button>(id);
  return button && button->checked();
}

}  // namespace control_test
