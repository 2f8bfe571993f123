# The steps of the test "install"; CMakeLists.txt beside it gives the variables.

# run(command...): the command's standard output in `output`; anything but success ends the test.
function(run)
  execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\nended with ${result}\n${output}${errors}")
  endif()
  set(output "${output}" PARENT_SCOPE)
endfunction()

# installedFiles(variable): the paths of all files under the prefix, relative to it.
function(installedFiles variable)
  file(GLOB_RECURSE files LIST_DIRECTORIES false RELATIVE ${prefix} ${prefix}/*)
  list(SORT files)
  set(${variable} "${files}" PARENT_SCOPE)
endfunction()

# expectEqual(actual expected what)
function(expectEqual actual expected what)
  if(NOT actual STREQUAL expected)
    message(FATAL_ERROR "${what}:\n${actual}\ninstead of\n${expected}")
  endif()
endfunction()

file(GLOB earlierLists ${build}/install_manifest*.txt)
file(REMOVE_RECURSE ${prefix} ${consumerBuild} ${earlierLists})

set(programFiles ${programDirectory}/orvane-mcp ${manualDirectory}/man1/orvane-mcp.1)
run(${CMAKE_COMMAND} --install ${build} --prefix ${prefix} --component program)
installedFiles(files)
list(SORT programFiles)
expectEqual("${files}" "${programFiles}" "The program alone installs")

set(package ${libraryDirectory}/cmake/OrvaneMCPProtocol)
string(TOLOWER "${buildType}" suffix)
if(suffix STREQUAL "")
  set(suffix noconfig)
endif()
set(allFiles ${programFiles}
  ${includeDirectory}/orvane-mcp/core/json.h
  ${includeDirectory}/orvane-mcp/core/json_reader.h
  ${includeDirectory}/orvane-mcp/core/json_writer.h
  ${includeDirectory}/orvane-mcp/protocol/mcp_mutation.h
  ${includeDirectory}/orvane-mcp/protocol/mcp_socket_path.h
  ${libraryDirectory}/libOrvaneMCPProtocol.a
  ${libraryDirectory}/liborvane_core.a
  ${libraryDirectory}/liborvane_platform.a
  ${libraryDirectory}/liborvane_platform_shared.a
  ${package}/Findutf8proc.cmake
  ${package}/OrvaneMCPProtocolConfig.cmake
  ${package}/OrvaneMCPProtocolConfigVersion.cmake
  ${package}/OrvaneMCPProtocolTargets-${suffix}.cmake
  ${package}/OrvaneMCPProtocolTargets.cmake)
run(${CMAKE_COMMAND} --install ${build} --prefix ${prefix})
installedFiles(files)
list(SORT allFiles)
expectEqual("${files}" "${allFiles}" "Everything installs")

set(request [[{"jsonrpc":"2.0","id":1,"method":"ping"}]])
file(WRITE ${prefix}/request "${request}\n")
execute_process(COMMAND ${prefix}/${programDirectory}/orvane-mcp INPUT_FILE ${prefix}/request
  OUTPUT_VARIABLE output RESULT_VARIABLE result)
expectEqual("${result}" "0" "The installed program ends with")
string(JSON id GET "${output}" id)
string(JSON answer GET "${output}" result)
expectEqual("${id}${answer}" "1{}" "The installed program answers a ping with")

run(${CMAKE_COMMAND} -S ${consumer} -B ${consumerBuild} -G ${generator} -D CMAKE_BUILD_TYPE=${buildType}
  -D CMAKE_CXX_COMPILER=${compiler} -D CMAKE_CXX_FLAGS=${flags} -D CMAKE_EXE_LINKER_FLAGS=${linkFlags}
  -D CMAKE_PREFIX_PATH=${prefix} -D CMAKE_FIND_USE_PACKAGE_REGISTRY=OFF)
run(${CMAKE_COMMAND} --build ${consumerBuild})
run(${consumerBuild}/consumer)
string(STRIP "${output}" output)
if(NOT output MATCHES "^/.*/Orvane/mcp\\.sock$")
  message(FATAL_ERROR "The user of the library prints the socket's path as:\n${output}")
endif()

# A stranger's file in a shared directory stays.
file(REMOVE ${prefix}/request)
file(WRITE ${prefix}/${programDirectory}/stranger "")
run(${CMAKE_COMMAND} -D build=${build} -P ${uninstall})
installedFiles(files)
expectEqual("${files}" "${programDirectory}/stranger" "Uninstalling leaves")
if(EXISTS ${prefix}/${includeDirectory}/orvane-mcp OR EXISTS ${prefix}/${package})
  message(FATAL_ERROR "Uninstalling leaves directories of its own behind.")
endif()
execute_process(COMMAND ${CMAKE_COMMAND} -D build=${build} -P ${uninstall} ERROR_VARIABLE errors RESULT_VARIABLE result)
# CMake breaks long messages into lines.
string(REGEX REPLACE "[ \n]+" " " errors "${errors}")
if(result EQUAL 0 OR NOT errors MATCHES "nothing was installed")
  message(FATAL_ERROR "Uninstalling what is not installed says:\n${errors}")
endif()

file(REMOVE_RECURSE ${prefix} ${consumerBuild})
