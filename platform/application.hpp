#pragma once

#include <string>
#include <vector>

namespace tamo::platform {

/// What the application object tells its delegate. Every call comes on the main thread.
class ApplicationDelegate {
 public:
  virtual ~ApplicationDelegate() = default;

  /// Launching has finished. Once per process, from the main loop.
  virtual void applicationDidFinishLaunching() = 0;

  /// URLs to open, as absolute strings, in order. Any number of times. On macOS the URLs that started the
  /// process usually arrive before launching has finished, so both orders must work.
  virtual void application(const std::vector<std::string>& open) = 0;
};

/// The process as an application of the windowing system. Main thread only.
class Application {
 public:
  virtual ~Application() = default;

  /// No Dock icon and no menu bar, but may still be brought to the front.
  virtual void becomeAccessory() = 0;

  /// `delegate` is not owned and must outlive run().
  virtual void setDelegate(ApplicationDelegate& delegate) = 0;

  /// Runs the main loop. May return or end the process from within, depending on the backend.
  virtual void run() = 0;

  /// Sends the terminate request. On macOS it normally ends the process inside the call, so what follows may
  /// never run; a backend may also return and end the loop after the current turn. Callers must be right
  /// either way. Without an application object the process stops (fatal).
  virtual void terminate() = 0;
};

}  // namespace tamo::platform
