// The children that the system knows: the engine, the converters, the export tools and the file updater.
#pragma once

#include "processing/notification.h"
#include "processing/remote_process.h"

#include <atomic>

namespace Communication_Processus {

// Where the lines of a child go. May change while a former child still reports.
template <class TNotification>
class CSink {
  public:
    void Set(TNotification* sink) { m_sink.store(sink, std::memory_order_release); }
    TNotification* Get() const { return m_sink.load(std::memory_order_acquire); }
    bool IsFull() const {
        const auto* flow = dynamic_cast<const Communication_Interfaces::IFlowControl*>(Get());
        return flow && flow->IsFull();
    }

  private:
    std::atomic<TNotification*> m_sink{nullptr};
};

// The processing engine. Its messages carry a level and a code, both any integer.
class CProcessMorvex : public CRemoteProcess, public Communication_Interfaces::IMorvex {
  public:
    ~CProcessMorvex() override { CProcessMorvex::Close(); }

    // `sink` must outlive the receivers, that is until Close; null drops all lines. A sink that is an
    // IFlowControl too holds the child back while it is full.
    void SetNotification(Communication_Interfaces::IMorvexNotification* sink) { m_sink.Set(sink); }

    void Start() override { SendCommand("start"); }
    void Pause() override { SendCommand("pause"); }
    void Resume() override { SendCommand("resume"); }
    void Stop() override { SendCommand("stop"); }

    void Close() override;
    // The last progress of the present child, percent; 0 before the first and after Close.
    float GetProgress() const { return m_progress.load(std::memory_order_acquire); }

  protected:
    void OnCommand(const std::vector<std::string>& tokens) override;
    bool IsSinkFull() const override { return m_sink.IsFull(); }

  private:
    CSink<Communication_Interfaces::IMorvexNotification> m_sink;
    std::atomic<float> m_progress{0.0f};
};

// Hands one line of a tool to its sink. Lines it does not understand are dropped.
void NotifyToolLine(const std::vector<std::string>& tokens,
                    Communication_Interfaces::IToolNotification* sink);

// A tool. Its messages carry one of the words "info", "warning" and "error".
template <class TInterface, class TNotification>
class CToolProcess : public CRemoteProcess, public TInterface {
  public:
    ~CToolProcess() override { Close(); }

    // As for the engine.
    void SetNotification(TNotification* sink) { m_sink.Set(sink); }

    void Start() override { SendCommand("start"); }
    void Stop() override { SendCommand("stop"); }

  protected:
    void OnCommand(const std::vector<std::string>& tokens) override { NotifyToolLine(tokens, m_sink.Get()); }
    bool IsSinkFull() const override { return m_sink.IsFull(); }

  private:
    CSink<TNotification> m_sink;
};

class CProcessSimpleImporter final
    : public CToolProcess<Communication_Interfaces::ISimpleImporter,
                          Communication_Interfaces::ISimpleImporterNotification> {};
class CProcessSimpleExporter final
    : public CToolProcess<Communication_Interfaces::ISimpleExporter,
                          Communication_Interfaces::ISimpleExporterNotification> {};
class CProcessFileUpdater final : public CToolProcess<Communication_Interfaces::IFileUpdater,
                                                      Communication_Interfaces::IFileUpdaterNotification> {};

} // namespace Communication_Processus
