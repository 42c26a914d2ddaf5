// Makes the QApplication before any test of the windowing layer runs.
#include <memory>

#include "qt_environment.h"

namespace window_test {
namespace {

class QtEnvironment : public ::testing::Environment {
 public:
  void SetUp() override {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    static int argc = 1;
    static char name[] = "platform_tests";
    static char* argv[] = {name, nullptr};
    m_application = std::make_unique<QApplication>(argc, argv);
    application_instance() = m_application.get();
  }
  void TearDown() override {
    application_instance() = nullptr;
    m_application.reset();
  }

 private:
  std::unique_ptr<QApplication> m_application;
};

const auto* const g_environment = ::testing::AddGlobalTestEnvironment(new QtEnvironment);

}  // namespace
}  // namespace window_test
