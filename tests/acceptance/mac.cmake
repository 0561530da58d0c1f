# What ./accept needs on a Mac: the program that plays the checks, and the parts of the sample application.

add_library(tamo_mac_place STATIC mac/mac_companions.cpp mac/mac_copies.cpp mac/mac_evidence.cpp mac/mac_facts.cpp
                                  mac/mac_front.mm mac/mac_other_user.cpp mac/mac_place.cpp mac/mac_tools.cpp mac/mac_user.cpp
                                  mac/person.cpp)
target_compile_options(tamo_mac_place PRIVATE $<$<COMPILE_LANGUAGE:OBJCXX>:-fobjc-arc>)
target_link_libraries(tamo_mac_place PUBLIC tamo_acceptance tamo_macos "-framework AppKit")

function(acceptance_program name)
  add_executable(${name} ${ARGN})
  target_link_libraries(${name} PRIVATE tamo_options)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
endfunction()

acceptance_program(accept-on-this-mac mac/mac_main.cpp)
target_link_libraries(accept-on-this-mac PRIVATE tamo_mac_place)
acceptance_program(accept-app sample/app_main.mm)
target_compile_options(accept-app PRIVATE -fobjc-arc)
target_link_libraries(accept-app PRIVATE "-framework AppKit")
