#pragma once

#include "platform/application.hpp"
#include "platform/files.hpp"
#include "platform/log.hpp"
#include "platform/main_queue.hpp"
#include "platform/stage/journal.hpp"
#include "platform/user_files.hpp"
#include "platform/workspace.hpp"

/// What a companion asks of the main loop, of files, the log and applications, passed on unchanged and noted in the
/// stage's journal as far as a picture shows it. What is passed on to, and the journal, must outlive each of these.
namespace tamo::stage {

class NotedMainQueue final : public platform::MainQueue {
 public:
  NotedMainQueue(platform::MainQueue& queue, const Journal& journal) : queue_(queue), journal_(journal) {}

  [[nodiscard]] bool isMain() const override { return queue_.isMain(); }
  void post(std::function<void()> work) override { queue_.post(std::move(work)); }
  void postAfter(std::chrono::nanoseconds delay, std::function<void()> work) override;

 private:
  platform::MainQueue& queue_;
  const Journal& journal_;
};

class NotedApplication final : public platform::Application, public platform::ApplicationDelegate {
 public:
  NotedApplication(platform::Application& application, const Journal& journal)
      : application_(application), journal_(journal) {}

  void becomeAccessory() override { application_.becomeAccessory(); }
  void setDelegate(platform::ApplicationDelegate& delegate) override;
  void run() override { application_.run(); }
  void terminate() override;

  void applicationDidFinishLaunching() override { delegate_->applicationDidFinishLaunching(); }
  void application(const std::vector<std::string>& open) override;

 private:
  platform::Application& application_;
  const Journal& journal_;
  platform::ApplicationDelegate* delegate_ = nullptr;
};

class NotedFiles final : public platform::Files {
 public:
  NotedFiles(platform::Files& files, const Journal& journal) : files_(files), journal_(journal) {}

  [[nodiscard]] bool exists(const std::string& path) const override { return files_.exists(path); }
  [[nodiscard]] std::optional<std::string> readWhole(const std::string& path) const override {
    return files_.readWhole(path);
  }
  [[nodiscard]] std::string resolvedPath(const std::string& path) const override {
    return files_.resolvedPath(path);
  }
  [[nodiscard]] bool writeAtomically(const std::string& path, std::string_view bytes) override;
  [[nodiscard]] bool createDirectories(const std::string& path) override {
    return files_.createDirectories(path);
  }
  bool remove(const std::string& path) override { return files_.remove(path); }
  [[nodiscard]] std::unique_ptr<platform::OutputFile> openForWriting(const std::string& path) override {
    return files_.openForWriting(path);
  }
  [[nodiscard]] std::optional<std::string> temporaryDirectory() const override {
    return files_.temporaryDirectory();
  }

 private:
  platform::Files& files_;
  const Journal& journal_;
};

class NotedUserFiles final : public platform::UserFiles {
 public:
  NotedUserFiles(platform::UserFiles& files, const Journal& journal) : files_(files), journal_(journal) {}

  [[nodiscard]] bool isWritable(const std::string& path) const override { return files_.isWritable(path); }
  [[nodiscard]] bool moveToTrash(const std::string& path) override;

 private:
  platform::UserFiles& files_;
  const Journal& journal_;
};

class NotedWorkspace final : public platform::Workspace {
 public:
  NotedWorkspace(platform::Workspace& workspace, const Journal& journal)
      : workspace_(workspace), journal_(journal) {}

  [[nodiscard]] std::vector<platform::RunningApplication> runningApplications() override {
    return workspace_.runningApplications();
  }
  void openApplication(const std::string& path, Completion completion) override;

 private:
  platform::Workspace& workspace_;
  const Journal& journal_;
};

class NotedLog final : public platform::LogSystem {
 public:
  NotedLog(platform::LogSystem& log, const Journal& journal) : log_(log), journal_(journal) {}

  [[nodiscard]] std::unique_ptr<platform::Logger> logger(const std::string& subsystem,
                                                         const std::string& category) override;

 private:
  platform::LogSystem& log_;
  const Journal& journal_;
};

}  // namespace tamo::stage
