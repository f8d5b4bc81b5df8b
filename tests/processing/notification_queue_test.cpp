#include "processing/message_line.h"
#include "processing/receivers.h"

#include <gmock/gmock.h>

#include <optional>
#include <utility>

using namespace Communication_Processus;

namespace {

struct SWindow : INotificationWindow {
    void OnProgressChanged() override {
        shown.push_back(std::to_string(receiver->LastProgress()));
        if (const float next = std::exchange(nextProgress, 0.0f); next > 0.0f) receiver->StoreProgress(next);
    }
    void OnMessageQueued() override {
        int level = 0, code = 0;
        std::string text;
        if (receiver->TakeMessage(level, code, text)) shown.push_back(FormatMessageLine(level, text));
    }
    CNotificationQueue* receiver = nullptr;
    float nextProgress = 0.0f; // stored from inside the next notification
    std::vector<std::string> shown;
};

} // namespace

TEST(NotificationQueue, ShowsMessagesAndLatestProgress) {
    Outils::CMessageQueue ui;
    SWindow window;
    std::optional<CMorvexReceiver> receiver(std::in_place, ui, &window);
    window.receiver = &*receiver;

    receiver->OnMessage(0, 5, "a %2");
    receiver->OnProgress(1.0f);
    receiver->OnProgress(2.5f);
    receiver->OnMessage(1, 0, "\xC3\xA9t\xE9");
    receiver->OnMessage(2, 0, "c");
    receiver->OnMessage(-1, 0, "d");
    EXPECT_TRUE(window.shown.empty()); // all of that on the reading thread
    ui.RunPending();
    EXPECT_THAT(window.shown,
                testing::ElementsAre("INFO : a %2", "2.500000", "WARNING : \xC3\xA9t\xEF\xBF\xBD",
                                     "ERROR : c", "????? : d"));
    window.nextProgress = 3.0f;
    receiver->OnProgress(2.75f); // a later change is reported again, also one from inside a report
    ui.RunPending();
    EXPECT_EQ(window.shown[window.shown.size() - 2], "2.750000");
    EXPECT_EQ(window.shown.back(), "3.000000");

    receiver->OnMessage(0, 0, "late");
    receiver.reset();
    ui.RunPending();
    EXPECT_EQ(window.shown.back(), "3.000000");
}

TEST(NotificationQueue, IsFullByCountOrSize) {
    Outils::CMessageQueue ui;
    SWindow window;
    CToolReceiver<Communication_Interfaces::IFileUpdaterNotification> receiver(ui, &window);
    window.receiver = &receiver;
    for (std::size_t i = 0; i < CNotificationQueue::mostMessages; ++i) {
        EXPECT_FALSE(receiver.IsFull());
        receiver.OnMessage(0, "short");
    }
    EXPECT_TRUE(receiver.IsFull());
    ui.RunOne(std::chrono::milliseconds(0));
    EXPECT_FALSE(receiver.IsFull());
    receiver.OnMessage(0, std::string(CNotificationQueue::mostBytes, 'x'));
    ui.RunPending();
    EXPECT_FALSE(receiver.IsFull());
    receiver.OnMessage(0, std::string(CNotificationQueue::mostBytes, 'x'));
    EXPECT_TRUE(receiver.IsFull());
}

TEST(NotificationQueue, KeepsTheNewestWithoutAWindow) {
    Outils::CMessageQueue ui;
    CMorvexReceiver receiver(ui, nullptr);
    for (std::size_t i = 0; i < CNotificationQueue::mostMessages + 3; ++i)
        receiver.OnMessage(0, static_cast<int>(i), "");
    receiver.OnProgress(4.0f);
    EXPECT_FALSE(receiver.IsFull());
    EXPECT_EQ(ui.RunPending(), 0u);
    int level = 0, code = 0;
    std::string text;
    EXPECT_TRUE(receiver.TakeMessage(level, code, text));
    EXPECT_EQ(code, 3);
}
