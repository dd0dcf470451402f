# Runs the command-line optimiser once and checks its exit status and output.
#   -DTORVA=path -DARGS="a|b|c" -DEXPECT_RC=n [-DEXPECT_OUT=regex]
#   [-DEXPECT_ERR=regex] [-DREJECT_OUT=regex]
string(REPLACE "|" ";" ARGS "${ARGS}")
execute_process(COMMAND ${TORVA} ${ARGS}
                RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err
                TIMEOUT 120)
if(NOT "${rc}" STREQUAL "${EXPECT_RC}")
  message(FATAL_ERROR "exit status ${rc}, expected ${EXPECT_RC}\nstdout:\n${out}\nstderr:\n${err}")
endif()
if(DEFINED EXPECT_OUT AND NOT out MATCHES "${EXPECT_OUT}")
  message(FATAL_ERROR "stdout does not match '${EXPECT_OUT}':\n${out}\nstderr:\n${err}")
endif()
if(DEFINED EXPECT_ERR AND NOT err MATCHES "${EXPECT_ERR}")
  message(FATAL_ERROR "stderr does not match '${EXPECT_ERR}':\n${err}")
endif()
if(DEFINED REJECT_OUT AND out MATCHES "${REJECT_OUT}")
  message(FATAL_ERROR "stdout matches '${REJECT_OUT}':\n${out}")
endif()
