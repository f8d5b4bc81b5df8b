// Fonts and widgets need an application. It lives as long as the tests and shows nothing.
#include <QApplication>

#include <gtest/gtest.h>

#include <memory>

namespace {

class CApplicationEnvironment : public testing::Environment {
  public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        m_application = std::make_unique<QApplication>(m_argc, m_argv);
    }
    void TearDown() override { m_application.reset(); }

  private:
    char m_name[11] = "test_views";
    int m_argc = 1;
    char* m_argv[2] = {m_name, nullptr};
    std::unique_ptr<QApplication> m_application;
};

[[maybe_unused]] const auto* const kEnvironment =
    testing::AddGlobalTestEnvironment(new CApplicationEnvironment);

} // namespace
