# Everything that Velorin stands on; scripts/bootstrap installs it.
find_package(Threads REQUIRED)
find_package(Qt6 6.4.2 REQUIRED COMPONENTS Core DBus Network Gui Qml Quick Widgets Test)
find_package(QCoro6 REQUIRED COMPONENTS Core)
find_package(tl-expected REQUIRED)
find_package(ICU REQUIRED COMPONENTS uc i18n)
find_package(PkgConfig REQUIRED)
pkg_check_modules(XCB REQUIRED IMPORTED_TARGET
    xcb xcb-xinput xcb-xtest xcb-xfixes xcb-res xcb-xkb xcb-randr xkbcommon xkbcommon-x11)
pkg_check_modules(DBUS REQUIRED IMPORTED_TARGET dbus-1)
pkg_check_modules(PULSE REQUIRED IMPORTED_TARGET libpulse)
pkg_check_modules(LIBSECRET REQUIRED IMPORTED_TARGET libsecret-1)
pkg_check_modules(SOXR REQUIRED IMPORTED_TARGET soxr)
pkg_check_modules(SNDFILE REQUIRED IMPORTED_TARGET sndfile)
include(${CMAKE_CURRENT_LIST_DIR}/SherpaOnnx.cmake)
if(VELORIN_TESTS)
  find_package(GTest REQUIRED)
endif()
if(VELORIN_BENCH)
  find_package(benchmark REQUIRED)
endif()

# The libraries are compiled twice with tests, and often again after a small change: ccache knows.
find_program(VELORIN_CCACHE ccache)
if(VELORIN_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER
      ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1
      CCACHE_SLOPPINESS=pch_defines,time_macros ${CMAKE_SOURCE_DIR}/scripts/compile)
endif()
