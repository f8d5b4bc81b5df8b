#include "app/end_listener.h"

#include <QSocketNotifier>

#include <cstdlib>
#include <utility>

namespace Application_Tarvel {

namespace {

// One for the program: exit() calls plain functions and knows no objects.
std::function<void()>& GetEnd() {
    static std::function<void()> end;
    return end;
}

void End() {
    if (const auto end = std::exchange(GetEnd(), {})) end();
}

} // namespace

CEndListener::CEndListener(const Outils::CEndSignals& endSignals, std::function<void()> end) {
    GetEnd() = std::move(end);
    [[maybe_unused]] static const int once = std::atexit(&End);
    if (endSignals.GetDescriptor() < 0) return;
    m_notifier = std::make_unique<QSocketNotifier>(endSignals.GetDescriptor(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [&endSignals] {
        if (endSignals.Take() != 0) End();
    });
}

CEndListener::~CEndListener() { GetEnd() = {}; }

} // namespace Application_Tarvel
