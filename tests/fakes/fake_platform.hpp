#pragma once

#include "fakes/fake_agent_services.hpp"
#include "fakes/fake_application.hpp"
#include "fakes/fake_clock.hpp"
#include "fakes/fake_files.hpp"
#include "fakes/fake_kernel_processes.hpp"
#include "fakes/fake_lock_files.hpp"
#include "fakes/fake_main_queue.hpp"
#include "fakes/fake_processes.hpp"
#include "fakes/fake_surroundings.hpp"
#include "fakes/fake_threads.hpp"
#include "fakes/fake_user_files.hpp"
#include "fakes/fake_workspace.hpp"
#include "fakes/ledger.hpp"
#include "platform/platform.hpp"

namespace tamo::fakes {

/// A whole platform of fakes with one ledger and one virtual clock. A test that needs less makes the fakes
/// one by one.
struct FakePlatform {
  Ledger ledger;
  FakeClock clock{ledger};
  FakeMainQueue mainQueue{ledger, clock};
  FakeApplication application{ledger, clock};
  FakeAgentServices agentServices{ledger, clock};
  FakeWorkspace workspace{ledger, clock};
  FakeFiles files{ledger, clock};
  FakeUserFiles userFiles{ledger, clock, files};
  FakeProcesses processes{ledger, clock, files};
  FakeKernelProcesses kernelProcesses{ledger, clock};
  FakeThreads threads{ledger, clock};
  FakeLockFiles lockFiles{ledger, clock};
  FakeBundles bundles{ledger, clock};
  FakeUser user;
  FakeLocalSockets localSockets{ledger, clock};
  FakeLogSystem logSystem{ledger, clock};

  platform::Platform platform = platform::platformOf(*this);
};

}  // namespace tamo::fakes
