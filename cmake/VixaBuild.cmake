# The flags of the project's own code, and the functions that make its libraries and tests.

add_library(vixa_flags INTERFACE)
target_compile_features(vixa_flags INTERFACE cxx_std_20)
target_include_directories(vixa_flags INTERFACE "${CMAKE_SOURCE_DIR}" "${CMAKE_SOURCE_DIR}/include")
target_compile_options(vixa_flags INTERFACE
    $<$<COMPILE_LANGUAGE:CXX>:-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror>)

if(WIN32)
    target_compile_definitions(vixa_flags INTERFACE
        UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX STRICT WINVER=0x0601 _WIN32_WINNT=0x0601)
    target_compile_options(vixa_flags INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-fstack-protector-strong>)
    target_link_options(vixa_flags INTERFACE
        -static -fstack-protector-strong -Wl,--dynamicbase -Wl,--nxcompat -Wl,--no-insert-timestamp)
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
        # SSE2 is the floor (every supported Windows asks for it), also for floating point: x87's extra precision would make
        # the gamma table differ from the native build's. A 32-bit caller aligns the stack to 4 bytes only, so every function
        # that needs more realigns it itself.
        target_compile_options(vixa_flags INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-msse2 -mfpmath=sse -mstackrealign>)
        # The export files name functions without the decoration that stdcall adds.
        set(VIXA_PE_FLAGS -Wl,--no-seh -Wl,--enable-stdcall-fixup)
    else()
        set(VIXA_PE_FLAGS -Wl,--high-entropy-va)
    endif()
    target_link_options(vixa_flags INTERFACE ${VIXA_PE_FLAGS})
endif()

if(VIXA_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer -O1)
    add_link_options(-fsanitize=address,undefined)
    # The sanitizers' instrumentation hides initialisations from this warning, in the standard library's headers too.
    add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()

# vixa_reproducible(TARGET...): lets what ships come out the same whichever folder it is built in and whenever: the debug
# information names files from the root of the sources on, and nothing may ask for the date.
function(vixa_reproducible)
    if(WIN32)
        foreach(target IN LISTS ARGN)
            target_compile_options(${target} PRIVATE
                $<$<COMPILE_LANGUAGE:CXX>:-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.> $<$<COMPILE_LANGUAGE:CXX>:-Wdate-time>)
        endforeach()
    endif()
endfunction()

# vixa_shipped(TARGET): what the packages hold. The linker's map beside it says what was linked, for the bill of materials.
function(vixa_shipped target)
    vixa_reproducible(${target})
    target_link_options(${target} PRIVATE "-Wl,-Map=$<TARGET_FILE:${target}>.map")
endfunction()

# vixa_library(NAME SOURCE...): a static library of the project's own code.
function(vixa_library name)
    add_library(${name} STATIC ${ARGN})
    target_link_libraries(${name} PUBLIC vixa_flags)
    vixa_reproducible(${name})
endfunction()

# vixa_precompiled(NAME LIBRARIES library... HEADERS header...): headers that nearly every source of a part of the house reads,
# compiled once for the targets that take them: reading the system's and the standard library's declarations is more than
# half of a build. A source includes what it uses all the same: tools/lint.sh goes without.
function(vixa_precompiled name)
    cmake_parse_arguments(arg "" "" "LIBRARIES;HEADERS" ${ARGN})
    file(CONFIGURE OUTPUT "${CMAKE_BINARY_DIR}/${name}.cpp" CONTENT "")
    add_library(${name} OBJECT "${CMAKE_BINARY_DIR}/${name}.cpp")
    target_link_libraries(${name} PRIVATE vixa_flags ${arg_LIBRARIES})
    target_precompile_headers(${name} PRIVATE ${arg_HEADERS})
endfunction()

# vixa_take_precompiled(TARGET NAME): lets a target take them.
function(vixa_take_precompiled target name)
    target_precompile_headers(${target} REUSE_FROM ${name})
    # GCC forgets which of these are the system's, whose memory functions for wide texts these warnings wrongly suspect.
    target_compile_options(${target} PRIVATE
        $<$<COMPILE_LANGUAGE:CXX>:-Wno-array-bounds -Wno-stringop-overread -Wno-stringop-overflow>)
endfunction()

# vixa_test(NAME SOURCES source... [LIBRARIES library...] [LABEL label] [PORTABLE]): a GoogleTest program that ctest runs as
# one test. A portable one would in 64-bit Windows only repeat what it says natively, and is left out there.
function(vixa_test name)
    cmake_parse_arguments(arg "PORTABLE" "LABEL" "SOURCES;LIBRARIES" ${ARGN})
    if(arg_PORTABLE AND WIN32 AND CMAKE_SIZEOF_VOID_P EQUAL 8)
        return()
    endif()
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE vixa_flags ${arg_LIBRARIES} gtest_main gtest)
    if(WIN32)
        vixa_take_precompiled(${name} vixa_test_headers)
        target_compile_options(${name} PRIVATE -O1 -g1) # built far more often than run
    endif()
    add_test(NAME ${name} COMMAND ${name} "--gtest_output=xml:results/${name}.xml"
        WORKING_DIRECTORY "${CMAKE_BINARY_DIR}")
    set_tests_properties(${name} PROPERTIES TIMEOUT 300)
    if(arg_LABEL)
        set_tests_properties(${name} PROPERTIES LABELS "${arg_LABEL}")
    endif()
endfunction()

# vixa_split_debug(TARGET): moves the debug information of a linked target into TARGET-file.debug beside it. (A date that is not
# preserved is today's.)
function(vixa_split_debug target)
    add_custom_command(TARGET ${target} POST_BUILD
        COMMAND "${CMAKE_OBJCOPY}" --preserve-dates --only-keep-debug "$<TARGET_FILE:${target}>" "$<TARGET_FILE:${target}>.debug"
        COMMAND "${CMAKE_OBJCOPY}" --preserve-dates --strip-debug --strip-unneeded
                "--add-gnu-debuglink=$<TARGET_FILE:${target}>.debug" "$<TARGET_FILE:${target}>"
        VERBATIM)
endfunction()

# vixa_resource_module(FILE SOURCE source [DEFINITIONS NAME=value...] [DEPENDS file...]): a PE module of resources only: no
# code, no entry point, no imports. A command's output: a target must depend on FILE.
function(vixa_resource_module file)
    cmake_parse_arguments(arg "" "SOURCE" "DEFINITIONS;DEPENDS" ${ARGN})
    get_filename_component(name "${file}" NAME)
    set(object "${CMAKE_CURRENT_BINARY_DIR}/${name}.o")
    list(TRANSFORM arg_DEFINITIONS PREPEND "-D")
    # Without a base of its own the linker would make one from the output's path.
    add_custom_command(
        OUTPUT "${file}"
        COMMAND "${CMAKE_RC_COMPILER}" -c 65001 -O coff -I "${CMAKE_SOURCE_DIR}" ${arg_DEFINITIONS} "${arg_SOURCE}" "${object}"
        COMMAND "${CMAKE_C_COMPILER}" -shared -nostdlib -Wl,--entry,0 -Wl,--nxcompat -Wl,--dynamicbase
                -Wl,--no-insert-timestamp ${VIXA_PE_FLAGS} -Wl,--image-base,0x10000000 -s -o "${file}" "${object}"
        DEPENDS "${arg_SOURCE}" ${arg_DEPENDS}
        COMMENT "Building ${name}"
        VERBATIM)
endfunction()
