# Installs the built library into a scratch prefix and builds a consumer
# against it, once with CMake's package config and once with pkg-config.
file(REMOVE_RECURSE ${WORK_DIR})
# The consumers must find the installed data by themselves, from the
# library's own place, as a host that only installed the package would.
unset(ENV{SCOREMODEL_DATA_DIR})
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
endfunction()

run(${CMAKE_COMMAND} --install ${SCOREMODEL_BINARY_DIR} --prefix ${PREFIX})

run(${CMAKE_COMMAND} -S ${CONSUMER_SOURCE_DIR} -B ${WORK_DIR}/build -G Ninja
    -DCMAKE_PREFIX_PATH=${PREFIX} -DCMAKE_CXX_COMPILER=${CXX}
    -DCMAKE_BUILD_RPATH=${PREFIX}/lib)
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
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
  run(${CXX} ${CONSUMER_SOURCE_DIR}/main.cpp ${FLAGS} -Wl,-rpath,${LIB_DIR} -o ${WORK_DIR}/consumer-pc)
  run(${WORK_DIR}/consumer-pc)
  message(STATUS "pkg-config consumer: ${LAST_OUTPUT}")
  expect_installed_data("${LAST_OUTPUT}")
endif()
