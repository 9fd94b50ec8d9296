cmake_minimum_required(VERSION 3.20)
# Compiles the Java front end, runs it on a small run file through a real JVM, and checks
# that the library ran the file (its first report exists) and that a missing run file is
# reported without disturbing the JVM.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK}/classes ${WORK}/out)
execute_process(COMMAND ${JAVAC} -d ${WORK}/classes ${SOURCE} RESULT_VARIABLE rc)
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "javac failed")
endif()
file(COPY ${DATA}/flomarriage.txt DESTINATION ${WORK})
file(READ ${DATA}/jni_run.txt template)
string(REPLACE "%WORK%" "${WORK}" content "${template}")
file(WRITE ${WORK}/run.txt "${content}")
execute_process(COMMAND ${JAVA} -Djava.library.path=${LIBRARY_DIR} -cp ${WORK}/classes Vexa ${WORK}/run.txt
  WORKING_DIRECTORY ${WORK} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
message("${out}${err}")
if(NOT rc EQUAL 0)
  message(FATAL_ERROR "the JVM run failed (${rc})")
endif()
if(NOT EXISTS ${WORK}/out/start_statistics_jni.txt)
  message(FATAL_ERROR "the library did not write out/start_statistics_jni.txt")
endif()
execute_process(COMMAND ${JAVA} -Djava.library.path=${LIBRARY_DIR} -cp ${WORK}/classes Vexa ${WORK}/missing.txt
  WORKING_DIRECTORY ${WORK} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
if(NOT rc EQUAL 0 OR NOT out MATCHES "vexa: cannot open run file")
  message(FATAL_ERROR "a missing run file was not reported cleanly: ${rc} ${out}${err}")
endif()
