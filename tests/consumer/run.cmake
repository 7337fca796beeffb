# Installs the built library into a scratch prefix and builds a consumer
# against it, once with CMake's package config and once with pkg-config.
file(REMOVE_RECURSE ${WORK_DIR})
# The consumers must find the installed data by themselves, from the
# library's own place, as a host that only installed the package would.
unset(ENV{SCOREMODEL_DATA_DIR})
# Nor may anything installed lean on a library path from the environment.
unset(ENV{LD_LIBRARY_PATH})
set(PREFIX ${WORK_DIR}/prefix)

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed (${rc}): ${ARGV}\n${out}\n${err}")
  endif()
  set(LAST_OUTPUT "${out}" PARENT_SCOPE)
endfunction()

# The texts must come from the installed copy of the data, not from some other
# folder the library may fall back on, such as the source tree's.
function(expect_installed_data output)
  string(FIND "${output}" "from ${PREFIX}/share/scoremodel" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "the consumer did not read the installed data:\n${output}")
  endif()
  string(FIND "${output}" "plug-in from ${PREFIX}/" at)
  if(at EQUAL -1)
    message(FATAL_ERROR "the consumer did not load the installed plug-in:\n${output}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${SCOREMODEL_BINARY_DIR} --prefix ${PREFIX})

# The installed tool starts from its prefix and reports the library's version.
run(${PREFIX}/bin/scoremodel --version)
if(NOT LAST_OUTPUT MATCHES "^scoremodel [0-9]+\\.[0-9]+\\.[0-9]+")
  message(FATAL_ERROR "the installed tool answered: ${LAST_OUTPUT}")
endif()

# The installed tool imports and exports MIDI files with no setup, through
# the midifile plug-in installed beside the library.
run(${PREFIX}/bin/scoremodel import ${CONSUMER_SOURCE_DIR}/../../fuzz/corpus/midi_file/drums.mid
    ${WORK_DIR}/drums.smd)
run(${PREFIX}/bin/scoremodel export ${WORK_DIR}/drums.smd ${WORK_DIR}/drums.mid)
run(${PREFIX}/bin/scoremodel info ${WORK_DIR}/drums.mid)
if(NOT LAST_OUTPUT MATCHES "48 notes on 2 staves")
  message(FATAL_ERROR "the installed tool read back: ${LAST_OUTPUT}")
endif()

# The headers the library keeps to itself are not installed.
file(STRINGS ${CONSUMER_SOURCE_DIR}/../../cmake/private-headers.txt private_headers REGEX "^[^#]")
foreach(header IN LISTS private_headers)
  if(EXISTS ${PREFIX}/include/scoremodel/${header})
    message(FATAL_ERROR "private header installed: ${header}")
  endif()
endforeach()

# Exported symbols: only the interface, each under the ABI's version node.
file(GLOB LIBRARY ${PREFIX}/lib*/libscoremodel.so.[0-9]*.* ${PREFIX}/lib/*/libscoremodel.so.[0-9]*.*)
find_program(NM nm REQUIRED)
run(${NM} -D --defined-only ${LIBRARY})
string(REPLACE "\n" ";" symbols "${LAST_OUTPUT}")
set(exported 0)
foreach(line IN LISTS symbols)
  if(line MATCHES " A SCOREMODEL_[0-9]+$" OR line STREQUAL "")
    continue()
  endif()
  math(EXPR exported "${exported} + 1")
  if(NOT line MATCHES "@@SCOREMODEL_[0-9]+$")
    message(FATAL_ERROR "exported without the version node: ${line}")
  endif()
  # Mangled: members, type information and vtables of std:: templates.
  if(line MATCHES " _Z(N|NK|T[ISV]|GVZN)?St|MCNodePool|MessageQueue|MCIniFile|MCSetPreferenceSaveFault")
    message(FATAL_ERROR "internal symbol exported: ${line}")
  endif()
endforeach()
message(STATUS "exported symbols: ${exported}")

run(${CMAKE_COMMAND} -S ${CONSUMER_SOURCE_DIR} -B ${WORK_DIR}/build -G Ninja
    -DCMAKE_PREFIX_PATH=${PREFIX} -DCMAKE_CXX_COMPILER=${CXX}
    -DCMAKE_BUILD_RPATH=${PREFIX}/lib)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
# The plug-in folder is installed beside the library, and a plug-in dropped
# into it is loaded by every consumer below.
get_filename_component(LIBRARY_DIR "${LIBRARY}" DIRECTORY)
if(NOT IS_DIRECTORY ${LIBRARY_DIR}/PlugIns)
  message(FATAL_ERROR "no plug-in folder installed beside ${LIBRARY}")
endif()
file(COPY ${WORK_DIR}/build/consumer.so DESTINATION ${LIBRARY_DIR}/PlugIns)
run(${WORK_DIR}/build/consumer)
message(STATUS "cmake consumer: ${LAST_OUTPUT}")
expect_installed_data("${LAST_OUTPUT}")

find_program(PKG_CONFIG pkg-config)
if(PKG_CONFIG)
  file(GLOB PC_FILE ${PREFIX}/lib*/pkgconfig/scoremodel.pc ${PREFIX}/lib/*/pkgconfig/scoremodel.pc)
  get_filename_component(PC_DIR "${PC_FILE}" DIRECTORY)
  set(ENV{PKG_CONFIG_PATH} ${PC_DIR})
  run(${PKG_CONFIG} --cflags --libs scoremodel)
  string(STRIP "${LAST_OUTPUT}" FLAGS)
  separate_arguments(FLAGS UNIX_COMMAND "${FLAGS}")
  get_filename_component(LIB_DIR "${PC_DIR}" DIRECTORY)
  # No language standard forced on the host, no doubled slashes in paths.
  file(READ ${PC_FILE} pc_text)
  if(pc_text MATCHES "-std=|//")
    message(FATAL_ERROR "scoremodel.pc:\n${pc_text}")
  endif()
  run(${CXX} -std=c++20 ${CONSUMER_SOURCE_DIR}/main.cpp ${FLAGS} -Wl,-rpath,${LIB_DIR} -o ${WORK_DIR}/consumer-pc)
  run(${WORK_DIR}/consumer-pc)
  message(STATUS "pkg-config consumer: ${LAST_OUTPUT}")
  expect_installed_data("${LAST_OUTPUT}")

  # A host with X11's and Windows' macros defined first, on a newer standard:
  # not one diagnostic, not even a note.
  execute_process(COMMAND ${CXX} -std=c++23 -Wall -Wextra ${CONSUMER_SOURCE_DIR}/x11_host.cpp ${FLAGS}
                          -Wl,-rpath,${LIB_DIR} -o ${WORK_DIR}/x11-host
                  RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0 OR NOT "${out}${err}" STREQUAL "")
    message(FATAL_ERROR "the X11-style host did not compile cleanly (${rc}):\n${out}${err}")
  endif()
  run(${WORK_DIR}/x11-host)

  # Below C++20 the umbrella header says what it needs.
  execute_process(COMMAND ${CXX} -std=c++17 -fsyntax-only ${CONSUMER_SOURCE_DIR}/main.cpp ${FLAGS}
                  RESULT_VARIABLE rc ERROR_VARIABLE err)
  if(rc EQUAL 0 OR NOT err MATCHES "needs C\\+\\+20")
    message(FATAL_ERROR "a C++17 host was not told it needs C++20:\n${err}")
  endif()
endif()
