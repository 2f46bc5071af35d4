# The flags of the whole project, in one target, and the few functions that make targets from it.

add_library(velorin_flags INTERFACE)
target_compile_features(velorin_flags INTERFACE cxx_std_20)
target_include_directories(velorin_flags INTERFACE ${CMAKE_SOURCE_DIR}/src)
target_compile_options(velorin_flags INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror -fcoroutines -fno-omit-frame-pointer)
target_compile_definitions(velorin_flags INTERFACE
    QT_NO_CAST_FROM_ASCII
    QT_NO_CAST_TO_ASCII
    QT_NO_CAST_FROM_BYTEARRAY
    QT_NO_URL_CAST_FROM_STRING
    QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
    QT_NO_KEYWORDS
    QT_NO_FOREACH
    QT_NO_JAVA_STYLE_ITERATORS
    QT_STRICT_ITERATORS
    QT_USE_QSTRINGBUILDER
    QT_MESSAGELOGCONTEXT
    U_USING_ICU_NAMESPACE=0
    UNISTR_FROM_CHAR_EXPLICIT=explicit
    UNISTR_FROM_STRING_EXPLICIT=explicit)

# What is released defends itself: against overflows of the stack and of known buffers, and with tables and
# jumps that cannot be turned elsewhere. The sanitizers watch over the same and want to see it happen.
add_library(velorin_hardened_flags INTERFACE)
target_compile_options(velorin_hardened_flags INTERFACE -fstack-protector-strong -fstack-clash-protection
    $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE> $<$<NOT:$<CONFIG:Debug>>:-D_FORTIFY_SOURCE=2>)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "x86_64|AMD64")
  target_compile_options(velorin_hardened_flags INTERFACE -fcf-protection)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "aarch64|arm64")
  target_compile_options(velorin_hardened_flags INTERFACE -mbranch-protection=standard)
endif()
target_link_options(velorin_hardened_flags INTERFACE -pie -Wl,-z,relro,-z,now)

# The two ways in which unit tests are built besides the plain one.
add_library(velorin_checked_flags INTERFACE)
target_compile_options(velorin_checked_flags INTERFACE
    -O1 -g1 -fsanitize=address,undefined -fno-sanitize-recover=all)
target_link_options(velorin_checked_flags INTERFACE -fsanitize=address,undefined)
add_library(velorin_tsan_flags INTERFACE)
target_compile_options(velorin_tsan_flags INTERFACE -O1 -g1 -fsanitize=thread)
target_link_options(velorin_tsan_flags INTERFACE -fsanitize=thread)

# Test sources: nothing is won by optimising them, and much time in compiling them.
add_library(velorin_test_checked_flags INTERFACE)
target_compile_options(velorin_test_checked_flags INTERFACE -O0 -g1 -fsanitize=address)
add_library(velorin_test_tsan_flags INTERFACE)
target_compile_options(velorin_test_tsan_flags INTERFACE -O0 -g1 -fsanitize=thread)

function(velorin_add_variant target suffix flags)
  add_library(${target} STATIC ${ARG_SOURCES})
  set_target_properties(${target} PROPERTIES AUTOMOC ${ARG_MOC} AUTORCC ${ARG_MOC})
  # The flags of a variant stay with its sources; what links it needs the run time only.
  target_link_libraries(${target} PUBLIC velorin_flags ${ARG_LINKS} PRIVATE ${flags})
  if(flags STREQUAL velorin_hardened_flags)
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
  endif()
  if(ARG_PCH)
    target_precompile_headers(${target} PRIVATE ${CMAKE_SOURCE_DIR}/${ARG_PCH})
  endif()
  foreach(dependency ${ARG_DEPENDS})
    target_link_libraries(${target} PUBLIC velorin_${dependency}${suffix})
  endforeach()
endfunction()

