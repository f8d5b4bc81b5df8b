// The one application object of all tests of a room that draws, without a screen.
#include <QApplication>

#include <gtest/gtest.h>

#include <memory>

namespace {

class CApplication final : public testing::Environment {
  public:
    void SetUp() override {
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
        m_application = std::make_unique<QApplication>(m_count, m_words);
        QApplication::setQuitOnLastWindowClosed(false);
    }
    void TearDown() override { m_application.reset(); }

  private:
    char m_name[5] = "test";
    char* m_words[2] = {m_name, nullptr};
    int m_count = 1;
    std::unique_ptr<QApplication> m_application;
};

[[maybe_unused]] const auto* const kApplication = testing::AddGlobalTestEnvironment(new CApplication);

} // namespace
