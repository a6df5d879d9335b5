# Builds fuzz/ with clang beside the rest and runs each target from CTest: its corpus, and then a
# fixed number of fresh inputs, the same ones each time.
find_program(KEST_CLANG NAMES clang++ clang++-14)
if(NOT KEST_CLANG)
    message(STATUS "No clang: the fuzz targets are left out")
    return()
endif()

include(ExternalProject)
ExternalProject_Add(fuzz_targets
    SOURCE_DIR ${CMAKE_SOURCE_DIR}/fuzz
    BINARY_DIR ${CMAKE_BINARY_DIR}/fuzz
    STAMP_DIR ${CMAKE_BINARY_DIR}/fuzz-stamp
    TMP_DIR ${CMAKE_BINARY_DIR}/fuzz-tmp
    CMAKE_ARGS
        -DCMAKE_CXX_COMPILER=${KEST_CLANG}
        -DCMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER}
    BUILD_ALWAYS ON
    INSTALL_COMMAND ""
)

# kest_fuzz_test(name runs seeds): `runs` inputs in all, the corpus included; the corpus and the words of
# `seeds`, or of the same name.
function(kest_fuzz_test name runs)
    set(seeds ${name} ${ARGN})
    list(GET seeds -1 seeds)
    add_test(NAME fuzz_${name} COMMAND ${CMAKE_COMMAND}
        -D FUZZER=${CMAKE_BINARY_DIR}/fuzz/fuzz_${name}
        -D CORPUS=${CMAKE_SOURCE_DIR}/fuzz/corpus/${seeds}
        -D DICTIONARY=${CMAKE_SOURCE_DIR}/fuzz/${seeds}.dict
        -D FOUND=${CMAKE_BINARY_DIR}/fuzz-found/${name}
        -D RUNS=${runs}
        -P ${CMAKE_SOURCE_DIR}/fuzz/run_fuzzer.cmake)
    set_tests_properties(fuzz_${name} PROPERTIES
        TIMEOUT 300
        ENVIRONMENT "TZ=UTC;LC_ALL=C.UTF-8;LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0"
    )
endfunction()

kest_fuzz_test(current_log 60000)
kest_fuzz_test(older_log 60000)
kest_fuzz_test(check 20000 current_log)
kest_fuzz_test(events 10000)
kest_fuzz_test(repair 20000 current_log)
kest_fuzz_test(telemetry 20000)
kest_fuzz_test(settings 10000)
kest_fuzz_test(profiles 60000)
kest_fuzz_test(numbers 60000)
kest_fuzz_test(help 20000)
kest_fuzz_test(watch_settings 20000)
kest_fuzz_test(watch_memory 5000)
# The toolkit's reader of JSON forgets some of what it made of a document that turns out to be wrong.
set_property(TEST fuzz_watch_memory APPEND PROPERTY ENVIRONMENT "ASAN_OPTIONS=detect_leaks=0")
