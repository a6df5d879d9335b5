# A folder for what a run finds, empty at its start: with the seed, that makes runs repeat themselves.
file(REMOVE_RECURSE ${FOUND})
file(MAKE_DIRECTORY ${FOUND})
execute_process(
    COMMAND ${FUZZER} -seed=4 -runs=${RUNS} -max_len=4096 -timeout=20 -rss_limit_mb=1024
        -verbosity=1 -dict=${DICTIONARY} -artifact_prefix=${FOUND}/ ${FOUND} ${CORPUS}
    RESULT_VARIABLE result
)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "${FUZZER} ended with ${result}; the input is in ${FOUND}")
endif()
