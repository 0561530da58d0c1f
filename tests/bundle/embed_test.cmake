# Holds embed.cmake to its word on made-up bundles.
#
#   cmake -D SCRIPT=embed.cmake -D FOLDER=/a/folder/of/the/tests/own -P embed_test.cmake

set(app "${FOLDER}/Tamo.app")
set(companion "${FOLDER}/built/Tamo Core.app")
set(inside "${app}/Contents/Library/LoginItems/Tamo Core.app/Contents")

function(lay)
  file(REMOVE_RECURSE "${FOLDER}")
  file(WRITE "${app}/Contents/Info.plist" "outer")
  file(WRITE "${companion}/Contents/Info.plist" "inner")
  file(WRITE "${companion}/Contents/MacOS/Tamo Core" "program")
  file(CHMOD "${companion}/Contents/MacOS/Tamo Core" PERMISSIONS OWNER_READ OWNER_EXECUTE)
  file(WRITE "${FOLDER}/core" "agent")
endfunction()

# Runs the script; `status` and `said` are what came of it.
macro(embed)
  execute_process(
    COMMAND ${CMAKE_COMMAND} ${ARGN} -P "${SCRIPT}"
    RESULT_VARIABLE status
    ERROR_VARIABLE said
    OUTPUT_VARIABLE said)
endmacro()

macro(expect what)
  if(NOT (${ARGN}))
    message(SEND_ERROR "not so: ${what}\n${said}")
  endif()
endmacro()

function(expect_holds path bytes)
  set(found "nothing")
  if(EXISTS "${path}")
    file(READ "${path}" found)
  endif()
  expect("${path} holds ${bytes}, but ${found}" found STREQUAL bytes)
endfunction()

function(expect_executable path)
  execute_process(COMMAND test -x "${path}" RESULT_VARIABLE status)
  expect("${path} is executable" status EQUAL 0)
endfunction()

lay()
embed(-D "APP=${app}" -D "COMPANION=${companion}" -D "AGENT=${FOLDER}/core")
expect("a companion with its agent is embedded" status EQUAL 0)
expect_holds("${inside}/Info.plist" "inner")
expect_holds("${inside}/MacOS/Tamo Core" "program")
expect_holds("${inside}/MacOS/tamo-core-agent" "agent")
expect_holds("${app}/Contents/Info.plist" "outer")
expect_executable("${inside}/MacOS/Tamo Core")
expect_executable("${inside}/MacOS/tamo-core-agent")

string(FIND "${said}" "\"$IDENTITY\" \"${inside}/MacOS/tamo-core-agent\"" first)
string(FIND "${said}" "TamoCore.entitlements\" \"${app}/Contents/Library/LoginItems/Tamo Core.app\"" second)
string(FIND "${said}" "\"$IDENTITY\" \"${app}\"" third)
# Whoever signs the agent under another identifier has it refused for good where it is registered.
set(agentSigned "--identifier studio.pell.tamo.core-agent --sign \"$IDENTITY\" \"${inside}/MacOS/tamo-core-agent\"")
string(FIND "${said}" "${agentSigned}" pinned)
expect("the agent is signed under its own identifier" pinned GREATER -1)
string(REGEX MATCHALL "--identifier" identifiers "${said}")
expect("the bundles are signed under the identifiers of their own lists" identifiers STREQUAL "--identifier")
expect("what is inside is signed first" first GREATER -1 AND second GREATER first AND third GREATER second)

file(WRITE "${inside}/left-over" "old")
embed(-D "APP=${app}" -D "COMPANION=${companion}" -D "AGENT=")
expect("a companion is embedded without an agent" status EQUAL 0)
expect("an earlier companion is replaced as a whole" NOT EXISTS "${inside}/left-over")
expect("no agent is invented" NOT EXISTS "${inside}/MacOS/tamo-core-agent")
expect("the missing agent is told" said MATCHES "There is no .*tamo-core-agent yet")
string(FIND "${said}" "${agentSigned}" pinned)
expect("how to sign it then is told" pinned GREATER -1)

embed(-D "APP=" -D "COMPANION=${companion}")
expect("an application is needed" NOT status EQUAL 0 AND said MATCHES "APP is no application bundle")
embed(-D "APP=${app}" -D "COMPANION=${FOLDER}")
expect("a companion is needed" NOT status EQUAL 0 AND said MATCHES "COMPANION is no application bundle")
embed(-D "APP=${app}" -D "COMPANION=${companion}" -D "AGENT=${FOLDER}")
expect("an agent is a file" NOT status EQUAL 0 AND said MATCHES "AGENT is no executable")
expect_holds("${inside}/Info.plist" "inner")
file(REMOVE_RECURSE "${FOLDER}")
