# Runs one scenario script. A folder NAME.container beside NAME.qbs is copied
# to a scratch container first, so the script starts from that app container
# and the checked-in copy is never modified.
if(EXISTS "${CONTAINER}")
  set(scratch "${WORK}/${NAME}")
  file(REMOVE_RECURSE "${scratch}")
  file(COPY "${CONTAINER}/" DESTINATION "${scratch}")
  execute_process(COMMAND "${SIM}" --container "${scratch}" run "${SCRIPT}" RESULT_VARIABLE rc)
  file(REMOVE_RECURSE "${scratch}")
else()
  execute_process(COMMAND "${SIM}" run "${SCRIPT}" RESULT_VARIABLE rc)
endif()
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "quenby-sim exited with ${rc}")
endif()
