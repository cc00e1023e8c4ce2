# Runs one scenario script. A folder NAME.container beside NAME.qbs is copied
# to a scratch container first, so the script starts from that app container
# and the checked-in copy is never modified.
# The container sits alone in a folder of its own: the device takes the
# folder around it for its data containers, which SpringBoard searches.
if(EXISTS "${CONTAINER}")
  set(scratch "${WORK}/${NAME}/container")
  file(REMOVE_RECURSE "${WORK}/${NAME}")
  file(COPY "${CONTAINER}/" DESTINATION "${scratch}")
  execute_process(COMMAND "${SIM}" --container "${scratch}" run "${SCRIPT}" RESULT_VARIABLE rc)
  file(REMOVE_RECURSE "${WORK}/${NAME}")
else()
  execute_process(COMMAND "${SIM}" run "${SCRIPT}" RESULT_VARIABLE rc)
endif()
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "quenby-sim exited with ${rc}")
endif()
