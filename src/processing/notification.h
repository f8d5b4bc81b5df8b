// What child processes can be told and what they tell: the pure interfaces between a child and its owner.
#pragma once

#include <string_view>

namespace Communication_Interfaces {

// The levels of a message. The engine may send any other number as well.
enum EMessageLevel { levelInformation = 0, levelWarning = 1, levelError = 2 };

// Commands to the engine. Each sends one word and returns at once; nothing tells whether it was obeyed.
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

// What the engine reports. Both operations run on the thread that reads the child's output: they hand over to
// the UI thread, return soon, and never call back into the process object. `text` is the child's bytes.
class IMorvexNotification {
  public:
    virtual ~IMorvexNotification() = default;
    // 0 to 100 inclusive.
    virtual void OnProgress(float percent) = 0;
    virtual void OnMessage(int level, int code, std::string_view text) = 0;
};

// What a tool reports; threads as above.
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

// A sink that is such a thing too can hold a flooding child back: while it is full the child's output is left
// unread, and the child comes to wait in its own writes.
class IFlowControl {
  public:
    virtual ~IFlowControl() = default;
    // Thread-safe.
    virtual bool IsFull() const = 0;
};

} // namespace Communication_Interfaces
