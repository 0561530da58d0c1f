# The sample's Core: that of a stage, in plain POSIX. Two builds, which differ in nothing but themselves.
set(played ${PROJECT_SOURCE_DIR}/stage)
add_library(tamo_sample_core STATIC ${played}/core/core_behaviour.cpp ${played}/core/core_program.cpp
                                    ${played}/common/program_log.cpp ${played}/common/stage_presence.cpp)
target_link_libraries(tamo_sample_core PUBLIC tamo_posix)
foreach(build one two)
  string(REPLACE "-one" "" name accept-agent-${build})
  add_executable(${name} sample/agent_main.cpp)
  target_compile_definitions(${name} PRIVATE TAMO_AGENT_BUILD="${build}")
  target_link_libraries(${name} PRIVATE tamo_sample_core)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
endforeach()
