#pragma once

/// Who may do what on a stage. On a Mac the user's programs have no say over what belongs to the system; a
/// stage that root has laid would give them every say. So the programs that play the user's side give up
/// root's privileges when they start, for good and for everything that they start in turn: from then on owner
/// and mode of a file decide. Only the stage's launchd keeps them, and stands for the administrator.
namespace tamo::stage {

/// Gives up every capability, which for an ordinary user are none. Who runs as root stays user 0, but may do
/// no more than the owner of its own files. Stops the process (fatal) when the kernel refuses. Before any
/// other thread is started.
void renouncePrivileges();

/// Takes the privileges of an administrator over the files of this user: root has them; an ordinary user
/// enters a user namespace of its own, where it is root for nothing but its own files. False when the kernel
/// allows neither.
[[nodiscard]] bool takeAdministratorPrivileges();

}  // namespace tamo::stage