# velorin_library(name SOURCES … [DEPENDS other velorin libraries] [LINKS …] [MOC] [TSAN] [PCH header])
#
# PCH names a header of ours that nearly every source of the target includes and that is slow to compile.
# Makes velorin_<name>. With tests, also velorin_<name>_checked (address and undefined behaviour
# sanitizers) and, with TSAN, velorin_<name>_tsan: what it depends on must have TSAN as well.
function(velorin_library name)
  cmake_parse_arguments(ARG "MOC;TSAN" "PCH" "SOURCES;DEPENDS;LINKS" ${ARGN})
  list(TRANSFORM ARG_SOURCES PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
  velorin_add_variant(velorin_${name} "" velorin_hardened_flags)
  if(VELORIN_TESTS)
    velorin_add_variant(velorin_${name}_checked _checked velorin_checked_flags)
    if(ARG_TSAN)
      velorin_add_variant(velorin_${name}_tsan _tsan velorin_tsan_flags)
    endif()
  endif()
endfunction()

# velorin_executable(name SOURCES … [LINKS …] [FOLDER folder])
#
# A program as it is released, in this folder of the build tree and of the installation; without one, where the
# programs are.
function(velorin_executable name)
  cmake_parse_arguments(ARG "" "FOLDER" "SOURCES;LINKS" ${ARGN})
  if(NOT ARG_FOLDER)
    set(ARG_FOLDER bin)
  endif()
  cmake_path(RELATIVE_PATH VELORIN_RUNTIME_FOLDER BASE_DIRECTORY ${ARG_FOLDER} OUTPUT_VARIABLE to_runtime)
  add_executable(${name} ${ARG_SOURCES})
  set_target_properties(${name} PROPERTIES
      POSITION_INDEPENDENT_CODE ON
      RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/${ARG_FOLDER}
      INSTALL_RPATH "$ORIGIN/${to_runtime}"
      BUILD_WITH_INSTALL_RPATH ON)
  target_link_libraries(${name} PRIVATE velorin_flags velorin_hardened_flags ${ARG_LINKS})
endfunction()

# velorin_test(name SOURCES … [DEPENDS velorin libraries] [LINKS …] [MOC] [TSAN] [SERIAL] [LABEL label] [PCH header])
#
# A GoogleTest program of the checked libraries (or, with TSAN, of those for ThreadSanitizer);
# each of its tests becomes one of ctest. SERIAL: beside no other test, since it hears in real time.
function(velorin_test name)
  cmake_parse_arguments(ARG "MOC;TSAN;SERIAL" "LABEL;PCH" "SOURCES;DEPENDS;LINKS" ${ARGN})
  set(suffix _checked)
  if(ARG_TSAN)
    set(suffix _tsan)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  set_target_properties(${name} PROPERTIES AUTOMOC ${ARG_MOC} AUTORCC ${ARG_MOC})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR})
  target_link_libraries(${name} PRIVATE velorin_flags velorin_test${suffix}_flags ${ARG_LINKS} GTest::gmock Qt6::Core)
  if(ARG_TSAN)
    target_link_options(${name} PRIVATE -fsanitize=thread)
  else()
    target_link_options(${name} PRIVATE -fsanitize=address,undefined)
  endif()
  if(NOT ARG_TSAN)
    list(APPEND ARG_DEPENDS test_main)
  else()
    target_link_libraries(${name} PRIVATE GTest::gmock_main)
  endif()
  foreach(dependency ${ARG_DEPENDS})
    target_link_libraries(${name} PRIVATE velorin_${dependency}${suffix})
  endforeach()
  if(ARG_PCH)
    target_precompile_headers(${name} PRIVATE ${CMAKE_SOURCE_DIR}/${ARG_PCH})
  endif()
  if(NOT ARG_LABEL)
    set(ARG_LABEL unit)
  endif()
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
      PROPERTIES LABELS ${ARG_LABEL} TIMEOUT 120 RUN_SERIAL ${ARG_SERIAL})
endfunction()
