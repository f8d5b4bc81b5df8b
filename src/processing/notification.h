// The pure interfaces between a child and its owner: commands to the child, and its reports.
#pragma once

#include <string_view>

namespace Communication_Interfaces {

// The levels of a message. The engine may send any other number as well.
enum EMessageLevel { levelInformation = 0, levelWarning = 1, levelError = 2 };

// Commands to the engine. Each sends one word and returns at once; the child confirms nothing.
class IMorvex {
  public:
    virtual ~IMorvex() = default;
    virtual void Start() = 0;
    virtual void Pause() = 0;
    virtual void Resume() = 0;
    virtual void Stop() = 0;
};

// Commands to a tool, the same for the three kinds of tool.
class ITool {
  public:
    virtual ~ITool() = default;
    virtual void Start() = 0;
    virtual void Stop() = 0;
};
class ISimpleImporter : public ITool {};
class ISimpleExporter : public ITool {};
class IFileUpdater : public ITool {};

// Reports of the engine. Both operations run on the thread that reads the child's output. They post to the UI
// thread, return soon, and never call the process object. `text` is the child's bytes.
class IMorvexNotification {
  public:
    virtual ~IMorvexNotification() = default;
    // 0 to 100 inclusive.
    virtual void OnProgress(float percent) = 0;
    virtual void OnMessage(int level, int code, std::string_view text) = 0;
};

// Reports of a tool; threads as above.
class IToolNotification {
  public:
    virtual ~IToolNotification() = default;
    // 0 to 100 inclusive.
    virtual void OnProgress(float percent) = 0;
    virtual void OnMessage(int level, std::string_view text) = 0;
};
class ISimpleImporterNotification : public IToolNotification {};
class ISimpleExporterNotification : public IToolNotification {};
class IFileUpdaterNotification : public IToolNotification {};

// A sink with this interface can hold a flooding child back: while it is full, nobody reads the child's
// output, and the child waits in its own writes.
class IFlowControl {
  public:
    virtual ~IFlowControl() = default;
    // Any thread.
    virtual bool IsFull() const = 0;
};

} // namespace Communication_Interfaces
