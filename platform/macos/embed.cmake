# Puts the companion into a Tamo.app, and says what has to be signed then.
#
#   cmake -D APP=/path/Tamo.app -D COMPANION=/path/Tamo\ Core.app [-D AGENT=/path/executable] -P embed.cmake
#
# A companion that is there already is replaced as a whole. AGENT becomes the executable that the launch agent's
# property list names. Nothing is signed here.

if(NOT EXISTS "${APP}/Contents/Info.plist")
  message(FATAL_ERROR "APP is no application bundle: \"${APP}\"")
endif()
if(NOT EXISTS "${COMPANION}/Contents/Info.plist")
  message(FATAL_ERROR "COMPANION is no application bundle: \"${COMPANION}\"")
endif()
if(AGENT AND (NOT EXISTS "${AGENT}" OR IS_DIRECTORY "${AGENT}"))
  message(FATAL_ERROR "AGENT is no executable: \"${AGENT}\"")
endif()

cmake_path(GET COMPANION FILENAME name)
set(items "${APP}/Contents/Library/LoginItems")
set(embedded "${items}/${name}")
file(REMOVE_RECURSE "${embedded}")
file(MAKE_DIRECTORY "${items}")
file(COPY "${COMPANION}" DESTINATION "${items}")

set(agent "${embedded}/Contents/MacOS/tamo-core-agent")
# Never to be changed: where the agent is registered, the system refuses it under any other
# (docs/building-on-a-mac.md says more).
set(agentIdentifier "studio.pell.tamo.core-agent")
if(AGENT)
  file(COPY_FILE "${AGENT}" "${agent}")
  file(CHMOD "${agent}" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
                                    WORLD_EXECUTE)
endif()

set(entitlements "${CMAKE_CURRENT_LIST_DIR}/TamoCore.entitlements")
set(options "--force --options runtime --timestamp")
set(sign "  codesign ${options} --sign \"$IDENTITY\"")
set(signAgent "  codesign ${options} --identifier ${agentIdentifier} --sign \"$IDENTITY\"")
message(NOTICE "The companion lies in ${embedded}")
if(NOT EXISTS "${agent}")
  message(NOTICE "There is no ${agent} yet: put it there first, the agent cannot be registered without it.")
endif()
message(NOTICE "Sign from the inside out, all with one team's identity, the agent under this identifier for ever:")
message(NOTICE "${signAgent} \"${agent}\"")
message(NOTICE "${sign} --entitlements \"${entitlements}\" \"${embedded}\"")
message(NOTICE "${sign} \"${APP}\"   # with Tamo's own entitlements")
message(NOTICE "  codesign --verify --strict --deep --verbose=2 \"${APP}\"")
