# How every target of the project is built.

# orvane_add_library(name source...): one floor of the house, as a static library.
function(orvane_add_library name)
  add_library(${name} STATIC ${ARGN})
  orvane_target_options(${name})
endfunction()

# orvane_target_options(target): include root, warnings, and sections that the linker can drop.
function(orvane_target_options target)
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
  if(ORVANE_DEVELOPER)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
  target_compile_options(${target} PRIVATE -ffunction-sections -fdata-sections)
endfunction()
