#pragma once

#include <array>
#include <string_view>

/// The paragraphs of docs/troubleshooting.md that an action can lead to, by their headings.
namespace tamo::support::heading {

inline constexpr std::string_view approval = "`-> status 2`, with or without an error";
inline constexpr std::string_view afterReseat =
    "`-> status 0 … error SMAppServiceErrorDomain 1` after a reseat";
inline constexpr std::string_view serviceError = "`error SMAppServiceErrorDomain N`";
inline constexpr std::string_view unknownAction = "`error TamoCore 64`";
inline constexpr std::string_view notFound = "Status 3, or an error that the service was not found";
inline constexpr std::string_view kickstart = "`kickstart` with a number other than 0";
inline constexpr std::string_view noSession = "From a remote shell, or before anybody has logged in";
inline constexpr std::string_view refused = "`… refused: tamo.test_copy_refused_live_data app=…`";
inline constexpr std::string_view noHardStop = "A restart without a `hardstop` line";
inline constexpr std::string_view spared = "`hardstop pid N: spared(\"…\", gone: …)`";
inline constexpr std::string_view killed = "`hardstop pid N: killedGroup(…)` or `killedProcess(…)`";
inline constexpr std::string_view calledOff = "`hardstop pid N: cancelled`";
inline constexpr std::string_view noComparison = "`definition: loaded unknown`, or `bundled unknown`";
inline constexpr std::string_view moveEnded = "The move ended with another code than `moved` or `opened`";
inline constexpr std::string_view movedAgain = "Tamo asks to be moved at every start";
inline constexpr std::string_view receipt = "A receipt or a result is missing, old or empty";
inline constexpr std::string_view noEnd = "An action whose last line is missing";
inline constexpr std::string_view noLine = "No line at all";

inline constexpr std::array all{approval,     afterReseat, serviceError, unknownAction, notFound, kickstart,
                                noSession,    refused,     noHardStop,   spared,        killed,   calledOff,
                                noComparison, moveEnded,   movedAgain,   receipt,       noEnd,    noLine};

}  // namespace tamo::support::heading
