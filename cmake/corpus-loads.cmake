# Every fuzz seed document loads with this build's tool: a record format
# that changed without its seeds being written again fails here.
#   cmake -DTOOL=<scoremodel> -DCORPUS=<dir> -P corpus-loads.cmake
file(GLOB seeds ${CORPUS}/*.smd)
set(failed "")
foreach(seed ${seeds})
  execute_process(COMMAND ${TOOL} info ${seed} RESULT_VARIABLE rc OUTPUT_QUIET ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    string(APPEND failed "${err}")
  endif()
endforeach()
list(LENGTH seeds count)
if(count EQUAL 0)
  message(FATAL_ERROR "no seed documents in ${CORPUS}")
endif()
if(failed)
  message(FATAL_ERROR "seed documents that do not load (rewrite them with the seeds target):\n${failed}")
endif()
