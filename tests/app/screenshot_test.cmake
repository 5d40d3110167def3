# Runs the real program as the README does on a machine without a display: under xvfb-run,
# loading and indexing the sample corpus, with --screenshot. Then checks the picture, and the
# picture of the time line explorer that the run saves next to it after building the models.
file(REMOVE_RECURSE ${OUT_DIR})
file(MAKE_DIRECTORY ${OUT_DIR})
set(picture ${OUT_DIR}/main.png)
set(timeline ${OUT_DIR}/main-timeline.png)
execute_process(
  COMMAND ${CMAKE_COMMAND} -E env XDG_CONFIG_HOME=${OUT_DIR}/config
          ${XVFB_RUN} -a ${PROGRAM} ${CORPUS} --screenshot ${picture}
  RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors TIMEOUT 240)
if(NOT result EQUAL 0)
  message(FATAL_ERROR "sylvora --screenshot failed (${result}):\n${output}\n${errors}")
endif()
if(NOT output MATCHES "Screenshot saved to .*main.png")
  message(FATAL_ERROR "sylvora did not say where the picture is:\n${output}")
endif()
# The cluster explorer's picture beside it.
set(clusters ${OUT_DIR}/main-clusters.png)
if(NOT output MATCHES "Screenshot saved to .*main-clusters.png" OR NOT EXISTS ${clusters})
  message(FATAL_ERROR "sylvora did not save the cluster explorer's picture:\n${output}\n${errors}")
endif()
file(SIZE ${clusters} clusters_size)
if(clusters_size LESS 20000)
  message(FATAL_ERROR "the cluster explorer's picture is nearly empty (${clusters_size} bytes)")
endif()
execute_process(COMMAND ${CHECKER} ${picture} RESULT_VARIABLE checked OUTPUT_VARIABLE report
                ERROR_VARIABLE report)
if(NOT checked EQUAL 0)
  message(FATAL_ERROR "the picture does not show the indexed word list:\n${report}")
endif()
message(STATUS "${output}${report}")
if(NOT output MATCHES "Screenshot saved to .*main-timeline.png")
  message(FATAL_ERROR "sylvora did not save the time line explorer:\n${output}\n${errors}")
endif()
execute_process(COMMAND ${CHECKER} ${timeline} --timeline RESULT_VARIABLE checked
                OUTPUT_VARIABLE report ERROR_VARIABLE report)
if(NOT checked EQUAL 0)
  message(FATAL_ERROR "the time line picture does not show the selected interval's messages:\n${report}")
endif()
message(STATUS "${report}")
