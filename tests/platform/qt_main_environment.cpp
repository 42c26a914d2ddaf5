// Makes the QApplication before any test of the windowing layer runs.
#include "qt_environment.h"

namespace window_test {
namespace {

class QtEnvironment : public ::testing::Environment {
 public:
  void SetUp() override { application(); }
};

const auto* const g_environment = ::testing::AddGlobalTestEnvironment(new QtEnvironment);

}  // namespace
}  // namespace window_test
