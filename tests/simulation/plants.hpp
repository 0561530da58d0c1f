#pragma once

#include <cstddef>
#include <string_view>

namespace tamo::simulation {

/// Faults that are planted to test the rig: each breaks one thing that the companion or its surroundings
/// promise, without being counted as a fault of the run, and has to be found.
enum class Plant {
  None,
  SignalToLaunchd,
  SignalToOwnGroup,
  SignalToStranger,
  SecondSignal,
  FastClock,
  DeafToMarkers,
  DeafToFailure,
  ForgedIdentity,
  WrongNote,
  TwoHolders,
  EarlyUnlock,
  NoUnlock,
  SecondTerminate,
  NoTerminate,
  LostLine,
  DoubledLine,
  WrongStatusInLine,
  WrongReceipt,
  LostReceipt,
  StatusTouches,
  LostDeed,
  ForgottenLock,
  RegisterAfterFailure,
  HalfCopy,
  LastCopyGone,
  WrongMoveResult,
  LongSleep,
  LostCompletion,
  LostUrl,
  PrintFileLeft,
  ClockStopsAsleep,
  ClockIsSet,
  ForgedAge,
  UnwatchedStop,
  DataInRealHome,
  MarkerUnasked,
  SettingsForgotten,
  SettingsAfterError,
  WrongTarget,
  PrintDiscarded,
  ErrorsDiscarded,
  QuarantineKept,
  PrintedAgain,
  StrayRead,
  GuardAskedAgain,
  Unrepeatable,
  StaleLock,
  TornWrites,
  StrayFiles,
  ScarredData,
};

}  // namespace tamo::simulation
