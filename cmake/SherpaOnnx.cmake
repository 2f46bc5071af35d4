# The run time of the speech recognition, as the target SherpaOnnx::c_api, and the folder of the
# models that come with the program, as VELORIN_MODELS. scripts/bootstrap puts both into third_party/.
set(VELORIN_THIRD_PARTY ${CMAKE_CURRENT_LIST_DIR}/../third_party)
cmake_path(NORMAL_PATH VELORIN_THIRD_PARTY)
set(VELORIN_MODELS ${VELORIN_THIRD_PARTY}/models)
set(VELORIN_SHERPA ${VELORIN_THIRD_PARTY}/sherpa-onnx)

if(NOT EXISTS ${VELORIN_THIRD_PARTY}/stamp)
  message(FATAL_ERROR "The parts of the speech recognition are missing: run scripts/bootstrap first.")
endif()

# In the build tree the libraries lie where they are when installed, so that the programs can be linked with the
# run path that they have then. One that CMake changes when it installs has an empty entry at its end until then,
# and an empty entry is the current folder.
set(VELORIN_RUNTIME_FOLDER ${CMAKE_INSTALL_LIBDIR}/velorin)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR})
file(CREATE_LINK ${VELORIN_SHERPA}/lib ${CMAKE_BINARY_DIR}/${VELORIN_RUNTIME_FOLDER} SYMBOLIC)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)

# The library finds libonnxruntime.so beside itself.
add_library(SherpaOnnx::c_api SHARED IMPORTED)
set_target_properties(SherpaOnnx::c_api PROPERTIES
    IMPORTED_LOCATION ${CMAKE_BINARY_DIR}/${VELORIN_RUNTIME_FOLDER}/libsherpa-onnx-c-api.so
    IMPORTED_SONAME libsherpa-onnx-c-api.so
    INTERFACE_INCLUDE_DIRECTORIES ${VELORIN_SHERPA}/include)
