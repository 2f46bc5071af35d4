# The run time of the speech recognition, as the target SherpaOnnx::c_api, and the folder of the
# models that come with the program, as VELORIN_MODELS. scripts/bootstrap puts both into third_party/.
set(VELORIN_THIRD_PARTY ${CMAKE_CURRENT_LIST_DIR}/../third_party)
cmake_path(NORMAL_PATH VELORIN_THIRD_PARTY)
set(VELORIN_MODELS ${VELORIN_THIRD_PARTY}/models)
set(VELORIN_SHERPA ${VELORIN_THIRD_PARTY}/sherpa-onnx)

if(NOT EXISTS ${VELORIN_THIRD_PARTY}/stamp)
  message(FATAL_ERROR "The parts of the speech recognition are missing: run scripts/bootstrap first.")
endif()

# The library finds libonnxruntime.so beside itself.
add_library(SherpaOnnx::c_api SHARED IMPORTED)
set_target_properties(SherpaOnnx::c_api PROPERTIES
    IMPORTED_LOCATION ${VELORIN_SHERPA}/lib/libsherpa-onnx-c-api.so
    IMPORTED_SONAME libsherpa-onnx-c-api.so
    INTERFACE_INCLUDE_DIRECTORIES ${VELORIN_SHERPA}/include)
