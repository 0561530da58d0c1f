#pragma once

#include <map>
#include <vector>

#include "stage/picture/picture.hpp"
#include "stage/picture/scene.hpp"

/// The rows of a picture for all that lived on the stage, and the signals between them. Pure.
namespace tamo::stage {

struct ProcessRows {
  std::vector<Row> rows{};
  /// The row of each life, by its number in the scene.
  std::map<std::size_t, std::size_t> rowOf{};
};

/// All rows from the top down: the companion's own; its tools, and whatever tools others started, a row a program and
/// more where two ran at once; the administrator; each process of the Cores; launchd; Tamo's own programs; other
/// companions.
[[nodiscard]] ProcessRows processRows(const Scene& scene);

/// The signals of the scene whose sender and target have a row. Who was killed before gets no second signal.
[[nodiscard]] std::vector<Arrow> arrowsOf(const Scene& scene, const ProcessRows& rows);

/// What launchd is asked, as far as it is shown: what the status is, it is asked all the time, and who asks for a whole
/// domain only looks on. Empty for those.
[[nodiscard]] std::string questionShown(const Moment& asked);

/// "SIGTERM", or the number behind "signal".
[[nodiscard]] std::string signalName(std::int32_t number);

/// What a life is called among all: "new Core 123" for one that began during the action.
[[nodiscard]] std::string lifeName(const Life& life);

}  // namespace tamo::stage
