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
  velorin_add_variant(velorin_${name} "" "")
  if(VELORIN_TESTS)
    velorin_add_variant(velorin_${name}_checked _checked velorin_checked_flags)
    if(ARG_TSAN)
      velorin_add_variant(velorin_${name}_tsan _tsan velorin_tsan_flags)
    endif()
  endif()
endfunction()

# velorin_test(name SOURCES … [DEPENDS velorin libraries] [LINKS …] [MOC] [TSAN] [LABEL label] [PCH header])
#
# A GoogleTest program of the checked libraries (or, with TSAN, of those for ThreadSanitizer);
# each of its tests becomes one of ctest.
function(velorin_test name)
  cmake_parse_arguments(ARG "MOC;TSAN" "LABEL;PCH" "SOURCES;DEPENDS;LINKS" ${ARGN})
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
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 PROPERTIES LABELS ${ARG_LABEL} TIMEOUT 120)
endfunction()
