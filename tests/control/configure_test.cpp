// The Configure page: the shortened path text, choosing, editing and saving a configuration
// file, and the selection frozen while a board is open.
#include <unistd.h>
#include <filesystem>
#include <fstream>

#include "control/pages/configure_page.h"
#include "control_support.h"
#include "platform/board/vrx_params.h"

namespace control_test {
namespace {

using vrc::control::PageSlot;
namespace fs = std::filesystem;

struct PathCase {
  const char *path;
  const char *text;  // null: only the length is checked
};

class PathText : public ::testing::TestWithParam<PathCase> {};

TEST_P(PathText, FitsTheField) {
  const std::string text = CVrxPageConfigure::PathDisplayText(GetParam().path);
  EXPECT_LE(text.size(), 27u);
  if (GetParam().text) {
    EXPECT_EQ(text, GetParam().text);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Paths, PathText,
    ::testing::Values(
        PathCase{"/home/cameras/vireo/abc.vcf", "/home/cameras/vireo/abc.vcf"},  // 27: whole
        PathCase{"/home/cameras/vireo/abcd.vcf", "/home/cameras/.../abcd.vcf"},  // 28
        PathCase{"/home/user/cameras/vireo/config/long_camera_file.vcf",
                 "/.../long_camera_file.vcf"},
        PathCase{"/data/a_very_long_camera_configuration.vcf", "ng_camera_configuration.vcf"},
        PathCase{"/a/b/c/d/e/f/g/h/i/j/k/l/m/n.vcf", "/a/b/c/d/e/f/g/h/.../n.vcf"},
        PathCase{"/x/yyyyyyyyyyyyyyyyyyyyyyyyyyyyyyyy/z.vcf", nullptr},
        PathCase{"relative_name_without_any_folder_at_all.vcf", nullptr}));

class ConfigurePage : public PanelTest {
 protected:
  void SetUp() override {
    PanelTest::SetUp();
    make();
    folder = fs::temp_directory_path() / ("configure_test_" + std::to_string(::getpid()));
    fs::create_directories(folder);
  }
  void TearDown() override {
    PanelTest::TearDown();
    fs::remove_all(folder);
  }
  CVrxPageConfigure &page() { return *PanelTest::page<CVrxPageConfigure>(PageSlot::Configure); }
  void click(int id) { page().control<vrc::window::Button>(id)->click_as_user(); }
  fs::path folder;
};

TEST_F(ConfigurePage, SelectFileShowsTheShortTextAndEnablesEditing) {
  EXPECT_EQ(page().child(17020)->text(), "Not Selected");
  EXPECT_FALSE(page().child(17022)->enabled());
  desk().answer_file_cancel();
  click(17021);
  EXPECT_EQ(page().child(17020)->text(), "Not Selected");
  const std::string path = "/home/user/cameras/vireo/config/long_camera_file.vcf";
  desk().answer_file(path);
  click(17021);
  EXPECT_EQ(page().child(17020)->text(), "/.../long_camera_file.vcf");
  EXPECT_TRUE(page().child(17022)->enabled());
  const vrc::window::FileDialogRequest &request = desk().file_requests().back();
  EXPECT_FALSE(request.save);
  ASSERT_EQ(request.filters.size(), 1u);
  EXPECT_EQ(request.filters[0].description, "Vireo Configuration File (*.vcf)");
  EXPECT_EQ(request.filters[0].pattern, "*.vcf");
  EXPECT_EQ(request.flags, 0x1806u);
  click(17022);
  EXPECT_EQ(desk().edited_files(), std::vector<std::string>{path});
}

TEST_F(ConfigurePage, SaveAsAddsTheExtensionOnlyToANameWithout) {
  ASSERT_TRUE(configure());
  EXPECT_TRUE(page().child(17027)->enabled());
  desk().answer_file((folder / "saved").string());
  click(17027);
  EXPECT_TRUE(fs::exists(folder / "saved.vcf"));
  EXPECT_EQ(desk().file_requests().back().flags, 0x0806u);
  EXPECT_TRUE(desk().file_requests().back().save);
  desk().answer_file((folder / "kept.cfg").string());
  click(17027);
  EXPECT_TRUE(fs::exists(folder / "kept.cfg"));
  EXPECT_FALSE(fs::exists(folder / "kept.cfg.vcf"));
}

TEST_F(ConfigurePage, ASavedFileConfiguresTheNextOpening) {
  ASSERT_TRUE(configure());
  uint32_t depth = 12;
  ASSERT_EQ(VRX_ParameterSet(handle(), vrx::ParamCameraDepth, &depth), VRX_OK);
  desk().answer_file((folder / "twelve.vcf").string());
  click(17027);
  click(17024);  // Release
  desk().answer_file((folder / "twelve.vcf").string());
  click(17021);
  ASSERT_TRUE(configure());
  uint32_t read = 0;
  ASSERT_EQ(VRX_ParameterGet(handle(), vrx::ParamCameraDepth, &read), VRX_OK);
  EXPECT_EQ(read, 12u);
  EXPECT_EQ(ctrl->GetDepth(), 12);
}

TEST_F(ConfigurePage, TheSelectionIsFrozenWhileABoardIsOpen) {
  const int selection[] = {17023, 17028, 17025, 17026, 17029};
  for (int id : selection) EXPECT_TRUE(page().child(id)->enabled()) << id;
  EXPECT_FALSE(page().child(17024)->enabled());
  EXPECT_FALSE(page().child(17027)->enabled());
  ASSERT_TRUE(configure());
  for (int id : selection) EXPECT_FALSE(page().child(id)->enabled()) << id;
  EXPECT_TRUE(page().child(17024)->enabled());
  EXPECT_TRUE(page().child(17027)->enabled());
  click(17024);
  for (int id : selection) EXPECT_TRUE(page().child(id)->enabled()) << id;
  EXPECT_EQ(ctrl->text(), "Vireo Board 1, Channel A");  // no parent: the title stays
}

}  // namespace
}  // namespace control_test
